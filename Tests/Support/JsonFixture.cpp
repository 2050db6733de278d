#include "Tests/Support/JsonFixture.h"

#include <fstream>
#include <map>

const nlohmann::json& jsonFixture(const std::string& name) {
  static std::map<std::string, nlohmann::json> files;
  auto& file = files[name];
  if (file.is_null()) {
    std::ifstream stream(std::string(NERIN_FIXTURES "/") + name);
    file = nlohmann::json::parse(stream);
  }
  return file;
}

const nlohmann::json& protocolTable(const std::string& name) {
  return jsonFixture("protocol-tables.json").at(name);
}
