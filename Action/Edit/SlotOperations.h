#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "Action/Device/DeviceLink.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/Outcome.h"

// The user's operations on a slot. The window and the command line both call these functions and
// add their own questions and progress. Slots count from 0.
namespace NerinAction {

// Makes the slot the current one and reads its image into the edited profile and its linked program
// into the library. A linked profile becomes the selected one and gets the record of the mouse;
// without a link, none is selected. For a slot that has no name or does not exist, the value is
// false and the edited profile does not change.
ReadResult<bool> loadSlot(int slot);

// The part of loadSlot that reads the mouse: fills editState->currFWProfile() and the library's
// name of the current slot. Does not change the edited profile or the library's profiles.
ReadResult<bool> readSlot(int slot);
// The part of loadSlot that needs no mouse: sets the current slot and its linked program.
void beginSlot(int slot);

// Activates another slot of the mouse. `whenSelected` runs after the mouse has changed slots and
// before the service is told.
Outcome changeSlot(int slot, const std::function<Outcome()>& whenSelected = {});

// Puts a library profile on the current slot and makes it the selected and the edited profile.
void bindSlot(std::uint64_t profileId);
// Begins a profile of that name on the current slot, with the edited record. The next Apply adds it
// to the library.
Outcome beginProfile(const std::string& name);
// Deletes the selected profile from the library and unlinks its slots and the current one.
Outcome deleteSelectedProfile();
// Whether deleteSelectedProfile can be undone: it was used in this run and not undone yet, and the
// library has room.
bool canUndoDelete();
// Brings back the profile that was deleted last, under its name where that is free. Slots that were
// linked to it and are still unlinked are linked to it again; if the current slot is one of them,
// the profile is selected. The edited record stays. Does nothing where canUndoDelete is false.
Outcome undoDelete();

// Adds a profile file to the library, under a name that is free and that the mouse can hold. The
// library is not saved.
struct Import {
  ProfieController::AddResult result = ProfieController::NoFile;
  std::string wanted;  // the name in the file
  std::string name;    // the name in the library
};
Import importProfile(const std::filesystem::path& file);

// Whether the current slot's profile is in the library, or the library has room for it.
bool hasRoomForSlot();

// Saves the slot's linked program in the profile and in the preferences.
Outcome saveLinkApp();
// Writes the edited profile, its name and its macros to the slot of the mouse.
Outcome writeSlot(int slot);
// Commits the edit: saves the linked program, writes the mouse and the library, tells the service.
// This, a reset and a rename fail with SlotStep::MakeProfile, and change nothing, where
// hasRoomForSlot is false.
Outcome applySlot();

// Whether the slot can be reset: only the first five have factory settings.
bool canResetSlot(int slot);
// Puts the slot's factory profile into the edit, the mouse and the library. Does nothing without a
// factory profile.
Outcome resetSlot();

// Renames the current slot: in the mouse at once, and in the library.
Outcome renameSlot(const std::string& name);

}  // namespace NerinAction
