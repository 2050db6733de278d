#include "Action/Wire/ProfileImage.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "Action/Device/DeviceLink.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/Utf8.h"

namespace {

constexpr std::uint8_t imageReport = 5;
constexpr std::uint8_t nameReport = 6;
constexpr std::uint16_t activeSlotAddress = 25;

// Offsets inside the image.
constexpr std::size_t atRate = 4;
constexpr std::size_t atLift = 5;
constexpr std::size_t atLevels = 6;
constexpr std::size_t atDpi = 7;
constexpr std::size_t atZones = 42;
constexpr std::size_t atButtons = 58;
constexpr std::size_t imageEnd = 153;  // of what the checksum covers
constexpr std::size_t zoneSize = 4;

constexpr std::uint8_t liftMask = 0x1F;
constexpr std::uint8_t liftFlag = 0x20;
constexpr std::uint8_t normalZone = 1;
constexpr std::uint8_t battleZone = 3;

// Positions of the image that belong to no button; the mouse expects these codes there.
struct FixedEntry {
  std::size_t position;
  std::uint8_t code;
};
constexpr FixedEntry fixedEntries[] = {{14, 0xFF}, {15, 0x0D}, {16, 0x12}};

// The colour that the mouse shows for each DPI level.
constexpr std::uint8_t Dpi_Led_color[levelCount][3] = {
    {255, 0, 0}, {0, 0, 255}, {0, 255, 0}, {255, 64, 0}, {255, 0, 255}};

constexpr std::uint8_t byteOf(std::uint32_t word) {
  return static_cast<std::uint8_t>(word);
}

constexpr std::size_t entryOffset(int btnIndex) {
  return atButtons +
         std::tuple_size_v<NerinAction::ButtonEntry> * NerinAction::devicePosition(btnIndex);
}

void encodeLevels(const _Nerin_PROFILE& profile, NerinAction::ProfileImage& image) {
  image[atLevels] = byteOf(profile.currSelectDPI + profile.dpiLevel * 16);
  const std::size_t used = std::min<std::size_t>(profile.dpiLevel, levelCount);
  for (std::size_t level = 0; level < used; ++level) {
    std::uint8_t* entry = image.data() + atDpi + 5 * level;
    entry[0] = byteOf(profile.ySensArr[level]);
    entry[1] = byteOf(profile.xSensArr[level]);
    std::copy_n(Dpi_Led_color[level], 3, entry + 2);
  }
}

void decodeLevels(const NerinAction::ProfileImage& image, _Nerin_PROFILE& profile) {
  const std::uint32_t packed = image[atLevels];
  profile.currSelectDPI = packed & 0x0FU;
  profile.dpiLevel = std::clamp<std::uint32_t>(packed >> 4U, 1, levelCount);
  for (std::size_t level = 0; level < levelCount; ++level) {
    profile.ySensArr[level] = image[atDpi + 5 * level];
    profile.xSensArr[level] = image[atDpi + 5 * level + 1];
  }
}

void encodeZones(const _Nerin_PROFILE& profile, NerinAction::ProfileImage& image) {
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& colour = profile.lightColorArr[zone];
    std::uint8_t* entry = image.data() + atZones + zoneSize * zone;
    entry[0] = profile.modeType == 1 ? battleZone : normalZone;
    entry[1] = byteOf(colour.cR);
    entry[2] = byteOf(colour.cG);
    entry[3] = byteOf(colour.cB);
  }
}

void decodeZones(const NerinAction::ProfileImage& image, _Nerin_PROFILE& profile) {
  profile.modeType = image[atZones] == battleZone ? 1 : 0;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const std::uint8_t* entry = image.data() + atZones + zoneSize * zone;
    profile.lightColorArr[zone] = {entry[1], entry[2], entry[3]};
  }
}

void logHex(unsigned value) {
  char text[16];
  std::snprintf(text, sizeof text, "%x", value);
  LXLogger::debug(text);
}

}  // namespace

