#pragma once

#include <cstdint>
#include <system_error>

// What the main window and the command line both do with a slot of the mouse.
namespace NerinAction {

// Makes the slot (0..9) the current one and reads it: its image into selProfile, its linked program
// into the library's scratch values. A linked profile becomes the selected one and takes over what
// the mouse holds. False for a slot without a name, and for one that it does not have; then the
// edited profile stays as it was.
bool loadSlot(int slot);
// The part of it that reads the mouse.
bool loadSlotProfile(int slot);
// The part of it that reads the slot's program link.
void loadSlotLink(int slot);

// Binds the current slot to a library profile and takes that profile as the edited one.
void bindSlot(std::uint64_t profileId);

// Stores the slot's program link with the profile and in the preferences.
void saveLinkApp();
// Writes selProfile, its name and its macros into the slot of the mouse.
void writeSlot(int slot);
// Commits the edit: program link, mouse, library, message to the service. Answers whether the
// library could be saved; whether the mouse took it is not known.
std::error_code applySlot();

}  // namespace NerinAction
