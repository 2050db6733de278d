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

// Offsets inside bank 0.
constexpr std::uint8_t atRate = 0;
constexpr std::uint8_t atLift = 1;
constexpr std::uint8_t atLevels = 2;
constexpr std::uint8_t atDpi = 3;
constexpr std::uint8_t atZones = 38;

// Where the LED zones of slot 0 lie in device memory.
constexpr std::uint32_t zonesAddress = 294;

constexpr std::uint8_t liftFlag = 0x20;

constexpr std::uint8_t byteOf(std::uint32_t word) {
  return static_cast<std::uint8_t>(word);
}

constexpr std::uint8_t offsetOf(std::size_t base, std::size_t stride, std::size_t index) {
  return static_cast<std::uint8_t>(base + stride * index);
}

void setImageByte(std::uint8_t offset, std::uint32_t value) {
  NerinAction::setSettingToDevicePro(imageBank, offset, byteOf(value));
}

void takeCurrentSlot() {
  currSetProfileID =
      static_cast<std::uint32_t>(ProfieController::getShareProCon().currFWProfileIndex());
}

void concludeLedSettings() {
  NerinAction::sendCommand(std::array<std::uint8_t, 4>{0xC4, 0x03, 0x03, 0x03});
}

}  // namespace

void NerinAction::setSettingToDevicePro(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3) {
  sendCommand(std::array<std::uint8_t, 5>{0xC4, 0x0F, pro, com2, com3});
}

void NerinAction::setSettingToDevicePro2(std::uint8_t pro, std::uint8_t com2, std::uint8_t com3) {
  sendCommand(std::array<std::uint8_t, 5>{0xC5, 0x00, pro, com2, com3});
}

void NerinAction::setSettingToDevice() {
  for (std::size_t level = 0; level < levelCount; ++level) {
    setImageByte(offsetOf(atDpi + 1, 5, level), currSetProfile.xSensArr[level]);
    setImageByte(offsetOf(atDpi, 5, level), currSetProfile.ySensArr[level]);
  }
  setImageByte(atLevels, currSetProfile.currSelectDPI + byteOf(currSetProfile.dpiLevel * 16));
  setSettingToDevicePro(levelBank, byteOf(currSetProfile.currSelectDPI), 0);
  setImageByte(atLift, currSetProfile.liftHeight | liftFlag);
  setSettingToDevicePro2(liftSelector, byteOf(currSetProfile.liftHeight), 0);
}

void NerinAction::setRateToDevice(std::uint32_t poRate) {
  setImageByte(atRate, rateByteOf(poRate));
  pauseAfterReport();
}

void NerinAction::setColorToDevice() {
  takeCurrentSlot();
  const std::uint32_t base = getOffsetAdrBy(zonesAddress, currSetProfileID);
  const std::uint8_t mode = currSetProfile.modeType == 1 ? 3 : 1;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& colour = currSetProfile.lightColorArr[zone];
    const auto address = static_cast<std::uint16_t>(base + 4 * zone);
    const auto next = [&](int by) { return static_cast<std::uint16_t>(address + by); };
    setAdrrData(mode, address);
    setAdrrData(byteOf(colour.cR), next(1));
    setAdrrData(byteOf(colour.cG), next(2));
    setAdrrData(byteOf(colour.cB), next(3));
  }
  refreshDeviceData();
}

void NerinAction::setColorToDevice2() {
  takeCurrentSlot();
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& colour = currSetProfile.lightColorArr[zone];
    setImageByte(offsetOf(atZones + 1, 4, zone), colour.cR);
    setImageByte(offsetOf(atZones + 2, 4, zone), colour.cG);
    setImageByte(offsetOf(atZones + 3, 4, zone), colour.cB);
  }
  concludeLedSettings();
}

void NerinAction::setModelToDevice() {
  // Zone 2 has a mode of its own in normal operation.
  constexpr std::array<std::uint8_t, zoneCount> normal{1, 1, 2, 1};
  constexpr std::array<std::uint8_t, zoneCount> battle{3, 3, 3, 3};
  const auto& modes = currSetProfile.modeType != 0 ? battle : normal;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    setImageByte(offsetOf(atZones, 4, zone), modes[zone]);
  }
  concludeLedSettings();
}
