#pragma once

#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

using Json = nlohmann::ordered_json;

// What a command answers: the same facts as lines for a person and as JSON for a script.
class Output {
 public:
  void setJson(bool isJson) { m_isJson = isJson; }
  bool isJson() const { return m_isJson; }

  // Prints the lines, or the document. To be called once by a command.
  void print(const std::vector<std::string>& lines, const Json& document) const;

 private:
  bool m_isJson = false;
};

// The text with control characters and broken UTF-8 replaced: names come from files and from the
// mouse, and must not steer the terminal.
std::string printable(std::string_view text);

// Lines whose cells stand under each other.
std::vector<std::string> table(const std::vector<std::vector<std::string>>& rows);
