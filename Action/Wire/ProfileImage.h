#pragma once

#include <array>
#include <bitset>
#include <cstdint>
#include <span>

#include "Action/Record/Records.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/ReportLayout.h"

// The image of a slot, as the mouse keeps it. Slots count from 0; the program offers ten.
namespace NerinAction {

using ProfileImage = std::array<std::uint8_t, reportlayout::imageSize>;
using ButtonEntry = std::array<std::uint8_t, imagelayout::buttonSize>;
// Some of the 16 buttons.
using ButtonSet = std::bitset<buttonCount>;

// Where the mouse keeps a button (0..15): positions 14 to 16 belong to no button of ours.
inline constexpr std::uint8_t devicePosition(int btnIndex) {
  return static_cast<std::uint8_t>(btnIndex > 13 ? btnIndex + 3 : btnIndex);
}

// A button as the mouse keeps it: function code and four parameters.
ButtonEntry encodeButton(const _BTN_INFO& btnInfo);
// Fills bytes 3..7 of a command with the button's entry.
void setBtnInfoDataPro(std::span<std::uint8_t, 8> buffer, const _BTN_INFO& btnInfo);

// The buttons that play a macro when the profile is written.
ButtonSet macroButtonsOf(const _Nerin_PROFILE& profile);
// The whole image of a slot, checksum included. The buttons of `disabled` are written as disabled.
ProfileImage encodeProfileImage(std::uint8_t slot, const _Nerin_PROFILE& profile,
                                const ButtonSet& disabled);
// Takes an image into the record and hands back the buttons that play a macro, whose macros are to
// be read. What an image does not hold stays as it was.
[[nodiscard]] ButtonSet decodeProfileImage(const ProfileImage& image, _Nerin_PROFILE& profile,
                                           const FunctionIdOf& functionIdOf);

// The mouse's rate byte for a rate index 0..3 (0 for another), and back.
std::uint8_t rateByteOf(std::uint32_t poRate);
std::uint32_t poRateOf(std::uint8_t rateByte);

}  // namespace NerinAction