NerinAction::ButtonEntry NerinAction::encodeButton(const _BTN_INFO& btnInfo) {
  const std::uint32_t key = btnInfo.KeyBit[0];
  if (btnInfo.FuncTableId == FunctionMouse && key == controlRightArrow) {
    return {FunctionKey, 0x08, 0x4F, 0, 0};
  }
  if (btnInfo.FuncTableId == FunctionMouse && key == controlLeftArrow) {
    return {FunctionKey, 0x08, 0x50, 0, 0};
  }
  const std::uint8_t code = byteOf(getFunIdByBtn(btnInfo));
  if (btnInfo.FuncTableId == FunctionKey) {
    const std::uint8_t modifier = byteOf(getFWKeyCodeFlag(key));
    return modifier != 0 ? ButtonEntry{code, modifier, 0, 0, 0}
                         : ButtonEntry{code, 0, byteOf(GetFWKeyCode(key)), 0, 0};
  }
  return {code, byteOf(btnInfo.KeyBit[0]), byteOf(btnInfo.KeyBit[1]), byteOf(btnInfo.KeyBit[2]),
          byteOf(btnInfo.KeyBit[3])};
}

NerinAction::ProfileImage NerinAction::encodeProfileImage(
    std::uint8_t slot, const _Nerin_PROFILE& profile,
    const std::function<bool(int btnIndex)>& writeMacro) {
  ProfileImage image{};
  image[0] = imageReport;
  image[2] = slot;
  image[atRate] = rateByteOf(profile.poRate);
  image[atLift] = byteOf(profile.liftHeight) | liftFlag;
  encodeLevels(profile, image);
  encodeZones(profile, image);
  for (const FixedEntry& fixed : fixedEntries) {
    image[atButtons + 5 * fixed.position] = fixed.code;
  }
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    const _BTN_INFO& button = profile.btnInfo[index];
    const bool isDisabled = button.FuncTableId == FunctionMacro && !writeMacro(index);
    const ButtonEntry entry =
        isDisabled ? ButtonEntry{byteOf(FunctionDisabled)} : encodeButton(button);
    std::copy(entry.begin(), entry.end(), image.data() + entryOffset(index));
  }
  image[3] = GetChecksum(std::span(image).subspan(4, imageEnd - 4));
  return image;
}

void NerinAction::decodeProfileImage(const ProfileImage& image, _Nerin_PROFILE& profile,
                                     const std::function<void(int btnIndex)>& readMacro) {
  profile.poRate = poRateOf(image[atRate]);
  profile.liftHeight = image[atLift] & liftMask;
  decodeLevels(image, profile);
  decodeZones(image, profile);
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    _BTN_INFO& button = profile.btnInfo[index];
    const std::uint8_t* entry = image.data() + entryOffset(index);
    button.FuncID = entry[0];
    std::copy_n(entry + 1, 4, button.KeyBit);
    setFunIDAndBtnType(&button);
    if (button.FuncID == FunctionMacro && button.btnType == ButtonTypeMacro) {
      readMacro(index);
    }
  }
}

std::uint8_t NerinAction::rateByteOf(std::uint32_t poRate) {
  return static_cast<std::uint8_t>(std::exp2(3.0 - static_cast<double>(poRate)));
}

std::uint32_t NerinAction::poRateOf(std::uint8_t rateByte) {
  const unsigned value = rateByte & 0x0FU;
  if (value == 0) {
    return 0;
  }
  return static_cast<std::uint32_t>(std::max(0.0, 3.0 - std::log2(value)));
}

std::optional<std::string> NerinAction::getFWProfileName(std::uint8_t slot) {
  setReadyPro(slot, readyProfile);
  std::array<std::uint8_t, nameSize> report{nameReport, 0, slot};
  GetCommand2(report);
  pauseAfterReport();
  // All 65 bytes may be used, so that the name need not end with a NUL.
  const auto* begin = report.data() + 5;
  const auto* end = std::find(begin, begin + maximumNameLength, 0);
  std::string name(begin, end);
  LXLogger::debug("resultStr=" + name);
  return utf8::isAscii(name) ? std::optional(std::move(name)) : std::nullopt;
}

