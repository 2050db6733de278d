#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

// The answer of a command, as lines for a person or as JSON for a script.
class Output {
 public:
  void setJson(bool isJson) { m_isJson = isJson; }
  bool isJson() const { return m_isJson; }

  // Prints the lines or the document. Call once per command.
  void print(const std::vector<std::string>& lines, const Json& document) const;

 private:
  bool m_isJson = false;
};

// Replaces control characters and broken UTF-8: names come from files and from the mouse and must
// not control the terminal.
std::string printable(std::string_view text);

// Lines with aligned cells.
std::vector<std::string> table(const std::vector<std::vector<std::string>>& rows);
