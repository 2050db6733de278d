#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Action/Wire/ReportLayout.h"

// The mouse stores one macro for each button position of each slot.
namespace NerinAction {

using MacroReport = std::array<std::uint8_t, reportlayout::macroSize>;

// The prefix of the names that the program gives to unnamed macros. These names are never written
// to the mouse.
inline constexpr const char* generatedMacroName = "dmr_fw_macro_tag";

// The mouse's macro slot for a button (0..15) of a slot: 0..189 for slots 0..9.
std::uint8_t macroSlotOf(std::uint8_t slot, int btnIndex);

// One event of a macro, in the mouse's codes.
struct MacroStreamEvent {
  std::uint8_t code = 0;  // a device key code, or 120..126 for mouse buttons
  bool isRelease = false;
  // Milliseconds after the event: 0..65535 as read, low 16 bits as written. 0 or less is none.
  std::int32_t delay = 0;

  bool isMouseButton() const { return code >= 120 && code <= 126; }
};

// The content of a macro slot of the mouse.
struct MacroStream {
  std::uint8_t repeatType = 0;
  std::uint8_t repeatCount = 0;
  // When read, no value if the name is empty or not ASCII. Only ASCII is written.
  std::optional<std::string> name;
  std::vector<MacroStreamEvent> events;
};

// The report that writes a macro, including its checksum. Omits events that no longer fit.
MacroReport encodeMacroReport(std::uint8_t macroSlot, const MacroStream& macro);
// Decodes the mouse's answer; no value when the macro slot is empty.
// Whether an answer is that of the macro slot, with the right checksum. One that says that the slot
// holds no macro is whole in any case.
bool isWholeMacroAnswer(const MacroReport& report, std::uint8_t macroSlot);
std::optional<MacroStream> decodeMacroReport(const MacroReport& report);

}  // namespace NerinAction
