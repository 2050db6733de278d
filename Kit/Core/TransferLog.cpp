#include "Kit/Core/TransferLog.h"

#include <algorithm>
#include <cstddef>

#include "Kit/Core/Hex.h"

namespace {

constexpr std::size_t commandSize = 8;
constexpr std::size_t shownOfKeys = 3;

// A longer report than a command holds macros, buttons or a name. The command C4 0E sets a button.
bool canHoldKeys(std::span<const std::uint8_t> bytes) {
  return bytes.size() > commandSize || (bytes.size() > 1 && bytes[0] == 0xC4 && bytes[1] == 0x0E);
}

}  // namespace

std::string transferlog::textOf(std::span<const std::uint8_t> bytes) {
  if (!canHoldKeys(bytes)) {
    return hexText(bytes);
  }
  return hexText(bytes.first(std::min(bytes.size(), shownOfKeys))) + "... (" +
         std::to_string(bytes.size()) + " bytes)";
}
