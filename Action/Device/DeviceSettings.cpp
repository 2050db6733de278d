#include "Action/Device/DeviceSettings.h"

#include <array>

#include "Action/Device/DeviceLink.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"

namespace {

constexpr std::uint8_t imageBank = 0;
constexpr std::uint8_t levelBank = 1;
constexpr std::uint8_t liftSelector = 46;

// The address of slot 0's LED zones in device memory.
constexpr std::uint32_t zonesAddress = 294;

constexpr std::uint8_t byteOf(std::uint32_t word) {
  return static_cast<std::uint8_t>(word);
}

// Bank 0 is the profile image without its header.
Outcome setImageByte(std::size_t imageOffset, std::uint32_t value) {
  return NerinAction::setSettingToDevicePro(
      imageBank, static_cast<std::uint8_t>(imageOffset - reportlayout::headerSize), byteOf(value));
}

constexpr std::size_t zoneOffset(std::size_t zone) {
  return imagelayout::atZones + imagelayout::zoneSize * zone;
}

void takeCurrentSlot() {
  editState->setCurrSetProfileID(
      static_cast<std::uint32_t>(ProfieController::getShareProCon().currFWProfileIndex()));
}

Outcome concludeLedSettings() {
  return NerinAction::sendCommand(std::array<std::uint8_t, 4>{0xC4, 0x03, 0x03, 0x03});
}

}  // namespace

Outcome NerinAction::admitLiveCommand() {
  if (liveSettings->isHeld) {
    return {SlotStep::HeldBack, std::make_error_code(std::errc::operation_canceled)};
  }
  liveSettings->hasTried = true;
  return {};
}

Outcome NerinAction::setSettingToDevicePro(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3) {
  return sendCommand(std::array<std::uint8_t, 5>{0xC4, 0x0F, pro, com2, com3});
}

Outcome NerinAction::setSettingToDevicePro2(std::uint8_t pro, std::uint8_t com2,
                                            std::uint8_t com3) {
  return sendCommand(std::array<std::uint8_t, 5>{0xC5, 0x00, pro, com2, com3});
}

Outcome NerinAction::setSettingToDevice() {
  if (Outcome held = admitLiveCommand(); !held.isDone()) {
    return held;
  }
  const TransferSeries series;
  using namespace imagelayout;
  const _Nerin_PROFILE& profile = editState->currSetProfile();
  Outcome outcome;
  for (std::size_t level = 0; level < levelCount; ++level) {
    const std::size_t entry = atDpi + levelSize * level;
    outcome += setImageByte(entry + 1, profile.xSensArr[level]);
    outcome += setImageByte(entry, profile.ySensArr[level]);
  }
  outcome += setImageByte(atLevels, profile.currSelectDPI + byteOf(profile.dpiLevel * 16));
  outcome += setSettingToDevicePro(levelBank, byteOf(profile.currSelectDPI), 0);
  outcome += setImageByte(atLift, profile.liftHeight | liftFlag);
  outcome += setSettingToDevicePro2(liftSelector, byteOf(profile.liftHeight), 0);
  return outcome;
}

Outcome NerinAction::setRateToDevice(std::uint32_t poRate) {
  if (Outcome held = admitLiveCommand(); !held.isDone()) {
    return held;
  }
  const TransferSeries series;
  const Outcome outcome = setImageByte(imagelayout::atRate, rateByteOf(poRate));
  pauseAfterReport();
  return outcome;
}

Outcome NerinAction::setColorToDevice() {
  if (Outcome held = admitLiveCommand(); !held.isDone()) {
    return held;
  }
  const TransferSeries series;
  takeCurrentSlot();
  const _Nerin_PROFILE& profile = editState->currSetProfile();
  const std::uint32_t base = getOffsetAdrBy(zonesAddress, editState->currSetProfileID());
  const std::uint8_t mode = profile.modeType == 1 ? 3 : 1;
  Outcome outcome;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& color = profile.lightColorArr[zone];
    std::uint32_t address = base + 4 * static_cast<std::uint32_t>(zone);
    for (const std::uint8_t value : {mode, byteOf(color.cR), byteOf(color.cG), byteOf(color.cB)}) {
      outcome += setAdrrData(value, static_cast<std::uint16_t>(address++));
    }
  }
  outcome += refreshDeviceData();
  return outcome;
}

Outcome NerinAction::setColorToDevice2() {
  if (Outcome held = admitLiveCommand(); !held.isDone()) {
    return held;
  }
  const TransferSeries series;
  takeCurrentSlot();
  Outcome outcome;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& color = editState->currSetProfile().lightColorArr[zone];
    outcome += setImageByte(zoneOffset(zone) + 1, color.cR);
    outcome += setImageByte(zoneOffset(zone) + 2, color.cG);
    outcome += setImageByte(zoneOffset(zone) + 3, color.cB);
  }
  outcome += concludeLedSettings();
  return outcome;
}

Outcome NerinAction::setModelToDevice() {
  if (Outcome held = admitLiveCommand(); !held.isDone()) {
    return held;
  }
  const TransferSeries series;
  // In normal mode, zone 2 has its own mode.
  constexpr std::array<std::uint8_t, zoneCount> normal{1, 1, 2, 1};
  constexpr std::array<std::uint8_t, zoneCount> battle{3, 3, 3, 3};
  const auto& modes = editState->currSetProfile().modeType != 0 ? battle : normal;
  Outcome outcome;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    outcome += setImageByte(zoneOffset(zone), modes[zone]);
  }
  outcome += concludeLedSettings();
  return outcome;
}
