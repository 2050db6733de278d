#include "Action/Wire/KeyCodes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <iterator>

namespace {

struct UsageAndKey {
  std::uint32_t usage;
  std::uint32_t macKey;
};

// HID keyboard usages and Mac virtual key codes. Both directions use the first match. The firmware
// and existing profiles rely on this table, including its duplicates.
constexpr UsageAndKey UsageID_MacVk[] = {
    {0x04, 0},   {0x05, 11},  {0x06, 8},   {0x07, 2},   {0x08, 14},  {0x09, 3},   {0x0A, 5},
    {0x0B, 4},   {0x0C, 34},  {0x0D, 38},  {0x0E, 40},  {0x0F, 37},  {0x10, 46},  {0x11, 45},
    {0x12, 31},  {0x13, 35},  {0x14, 12},  {0x15, 15},  {0x16, 1},   {0x17, 17},  {0x18, 32},
    {0x19, 9},   {0x1A, 13},  {0x1B, 7},   {0x1C, 16},  {0x1D, 6},   {0x1E, 18},  {0x1F, 19},
    {0x20, 20},  {0x21, 21},  {0x22, 23},  {0x23, 22},  {0x24, 26},  {0x25, 28},  {0x26, 25},
    {0x27, 29},  {0x28, 36},  {0x29, 53},  {0x2A, 51},  {0x2B, 48},  {0x2C, 49},  {0x2D, 27},
    {0x2E, 69},  {0x2F, 33},  {0x30, 30},  {0x31, 42},  {0x32, 42},  {0x33, 41},  {0x34, 39},
    {0x35, 50},  {0x36, 43},  {0x37, 47},  {0x38, 44},  {0x39, 57},  {0x3A, 122}, {0x3B, 120},
    {0x3C, 99},  {0x3D, 118}, {0x3E, 96},  {0x3F, 97},  {0x40, 98},  {0x41, 100}, {0x42, 101},
    {0x43, 109}, {0x44, 103}, {0x45, 111}, {0x46, 105}, {0x47, 107}, {0x48, 113}, {0x49, 114},
    {0x4A, 115}, {0x4B, 116}, {0x4C, 117}, {0x4D, 119}, {0x4E, 121}, {0x4F, 124}, {0x50, 123},
    {0x51, 125}, {0x52, 126}, {0x53, 71},  {0x54, 75},  {0x55, 67},  {0x56, 78},  {0x57, 69},
    {0x58, 76},  {0x59, 83},  {0x5A, 84},  {0x5B, 85},  {0x5C, 86},  {0x5D, 87},  {0x5E, 88},
    {0x5F, 89},  {0x60, 91},  {0x61, 92},  {0x62, 82},  {0x63, 65},  {0x64, 0},   {0x65, 110},
    {0xE0, 59},  {0xE1, 56},  {0xE2, 58},  {0xE3, 55},  {0xE4, 62},  {0xE5, 60},  {0xE6, 61},
};

struct ModifierCode {
  std::uint32_t macKey;
  std::uint32_t code;
};

// Inside macros, modifier keys have their own codes.
constexpr ModifierCode macroModifiers[] = {
    {59, 112}, {56, 113}, {58, 114}, {55, 115}, {60, 117}, {61, 118}, {62, 119},
};

constexpr std::size_t codeCount = 256;
using CodeTable = std::array<std::uint8_t, codeCount>;

// A macro looks up a code for each event, so the tables are computed at compile time. They are
// filled from the back so that the first match is written last and wins.
template <typename Rows, typename Member>
constexpr void fillFromTheBack(CodeTable& table, const Rows& rows, Member from, Member to) {
  for (auto row = std::rbegin(rows); row != std::rend(rows); ++row) {
    table[(*row).*from] = static_cast<std::uint8_t>((*row).*to);
  }
}

// Modifiers take precedence over keys, so they are written last. 0 means no code.
constexpr CodeTable deviceCodeOfKey = [] {
  CodeTable codes{};
  fillFromTheBack(codes, UsageID_MacVk, &UsageAndKey::macKey, &UsageAndKey::usage);
  fillFromTheBack(codes, macroModifiers, &ModifierCode::macKey, &ModifierCode::code);
  return codes;
}();

constexpr CodeTable keyOfDeviceCode = [] {
  CodeTable keys{};
  fillFromTheBack(keys, UsageID_MacVk, &UsageAndKey::usage, &UsageAndKey::macKey);
  fillFromTheBack(keys, macroModifiers, &ModifierCode::code, &ModifierCode::macKey);
  return keys;
}();

// The mouse uses its own order of modifier bits, not the HID order.
constexpr ModifierCode modifierBits[] = {
    {55, 0x01}, {56, 0x02}, {58, 0x04}, {59, 0x08}, {54, 0x10}, {60, 0x20}, {61, 0x40}, {62, 0x80},
};

constexpr std::uint32_t controlBit = 0x08;
constexpr std::uint32_t usageRightArrow = 0x4F;
constexpr std::uint32_t usageLeftArrow = 0x50;

constexpr std::uint8_t endless = 255;
constexpr std::uint32_t largestCount = 254;

void setSpecial(_BTN_INFO& button, std::uint32_t key, std::uint32_t functionId) {
  button.FuncID = functionId;
  button.FuncTableId = NerinAction::FunctionMouse;
  button.btnType = ButtonTypeSingle;
  button.KeyBit[0] = key;
  button.KeyBit[1] = 0;
  button.MacroID = 1;
}

// A key entry holds either a modifier or a key, so a modifier drops the usage.
void setKey(_BTN_INFO& button) {
  const std::uint32_t modifiers = button.KeyBit[0];
  const std::uint32_t usage = button.KeyBit[1];
  if (modifiers == controlBit && usage == usageRightArrow) {
    setSpecial(button, NerinAction::controlRightArrow, 6);
    return;
  }
  if (modifiers == controlBit && usage == usageLeftArrow) {
    setSpecial(button, NerinAction::controlLeftArrow, 5);
    return;
  }
  button.btnType = ButtonTypeSingle;
  button.MacroID = 2;
  button.KeyBit[0] = modifiers != 0 ? NerinAction::getKeyCodeFlagByFW(modifiers)
                                    : NerinAction::GetKeyCodeByFW(usage);
}

void setMouseFunction(_BTN_INFO& button, const NerinAction::FunctionIdOf& functionIdOf) {
  button.btnType = ButtonTypeSingle;
  button.MacroID = 1;
  button.FuncID = functionIdOf(button).value_or(button.FuncID);
}

void setSensitivity(_BTN_INFO& button, std::uint32_t functionId) {
  button.btnType = ButtonTypeSensitivity;
  button.FuncID = functionId;
}

}  // namespace

