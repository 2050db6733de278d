#include "Action/Library/ProfileFileNames.h"

#include <algorithm>

#include "Kit/Core/Utf8.h"

namespace {

constexpr std::size_t maximumFileName = 255;

bool isRefused(char byte) {
  const auto code = static_cast<unsigned char>(byte);
  return byte == '/' || byte == ':' || code < 0x20U || code == 0x7FU;
}

// Turns any name into a stem that is a single path component.
std::string safeStem(const std::string& name) {
  if (name.empty() || name == "." || name == "..") {
    return "_" + name;
  }
  std::string stem = name;
  std::replace_if(stem.begin(), stem.end(), isRefused, '_');
  return stem;
}

std::string fileName(const std::string& stem, const std::string& suffix) {
  const std::string tail = suffix + "." + ProfileFileNames::extension;
  return std::string(utf8::prefixOfBytes(stem, maximumFileName - tail.size())) + tail;
}

}  // namespace

std::string ProfileFileNames::next(const std::optional<std::string>& profileName) {
  const std::string stem = safeStem(profileName.value_or(""));
  std::string name = fileName(stem, "");
  for (int n = 2; !m_given.insert(name).second; ++n) {
    name = fileName(stem, "~" + std::to_string(n));
  }
  return name;
}
