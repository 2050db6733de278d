#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Action/Wire/ReportLayout.h"

// The macros that the mouse plays by itself: one macro slot for each button position of each slot.
namespace NerinAction {

using MacroReport = std::array<std::uint8_t, reportlayout::macroSize>;

// Names that the program makes for macros that the mouse keeps without one begin with this. They
// are never written to the mouse.
inline constexpr const char* generatedMacroName = "dmr_fw_macro_tag";

// Where the macro of a button (0..15) of a slot lies in the mouse, 0..189 for slots 0..9.
std::uint8_t macroSlotOf(std::uint8_t slot, int btnIndex);

// One event of a macro as the mouse keeps it.
struct MacroStreamEvent {
  std::uint8_t code = 0;  // a device key code, or 120..126 for mouse buttons
  bool isRelease = false;
  // After it, in milliseconds: 0..65535 as read, the low 16 bits are written. 0 or less is none.
  std::int32_t delay = 0;

  bool isMouseButton() const { return code >= 120 && code <= 126; }
};

// What a macro slot of the mouse holds.
struct MacroStream {
  std::uint8_t repeatType = 0;
  std::uint8_t repeatCount = 0;
  // As read, nothing when it is empty or no ASCII text. Only ASCII is written.
  std::optional<std::string> name;
  std::vector<MacroStreamEvent> events;
};

// The report that writes a macro, checksum included. Events that no longer fit are left out.
MacroReport encodeMacroReport(std::uint8_t macroSlot, const MacroStream& macro);
// Takes apart what the mouse answered; nothing when the macro slot holds no macro.
std::optional<MacroStream> decodeMacroReport(const MacroReport& report);

}  // namespace NerinAction
