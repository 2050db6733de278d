#include "Action/Wire/ProfileImage.h"

#include <algorithm>
#include <cmath>

namespace {

using namespace imagelayout;

constexpr std::uint8_t normalZone = 1;
constexpr std::uint8_t battleZone = 3;

// Positions that belong to no button; the mouse expects these codes there.
struct FixedEntry {
  std::size_t position;
  std::uint8_t code;
};
constexpr FixedEntry fixedEntries[] = {{14, 0xFF}, {15, 0x0D}, {16, 0x12}};

// The color that the mouse shows for each DPI level.
constexpr std::uint8_t Dpi_Led_color[levelCount][3] = {
    {255, 0, 0}, {0, 0, 255}, {0, 255, 0}, {255, 64, 0}, {255, 0, 255}};

constexpr std::uint8_t byteOf(std::uint32_t word) {
  return static_cast<std::uint8_t>(word);
}

constexpr std::size_t entryOffset(int btnIndex) {
  return atButtons + buttonSize * NerinAction::devicePosition(btnIndex);
}

void encodeLevels(const _Nerin_PROFILE& profile, NerinAction::ProfileImage& image) {
  image[atLevels] = byteOf(profile.currSelectDPI + profile.dpiLevel * 16);
  const std::size_t used = std::min<std::size_t>(profile.dpiLevel, levelCount);
  for (std::size_t level = 0; level < used; ++level) {
    std::uint8_t* entry = image.data() + atDpi + levelSize * level;
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
    profile.ySensArr[level] = image[atDpi + levelSize * level];
    profile.xSensArr[level] = image[atDpi + levelSize * level + 1];
  }
}

void encodeZones(const _Nerin_PROFILE& profile, NerinAction::ProfileImage& image) {
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& color = profile.lightColorArr[zone];
    std::uint8_t* entry = image.data() + atZones + zoneSize * zone;
    entry[0] = profile.modeType == 1 ? battleZone : normalZone;
    entry[1] = byteOf(color.cR);
    entry[2] = byteOf(color.cG);
    entry[3] = byteOf(color.cB);
  }
}

void decodeZones(const NerinAction::ProfileImage& image, _Nerin_PROFILE& profile) {
  profile.modeType = image[atZones] == battleZone ? 1 : 0;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const std::uint8_t* entry = image.data() + atZones + zoneSize * zone;
    profile.lightColorArr[zone] = {entry[1], entry[2], entry[3]};
  }
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

void NerinAction::setBtnInfoDataPro(std::span<std::uint8_t, 8> buffer, const _BTN_INFO& btnInfo) {
  const ButtonEntry entry = encodeButton(btnInfo);
  std::copy(entry.begin(), entry.end(), buffer.begin() + 3);
}

NerinAction::ButtonSet NerinAction::macroButtonsOf(const _Nerin_PROFILE& profile) {
  ButtonSet buttons;
  for (std::size_t index = 0; index < buttonCount; ++index) {
    buttons[index] = profile.btnInfo[index].FuncTableId == FunctionMacro;
  }
  return buttons;
}

NerinAction::ProfileImage NerinAction::encodeProfileImage(std::uint8_t slot,
                                                          const _Nerin_PROFILE& profile,
                                                          const ButtonSet& disabled) {
  ProfileImage image{};
  image[0] = reportlayout::image;
  image[reportlayout::atSlot] = slot;
  image[atRate] = rateByteOf(profile.poRate);
  image[atLift] = byteOf(profile.liftHeight) | liftFlag;
  encodeLevels(profile, image);
  encodeZones(profile, image);
  for (const FixedEntry& fixed : fixedEntries) {
    image[atButtons + buttonSize * fixed.position] = fixed.code;
  }
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    const auto button = static_cast<std::size_t>(index);
    const ButtonEntry entry = disabled[button] ? ButtonEntry{byteOf(FunctionDisabled)}
                                               : encodeButton(profile.btnInfo[button]);
    std::copy(entry.begin(), entry.end(), image.data() + entryOffset(index));
  }
  image[reportlayout::atChecksum] = checksumOfReport(image);
  return image;
}

NerinAction::ButtonSet NerinAction::decodeProfileImage(const ProfileImage& image,
                                                       _Nerin_PROFILE& profile,
                                                       const FunctionIdOf& functionIdOf) {
  profile.poRate = poRateOf(image[atRate]);
  profile.liftHeight = image[atLift] & liftMask;
  decodeLevels(image, profile);
  decodeZones(image, profile);
  ButtonSet macros;
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    _BTN_INFO& button = profile.btnInfo[index];
    const std::uint8_t* entry = image.data() + entryOffset(index);
    button.FuncID = entry[0];
    std::copy_n(entry + 1, buttonSize - 1, button.KeyBit);
    setFunIDAndBtnType(&button, functionIdOf);
    macros[static_cast<std::size_t>(index)] =
        button.FuncID == FunctionMacro && button.btnType == ButtonTypeMacro;
  }
  return macros;
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