void NerinAction::setFWProfileName(std::uint8_t slot, const std::optional<std::string>& name) {
  if (!name || !utf8::isAscii(*name)) {
    return;
  }
  const std::size_t length = std::min(name->size(), maximumNameLength);
  std::array<std::uint8_t, nameSize> report{nameReport, 0, slot};
  report[4] = static_cast<std::uint8_t>(length);
  std::copy_n(name->begin(), length, report.begin() + 5);
  // The last of the 65 characters is not covered.
  report[3] = GetChecksum(std::span(report).subspan(4, maximumNameLength));
  LXLogger::debug(std::to_string(length));
  logHex(report[3]);
  logHex(static_cast<unsigned>(length));
  SetCommand2(report);
  pauseAfterReport();
  refreshDeviceData();
}

NerinAction::ProfileImage NerinAction::readProfileImage(std::uint8_t slot) {
  setReadyPro(slot, readyProfile);
  ProfileImage image{imageReport};
  GetCommand2(image);
  pauseAfterReport();
  return image;
}

void NerinAction::getFWProfileDataPro(std::uint8_t slot) {
  // The answer is kept here while macros are read in between.
  const ProfileImage image = readProfileImage(slot);
  decodeProfileImage(image, currFWProfile, [&](int index) { getFWMacroData(slot, index); });
}

void NerinAction::setFWProfileDataPro(std::uint8_t slot) {
  ProfileImage image = encodeProfileImage(slot, currFWProfile,
                                          [&](int index) { return setFWMacroData(slot, index); });
  SetCommand2(image);
  pauseAfterReport();
}

bool NerinAction::getFWProfileData(std::uint8_t slot) {
  currFWProfile = {};
  const auto name = getFWProfileName(slot);
  if (!name || name->empty()) {
    return false;
  }
  ProfieController& library = ProfieController::getShareProCon();
  if (slot < ProfieController::slotCount) {
    const auto profile = library.getProfileByName(name);
    library.fwProfileID()[slot] = profile ? profile->profileId() : ProfieController::notLinked;
  }
  getFWProfileDataPro(slot);
  library.setCurrFWProfileName(name);
  return true;
}

void NerinAction::setFWProfileData(std::uint8_t slot) {
  setFWProfileName(slot, ProfieController::getShareProCon().currFWProfileName());
  setFWProfileDataPro(slot);
  refreshDeviceData();
}

void NerinAction::setProfileIndexToDevice(std::uint8_t slot) {
  setAdrrData(static_cast<std::uint8_t>(0xA0U | slot), activeSlotAddress);
  sendCommand(std::array<std::uint8_t, 3>{0xC4, 0x07, slot});
}

std::uint8_t NerinAction::getProfileIndexByDevice() {
  return getAdrrDataWithAddr(activeSlotAddress) & 0x0FU;
}

void NerinAction::setBtnInfoDataPro(std::span<std::uint8_t, 8> buffer, const _BTN_INFO& btnInfo) {
  const ButtonEntry entry = encodeButton(btnInfo);
  std::copy(entry.begin(), entry.end(), buffer.begin() + 3);
}

void NerinAction::setBtnInfoToDevicePro(int btnIndex, const _BTN_INFO& btnInfo) {
  if (btnIndex < 0 || btnIndex >= static_cast<int>(buttonCount)) {
    return;
  }
  currSetProfileID =
      static_cast<std::uint32_t>(ProfieController::getShareProCon().currFWProfileIndex());
  std::array<std::uint8_t, 8> command{0xC4, 0x0E, devicePosition(btnIndex)};
  setBtnInfoDataPro(command, btnInfo);
  if (btnInfo.FuncTableId == FunctionMacro) {
    currFWProfile = currSetProfile;
    currFWProfile.btnInfo[btnIndex] = btnInfo;
    if (!setFWMacroData(byteOf(currSetProfileID), btnIndex)) {
      // Two more parameters stay in the command; the mouse does not look at those of a disabled
      // button.
      command[3] = byteOf(FunctionDisabled);
      command[4] = 0;
      command[5] = 0;
    }
  }
  sendCommand(command);
}

void NerinAction::redefaultFWProfile(std::uint8_t slot) {
  static_cast<void>(slot);
}
