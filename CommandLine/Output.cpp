#include "CommandLine/Output.h"

#include <algorithm>
#include <iostream>

#include "CommandLine/CommandError.h"
#include "Kit/Core/Utf8.h"

namespace {

// The width in a terminal, approximately: one column per character.
std::size_t widthOf(const std::string& cell) {
  return static_cast<std::size_t>(std::count_if(cell.begin(), cell.end(), [](char byte) {
    return (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
  }));
}

std::string line(const std::vector<std::string>& row, const std::vector<std::size_t>& widths) {
  std::string text;
  for (std::size_t column = 0; column < row.size(); ++column) {
    text += row[column];
    if (column + 1 < row.size()) {
      text.append(widths[column] - widthOf(row[column]) + 2, ' ');
    }
  }
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

}  // namespace

void Output::print(const std::vector<std::string>& lines, const Json& document) const {
  if (m_isJson) {
    // Only ASCII, because there are control characters beyond it.
    std::cout << document.dump(2, ' ', true, Json::error_handler_t::replace) << '\n';
  } else {
    for (const std::string& text : lines) {
      std::cout << text << '\n';
    }
  }
  if (!std::cout.flush()) {
    throw CommandError(ExitCode::Failed, "the answer could not be written");
  }
}

std::string printable(std::string_view text) {
  std::string result;
  const bool isText = utf8::isValid(text);
  for (const char byte : text) {
    const auto code = static_cast<unsigned char>(byte);
    const bool isShown = code >= 0x20U && code != 0x7FU && (isText || code < 0x80U);
    result += isShown ? byte : '?';
  }
  // The C1 control characters (C2 80 to C2 9F) also control a terminal.
  for (std::size_t at = result.find('\xC2'); at != std::string::npos;
       at = result.find('\xC2', at)) {
    if (at + 1 < result.size() && static_cast<unsigned char>(result[at + 1]) < 0xA0U) {
      result.replace(at, 2, "?");
    } else {
      ++at;
    }
  }
  return result;
}

std::vector<std::string> table(const std::vector<std::vector<std::string>>& rows) {
  std::vector<std::size_t> widths;
  for (const auto& row : rows) {
    widths.resize(std::max(widths.size(), row.size()));
    for (std::size_t column = 0; column < row.size(); ++column) {
      widths[column] = std::max(widths[column], widthOf(row[column]));
    }
  }
  std::vector<std::string> lines;
  lines.reserve(rows.size());
  for (const auto& row : rows) {
    lines.push_back(line(row, widths));
  }
  return lines;
}
