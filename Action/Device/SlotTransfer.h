#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Action/Device/DeviceLink.h"
#include "Action/Record/Records.h"
#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileImage.h"

// The slots of the mouse: their names, images and macros, out and in, and which of them is active.
// Slots count from 0; the program offers ten.
namespace NerinAction {

// The slot's name; nothing when it is no ASCII text.
ReadResult<std::optional<std::string>> getFWProfileName(std::uint8_t slot);
// Writes a name, cut to 65 characters, and refreshes. A name that is not ASCII is not sent at all.
Outcome setFWProfileName(std::uint8_t slot, const std::optional<std::string>& name);

// The slot's image as the mouse answers it, all zero but for its number when it does not answer.
ReadResult<ProfileImage> readProfileImage(std::uint8_t slot);
// The slot's image, from the mouse into currFWProfile, with the macros of its buttons.
Outcome getFWProfileDataPro(std::uint8_t slot);
// And back: the macros of currFWProfile first, then the image. A button whose macro the catalogue
// does not have is written as disabled.
Outcome setFWProfileDataPro(std::uint8_t slot);

// Reads a slot: links it to the library profile of its name, fills currFWProfile. The value is
// false for a slot without a name, which holds no profile; then only currFWProfile has changed, to
// all zero.
ReadResult<bool> getFWProfileData(std::uint8_t slot);
// Writes a slot: the library's current name, currFWProfile with its macros, refresh.
Outcome setFWProfileData(std::uint8_t slot);

// Reads a macro slot and takes apart what it holds, without touching the macro catalogue.
ReadResult<std::optional<MacroStream>> readMacroStream(std::uint8_t slot, int btnIndex);
// Writes the macro of currFWProfile's button (0..15). The value is false when the catalogue has no
// such macro.
ReadResult<bool> setFWMacroData(std::uint8_t slot, int btnIndex);
// Reads the macro of a button into the catalogue, under its name, and into currFWProfile's button.
// Nothing changes when the macro slot holds none.
Outcome getFWMacroData(std::uint8_t slot, int btnIndex);

Outcome setProfileIndexToDevice(std::uint8_t slot);
// The active slot, 0..15: the mouse has four bits for it.
ReadResult<std::uint8_t> getProfileIndexByDevice();

// Sets one button (0..15) of the active profile at once, and writes its macro when it plays one.
Outcome setBtnInfoToDevicePro(int btnIndex, const _BTN_INFO& btnInfo);

// The mouse knows no factory reset of a slot; this has no effect.
void redefaultFWProfile(std::uint8_t slot);

}  // namespace NerinAction
