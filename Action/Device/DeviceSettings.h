#pragma once

#include <cstdint>

#include "Action/Record/Outcome.h"
#include "Kit/Core/ProcessWide.h"

// Changes single settings of the active profile at once while the user edits them. The values come
// from editState->currSetProfile().
namespace NerinAction {

// What the user tries belongs to the slot of the open window. While the mouse is on another slot,
// the commands of this header send nothing and fail with SlotStep::HeldBack.
struct LiveSettings {
  bool isHeld = false;
  // A command was sent since the window opened.
  bool hasTried = false;
};
inline ProcessWide<LiveSettings> liveSettings;
// Asks whether commands are held back, and notes a command that is sent.
Outcome admitLiveCommand();

// One setting byte: bank 0 is the profile image without its header; bank 1 selects a DPI level.
Outcome setSettingToDevicePro(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3);
// The second setting command, which carries the lift height.
Outcome setSettingToDevicePro2(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3);

// DPI levels and lift height: 14 commands, 420 ms.
Outcome setSettingToDevice();
// The report rate, by its index 0..3.
Outcome setRateToDevice(std::uint32_t poRate);
// The colors of the four zones, as single bytes of device memory. No view uses it.
Outcome setColorToDevice();
// The colors of the four zones, as setting commands.
Outcome setColorToDevice2();
// The LED mode.
Outcome setModelToDevice();

}  // namespace NerinAction
