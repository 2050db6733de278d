#pragma once

#include <cstdint>

#include "Action/Record/Outcome.h"

// Single settings of the active profile, changed at once while the user edits them. The values
// come from editState->currSetProfile().
namespace NerinAction {

// One setting byte: bank 0 is the profile image without its header, bank 1 chooses a DPI level.
Outcome setSettingToDevicePro(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3);
// The second setting command, which carries the lift height.
Outcome setSettingToDevicePro2(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3);

// DPI levels and lift height: 14 commands, 420 ms.
Outcome setSettingToDevice();
// The report rate by its index 0..3.
Outcome setRateToDevice(std::uint32_t poRate);
// The colors of the four zones, by single bytes of device memory; no view uses it.
Outcome setColorToDevice();
// The same by setting commands.
Outcome setColorToDevice2();
// The LED mode.
Outcome setModelToDevice();

}  // namespace NerinAction
