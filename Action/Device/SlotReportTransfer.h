#pragma once

#include <cstdint>

#include "Action/Device/DeviceLink.h"
#include "Action/Wire/SlotReports.h"

// A slot of the mouse in its own bytes, out and in. Nothing of the edit, the library or the macro
// catalogue changes.
namespace NerinAction {

// The name, the image and the macros of the buttons that play one; a button whose macro the mouse
// does not hold has none. The read counts only if every answer arrived, for that slot and with a
// right checksum; it is tried three times.
ReadResult<SlotReports> readSlotReports(std::uint8_t slot);
// Writes the reports to their slot, in the order and with the pauses of every write of a slot.
// Whether the mouse took each byte shows only when it is read again.
Outcome writeSlotReports(std::uint8_t slot, const SlotReports& reports);

}  // namespace NerinAction
