#include "Kit/Core/TransferLog.h"

#include <algorithm>
#include <cstddef>

namespace {

constexpr std::size_t commandSize = 8;
constexpr std::size_t shownOfKeys = 3;

// A longer report than a command holds macros, buttons or a name. The command C4 0E sets a button.
bool canHoldKeys(std::span<const std::uint8_t> bytes) {
  return bytes.size() > commandSize || (bytes.size() > 1 && bytes[0] == 0xC4 && bytes[1] == 0x0E);
}

std::string hex(std::span<const std::uint8_t> bytes) {
  constexpr char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::uint8_t byte : bytes) {
    text += digits[byte >> 4U];
    text += digits[byte & 0x0FU];
  }
  return text;
}

}  // namespace

std::string transferlog::textOf(std::span<const std::uint8_t> bytes) {
  if (!canHoldKeys(bytes)) {
    return hex(bytes);
  }
  return hex(bytes.first(std::min(bytes.size(), shownOfKeys))) + "... (" +
         std::to_string(bytes.size()) + " bytes)";
}
