#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

#include "Action/Device/DeviceLink.h"
#include "Action/Record/Outcome.h"

// What a user does to a slot of the mouse. The window and the command line both take these roads;
// each adds its questions and its progress around them. Slots count from 0.
namespace NerinAction {

// Makes the slot the current one and reads it: its image into the edited profile, its linked
// program into the library's scratch values. A linked profile becomes the selected one and takes
// over what the mouse holds; without a link none is selected. The value is false for a slot without
// a name and for a slot that the mouse does not have; the edited profile then stays as it was.
ReadResult<bool> loadSlot(int slot);

// The part of it that reads the mouse: fills editState->currFWProfile() and the library's name of
// the current slot. Neither the edited profile nor the library's profiles change.
ReadResult<bool> readSlot(int slot);
// The part of it that needs no mouse: makes the slot the current one, with its linked program.
void beginSlot(int slot);

// Makes another slot of the mouse the active one. `whenSelected` runs once the mouse is on it and
// before the service is told.
Outcome changeSlot(int slot, const std::function<Outcome()>& whenSelected = {});

// Puts a library profile on the current slot: it becomes the selected and the edited one.
void bindSlot(std::uint64_t profileId);
// Begins a profile of that name on the current slot, with the edited record. The next Apply puts it
// into the library.
Outcome beginProfile(const std::string& name);
// Takes the selected profile out of the library; the current slot then has no link.
Outcome deleteSelectedProfile();

// Stores the slot's program link with the profile and in the preferences.
Outcome saveLinkApp();
// Writes the edited profile, its name and its macros into the slot of the mouse.
Outcome writeSlot(int slot);
// Commits the edit: program link, mouse, library, message to the service.
Outcome applySlot();

// Whether Reset exists for the slot: only the first five have factory settings to go back to.
bool canResetSlot(int slot);
// Puts the slot's factory profile into the edit, the mouse and the library. Nothing happens without
// a factory profile.
Outcome resetSlot();

// Gives the current slot a name: in the mouse at once, and in the library.
Outcome renameSlot(const std::string& name);

}  // namespace NerinAction
