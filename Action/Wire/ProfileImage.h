#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>

#include "Action/Record/Records.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/ReportLayout.h"

// The mouse's image of a slot. Slots count from 0; the program offers ten.
namespace NerinAction {

using ProfileImage = std::array<std::uint8_t, reportlayout::imageSize>;
using ButtonEntry = std::array<std::uint8_t, imagelayout::buttonSize>;
// A subset of the 16 buttons.
using ButtonSet = std::bitset<buttonCount>;

// The mouse's position of a button (0..15). Positions 14 to 16 belong to no button.
inline constexpr std::uint8_t devicePosition(int btnIndex) {
  return static_cast<std::uint8_t>(btnIndex > 13 ? btnIndex + 3 : btnIndex);
}

// The mouse's form of a button: function code and four parameters.
ButtonEntry encodeButton(const _BTN_INFO& btnInfo);
// Fills bytes 3..7 of a command with the button's entry.
void setBtnInfoDataPro(std::span<std::uint8_t, 8> buffer, const _BTN_INFO& btnInfo);

// The buttons whose macro is written with the profile.
ButtonSet macroButtonsOf(const _Nerin_PROFILE& profile);
// The whole image of a slot, with its checksum. Buttons in `disabled` are written as disabled.
ProfileImage encodeProfileImage(std::uint8_t slot, const _Nerin_PROFILE& profile,
                                const ButtonSet& disabled);
// Decodes an image into the record and returns the buttons whose macros must be read. Leaves fields
// that the image lacks unchanged.
[[nodiscard]] ButtonSet decodeProfileImage(const ProfileImage& image, _Nerin_PROFILE& profile,
                                           const FunctionIdOf& functionIdOf);

// Rate index 0..3 -> the mouse's rate byte (0 for any other index), and back.
std::uint8_t rateByteOf(std::uint32_t poRate);
std::uint32_t poRateOf(std::uint8_t rateByte);

}  // namespace NerinAction
