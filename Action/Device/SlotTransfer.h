#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Action/Device/DeviceLink.h"
#include "Action/Record/Records.h"
#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileImage.h"

// Reads and writes the slots of the mouse (names, images and macros) and selects the active slot.
// Slots count from 0; the program offers ten.
namespace NerinAction {

// The slot's name; no value when it is not ASCII.
ReadResult<std::optional<std::string>> getFWProfileName(std::uint8_t slot);
// Cuts the name to 65 characters, writes it and refreshes. Does not send a name that is not ASCII.
Outcome setFWProfileName(std::uint8_t slot, const std::optional<std::string>& name);

// The slot's image. Without an answer, all bytes but the slot's number are zero.
ReadResult<ProfileImage> readProfileImage(std::uint8_t slot);
// The slot's image and the macros of its buttons, from the mouse into currFWProfile. Nothing
// changes unless all of them were read.
Outcome getFWProfileDataPro(std::uint8_t slot);
// Writes the macros of currFWProfile, then the image. A button whose macro is not in the catalogue
// is written as disabled.
Outcome setFWProfileDataPro(std::uint8_t slot);

// Reads a slot: links it to the library profile of its name, and fills currFWProfile with its image
// and macros. The read counts only if every answer arrived, for that slot and with a right
// checksum; it is tried three times. A slot without a name holds no profile: the value is false. On
// failure and without a name, only currFWProfile changes, to zeros.
ReadResult<bool> getFWProfileData(std::uint8_t slot);
// Writes a slot: the library's current name, currFWProfile with its macros, and a refresh.
Outcome setFWProfileData(std::uint8_t slot);

// Reads and decodes a macro slot without changing the macro catalogue.
ReadResult<std::optional<MacroStream>> readMacroStream(std::uint8_t slot, int btnIndex);
// Writes the macro of currFWProfile's button (0..15). The value is false when the macro is not in
// the catalogue.
ReadResult<bool> setFWMacroData(std::uint8_t slot, int btnIndex);
// Reads the macro of a button into the catalogue, under its name, and into currFWProfile's button.
// An empty macro slot changes nothing.
Outcome getFWMacroData(std::uint8_t slot, int btnIndex);

Outcome setProfileIndexToDevice(std::uint8_t slot);
// The active slot, 0..15: the mouse stores it in four bits.
ReadResult<std::uint8_t> getProfileIndexByDevice();
// Resets the mouse and selects its active slot again. Fails without a mouse.
Outcome resetDevPro();

// Sets one button (0..15) of the active profile at once, and writes the macro that it plays.
Outcome setBtnInfoToDevicePro(int btnIndex, const _BTN_INFO& btnInfo);

// The mouse knows no factory reset of a slot; this has no effect.
void redefaultFWProfile(std::uint8_t slot);

}  // namespace NerinAction
