#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>

#include "Action/Record/Records.h"

// The name and the image of a slot, as the mouse keeps them, and the selection of the active slot.
// Slots count from 0; the program offers ten.
namespace NerinAction {

inline constexpr std::size_t imageSize = 154;
inline constexpr std::size_t nameSize = 70;
// The most characters of a name that the mouse keeps.
inline constexpr std::size_t maximumNameLength = 65;
using ProfileImage = std::array<std::uint8_t, imageSize>;
using ButtonEntry = std::array<std::uint8_t, 5>;

// Where the mouse keeps a button (0..15): positions 14 to 16 belong to no button of ours.
inline constexpr std::uint8_t devicePosition(int btnIndex) {
  return static_cast<std::uint8_t>(btnIndex > 13 ? btnIndex + 3 : btnIndex);
}

// A button as the mouse keeps it: function code and four parameters.
ButtonEntry encodeButton(const _BTN_INFO& btnInfo);
// The whole image of a slot, checksum included. `writeMacro` is called for each button that plays
// a macro, before the image is complete; a button for which it answers false is disabled.
ProfileImage encodeProfileImage(std::uint8_t slot, const _Nerin_PROFILE& profile,
                                const std::function<bool(int btnIndex)>& writeMacro);
// Takes an image into the record. `readMacro` is called for each button that plays a macro, after
// the button is in the record. What an image does not hold stays as it was.
void decodeProfileImage(const ProfileImage& image, _Nerin_PROFILE& profile,
                        const std::function<void(int btnIndex)>& readMacro);
// The mouse's rate byte for a rate index 0..3 (0 for another), and back.
std::uint8_t rateByteOf(std::uint32_t poRate);
std::uint32_t poRateOf(std::uint8_t rateByte);

// The slot's name; nothing when it is no ASCII text.
std::optional<std::string> getFWProfileName(std::uint8_t slot);
// Writes a name, cut to 65 characters, and refreshes. A name that is not ASCII is not sent at all.
void setFWProfileName(std::uint8_t slot, const std::optional<std::string>& name);

// The slot's image as the mouse answers it, all zero but for its number when it does not answer.
ProfileImage readProfileImage(std::uint8_t slot);
// The slot's image, from the mouse into currFWProfile and back. Macros go with their buttons.
void getFWProfileDataPro(std::uint8_t slot);
void setFWProfileDataPro(std::uint8_t slot);

// Reads a slot: links it to the library profile of its name, fills currFWProfile. False for a slot
// without a name, which holds no profile; then only currFWProfile has changed, to all zero.
bool getFWProfileData(std::uint8_t slot);
// Writes a slot: the library's current name, currFWProfile with its macros, refresh.
void setFWProfileData(std::uint8_t slot);

void setProfileIndexToDevice(std::uint8_t slot);
// The active slot, 0..15: the mouse has four bits for it.
std::uint8_t getProfileIndexByDevice();

// Fills bytes 3..7 of a command with the button's entry.
void setBtnInfoDataPro(std::span<std::uint8_t, 8> buffer, const _BTN_INFO& btnInfo);
// Sets one button (0..15) of the active profile at once, and writes its macro when it plays one.
void setBtnInfoToDevicePro(int btnIndex, const _BTN_INFO& btnInfo);

// The mouse knows no factory reset of a slot; this has no effect.
void redefaultFWProfile(std::uint8_t slot);

}  // namespace NerinAction
