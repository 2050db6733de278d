#pragma once

#include <cstdint>

// Single settings of the active profile, changed at once while the user edits them. The values
// come from currSetProfile.
namespace NerinAction {

// One setting byte: bank 0 is the profile image without its header, bank 1 chooses a DPI level.
void setSettingToDevicePro(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3);
// The second setting command, which carries the lift height.
void setSettingToDevicePro2(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3);

// DPI levels and lift height: 14 commands, 420 ms.
void setSettingToDevice();
// The report rate by its index 0..3.
void setRateToDevice(std::uint32_t poRate);
// The colours of the four zones, by single bytes of device memory; no view uses it.
void setColorToDevice();
// The same by setting commands.
void setColorToDevice2();
// The LED mode.
void setModelToDevice();

}  // namespace NerinAction
