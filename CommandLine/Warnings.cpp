#include "CommandLine/Warnings.h"

#include <algorithm>
#include <iostream>
#include <string_view>

#include "CommandLine/Output.h"
#include "Kit/Core/LXLogger.h"

namespace {

// The reason stands behind the last colon: "x was not written: No space left on device".
std::string_view reasonOf(std::string_view line) {
  constexpr std::string_view colon = ": ";
  const std::size_t at = line.rfind(colon);
  return at == std::string_view::npos ? line : line.substr(at + colon.size());
}

}  // namespace

Warnings::Warnings() {
  LXLogger::setObserver([this](LXLogger::Level level, std::string_view line) {
    if (level >= LXLogger::Level::Warning &&
        std::find(m_lines.begin(), m_lines.end(), line) == m_lines.end()) {
      m_lines.emplace_back(line);
    }
  });
}

Warnings::~Warnings() {
  LXLogger::setObserver({});
}

void Warnings::print(const std::string& error) const {
  for (const std::string& line : m_lines) {
    if (error.find(reasonOf(line)) == std::string::npos) {
      std::cerr << "nerinctl: warning: " << printable(line) << '\n';
    }
  }
}
