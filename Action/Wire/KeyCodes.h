#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "Action/Record/Records.h"

// Converts a button's function between the record, which stores Mac virtual key codes, and the
// mouse, which stores HID usages and modifier bits.
namespace NerinAction {

// Firmware function codes that the program handles specially.
enum FunctionCode : std::uint32_t {
  FunctionMouse = 1,
  FunctionKey = 2,
  FunctionMacro = 6,
  FunctionLevelUp = 9,
  FunctionLevelDown = 10,
  FunctionShowDpi = 11,
  FunctionLaunch = 15,
  FunctionSetDpi = 16,
  FunctionLevelCycle = 21,
  FunctionDisabled = 255,
};

// The two key combinations that are functions in the program, by KeyBit[0].
inline constexpr std::uint32_t controlRightArrow = 241;
inline constexpr std::uint32_t controlLeftArrow = 242;

// Mac key -> device code: 112..119 for modifiers, as in macros, otherwise a HID usage; 0 for a key
// that the mouse does not know.
std::uint32_t GetFWKeyCode(std::uint32_t macKey);
// Device code -> Mac key. Returns 0, which is also the key A, for an unknown code.
std::uint32_t GetKeyCodeByFW(std::uint32_t deviceCode);
// Mac key -> modifier bit of a key entry; right-hand keys count as left-hand ones; otherwise 0.
std::uint32_t getFWKeyCodeFlag(std::uint32_t macKey);
// Modifier byte with exactly one bit -> Mac key; otherwise 0.
std::uint32_t getKeyCodeFlagByFW(std::uint32_t modifiers);

// The device code to write for the button.
std::uint32_t getFunIdByBtn(const _BTN_INFO& btnInfo);
// Looks up the id of the mouse function with the button's code and key bits.
using FunctionIdOf = std::function<std::optional<std::uint32_t>(const _BTN_INFO& btnInfo)>;
// Converts a button from the mouse's form (FuncID = device code, KeyBit = parameter bytes) to the
// record's form, in place.
void setFunIDAndBtnType(_BTN_INFO* btnInfo, const FunctionIdOf& functionIdOf);

// The nearest number of runs that the mouse can count: 1..254.
std::uint32_t storableRepeatCount(std::uint32_t count);
// How the mouse repeats a macro button. A count past a byte becomes the nearest that it can store.
// An unknown mode leaves `type` unchanged.
void getMacroRepeatType(std::uint8_t& type, std::uint8_t& count, const _BTN_INFO& btnInfo);
// Device repeat type and count -> repeat mode of the record (1 once, 2 counted, 3 while pressed, 4
// until stopped). Any other type is returned unchanged.
std::uint32_t getMacroRepeatTypeFromFW(std::uint8_t type, std::uint8_t count);
// Device count -> count of the record; 255 means no count.
std::uint32_t getMacroRepeatCountFromFW(std::uint8_t count);
// Index in the repeat menu -> device repeat type, and back.
std::uint8_t getMacroType(std::int32_t menuIndex);
std::int32_t getMacroType2(std::uint8_t type);

}  // namespace NerinAction
