#include "MacroPlayer/KeyNames.h"

#include <array>
#include <cstddef>

namespace {

constexpr std::uint8_t firstUsage = 0x04;
constexpr std::uint8_t firstModifier = 0xE0;

// From usage 4 on, without a gap.
constexpr std::array<const char*, 112> keyNames{
    "A", "B", "C", "D", "E", "F", "G", "H", "I", "J", "K", "L", "M", "N", "O", "P", "Q", "R", "S",
    "T", "U", "V", "W", "X", "Y", "Z", "1", "2", "3", "4", "5", "6", "7", "8", "9", "0",
    // 0x28
    "Return", "Esc", "Backspace", "Tab", "Space", "-", "=", "[", "]", "\\", "# (non-US)", ";", "'",
    "`", ",", ".", "/", "Caps Lock",
    // 0x3A
    "F1", "F2", "F3", "F4", "F5", "F6", "F7", "F8", "F9", "F10", "F11", "F12",
    // 0x46
    "Print Screen", "Scroll Lock", "Pause", "Insert", "Home", "Page Up", "Delete", "End",
    "Page Down", "Right Arrow", "Left Arrow", "Down Arrow", "Up Arrow",
    // 0x53
    "Num Lock", "Num /", "Num *", "Num -", "Num +", "Num Enter", "Num 1", "Num 2", "Num 3", "Num 4",
    "Num 5", "Num 6", "Num 7", "Num 8", "Num 9", "Num 0", "Num .", "\\ (non-US)", "Menu", "Power",
    "Num =",
    // 0x68
    "F13", "F14", "F15", "F16", "F17", "F18", "F19", "F20", "F21", "F22", "F23", "F24"};
static_assert(firstUsage + keyNames.size() - 1 == 0x73);

constexpr std::array<const char*, 8> modifierNames{"Control",      "Shift",         "Option",
                                                   "Command",      "Right Control", "Right Shift",
                                                   "Right Option", "Right Command"};

std::string numberOf(std::uint8_t usage) {
  constexpr const char* digits = "0123456789ABCDEF";
  return std::string("0x") + digits[usage >> 4U] + digits[usage & 0xFU];
}

}  // namespace

std::string nameOfKey(std::uint8_t usage) {
  const std::size_t key = static_cast<std::size_t>(usage) - firstUsage;
  const std::size_t modifier = static_cast<std::size_t>(usage) - firstModifier;
  return usage >= firstUsage && key < keyNames.size()                ? keyNames[key]
         : usage >= firstModifier && modifier < modifierNames.size() ? modifierNames[modifier]
                                                                     : numberOf(usage);
}
