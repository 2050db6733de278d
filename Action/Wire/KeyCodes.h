#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include "Action/Record/Records.h"

// The two languages in which a button's function is told: the record's, which names keys by their
// Mac virtual key code, and the mouse's, which names them by HID usage and by modifier bits.
namespace NerinAction {

// Firmware function codes that the program treats in a way of their own.
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

// The two key combinations that the program knows as functions of their own, by KeyBit[0].
inline constexpr std::uint32_t controlRightArrow = 241;
inline constexpr std::uint32_t controlLeftArrow = 242;

// Mac key -> device code: 112..119 for modifiers, as macros carry them, else a HID usage; 0 for a
// key that the mouse does not know.
std::uint32_t GetFWKeyCode(std::uint32_t macKey);
// Device code -> Mac key; 0, which is also the key A, for a code that no key has.
std::uint32_t GetKeyCodeByFW(std::uint32_t deviceCode);
// Mac key -> modifier bit of a key entry; right-hand keys count as left-hand ones; else 0.
std::uint32_t getFWKeyCodeFlag(std::uint32_t macKey);
// Modifier byte with exactly one bit -> Mac key; else 0.
std::uint32_t getKeyCodeFlagByFW(std::uint32_t modifiers);

// The device code that is written for the button.
std::uint32_t getFunIdByBtn(const _BTN_INFO& btnInfo);
// The id of the mouse function with the button's code and key bits, as a catalogue of functions
// knows it; nothing for a function that it does not know.
using FunctionIdOf = std::function<std::optional<std::uint32_t>(const _BTN_INFO& btnInfo)>;
// Turns a button as it was read (FuncID = device code, KeyBit = parameter bytes) into the record's
// form, in place.
void setFunIDAndBtnType(_BTN_INFO* btnInfo, const FunctionIdOf& functionIdOf);

// How a macro button repeats, for the mouse. `type` stays as it is for an unknown mode.
void getMacroRepeatType(std::uint8_t& type, std::uint8_t& count, const _BTN_INFO& btnInfo);
// Device repeat type and count -> repeat mode of the record (1 once, 2 counted, 3 while pressed,
// 4 until stopped); another type is its own mode.
std::uint32_t getMacroRepeatTypeFromFW(std::uint8_t type, std::uint8_t count);
// The count of the record for a device count; 255 means none.
std::uint32_t getMacroRepeatCountFromFW(std::uint8_t count);
// Position in the repeat menu -> device repeat type, and back.
std::uint8_t getMacroType(std::int32_t menuIndex);
std::int32_t getMacroType2(std::uint8_t type);

}  // namespace NerinAction