std::uint32_t NerinAction::GetFWKeyCode(std::uint32_t macKey) {
  return macKey < codeCount ? deviceCodeOfKey[macKey] : 0;
}

std::uint32_t NerinAction::GetKeyCodeByFW(std::uint32_t deviceCode) {
  return deviceCode < codeCount ? keyOfDeviceCode[deviceCode] : 0;
}

std::uint32_t NerinAction::getFWKeyCodeFlag(std::uint32_t macKey) {
  switch (macKey) {
    case 54:
    case 55:
      return 0x01;
    case 56:
    case 60:
      return 0x02;
    case 58:
    case 61:
      return 0x04;
    case 59:
    case 62:
      return 0x08;
    default:
      return 0;
  }
}

std::uint32_t NerinAction::getKeyCodeFlagByFW(std::uint32_t modifiers) {
  for (const ModifierCode& modifier : modifierBits) {
    if (modifier.code == modifiers) {
      return modifier.macKey;
    }
  }
  return 0;
}

std::uint32_t NerinAction::getFunIdByBtn(const _BTN_INFO& btnInfo) {
  return btnInfo.FuncTableId;
}

void NerinAction::setFunIDAndBtnType(_BTN_INFO* btnInfo, const FunctionIdOf& functionIdOf) {
  _BTN_INFO& button = *btnInfo;
  button.FuncTableId = button.FuncID;
  switch (button.FuncTableId) {
    case 0:
    case FunctionMouse:
    case 4:
      setMouseFunction(button, functionIdOf);
      break;
    case FunctionKey:
      setKey(button);
      break;
    case FunctionMacro:
      button.btnType = ButtonTypeMacro;
      break;
    case FunctionSetDpi:
      setSensitivity(button, 1);
      break;
    case FunctionLevelUp:
      setSensitivity(button, 2);
      break;
    case FunctionLevelDown:
      setSensitivity(button, 3);
      break;
    case FunctionShowDpi:
      setSensitivity(button, 4);
      break;
    case FunctionLevelCycle:
      setSensitivity(button, 5);
      break;
    case FunctionLaunch:
      button.btnType = ButtonTypeLaunch;
      break;
    case FunctionDisabled:
      button.btnType = ButtonTypeDisabled;
      break;
    default:
      button.btnType = ButtonTypePlain;
      break;
  }
}

std::uint32_t NerinAction::storableRepeatCount(std::uint32_t count) {
  return std::clamp(count, std::uint32_t{1}, largestCount);
}

void NerinAction::getMacroRepeatType(std::uint8_t& type, std::uint8_t& count,
                                     const _BTN_INFO& btnInfo) {
  const std::uint32_t times = btnInfo.KeyBit[1];
  count = endless;
  switch (btnInfo.KeyBit[0]) {
    case 1:
      type = 5;
      break;
    case 2:
      type = 4;
      // The mouse counts the repetitions, without the first run. 0 and 255 are counts of its own.
      count = static_cast<std::uint8_t>(
          times == 0 || times == endless ? times : storableRepeatCount(times) - 1);
      break;
    case 3:
      type = 7;
      break;
    case 4:
      type = 4;
      break;
    default:
      break;
  }
}

std::uint32_t NerinAction::getMacroRepeatTypeFromFW(std::uint8_t type, std::uint8_t count) {
  switch (type) {
    case 5:
      return 1;
    case 7:
      return 3;
    case 4:
      return count != endless ? 2 : 4;
    default:
      return type;
  }
}

std::uint32_t NerinAction::getMacroRepeatCountFromFW(std::uint8_t count) {
  return count == endless ? endless : count + 1U;
}

std::uint8_t NerinAction::getMacroType(std::int32_t menuIndex) {
  constexpr std::uint8_t types[] = {5, 12, 7, 4};
  return menuIndex >= 0 && menuIndex < std::ssize(types) ? types[menuIndex] : std::uint8_t{0};
}

std::int32_t NerinAction::getMacroType2(std::uint8_t type) {
  switch (type) {
    case 4:
      return 3;
    case 7:
      return 2;
    case 12:
      return 1;
    default:
      return 0;
  }
}
