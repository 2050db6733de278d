#pragma once

#include <cstdint>

#include "Action/Record/Records.h"

// The state of the edit that is going on, one of each for the process.

// The profile being edited for the current slot. Every view edits it, Apply writes it.
inline _Nerin_PROFILE selProfile{};
// The working copy from which live settings are sent to the mouse, and the slot it belongs to.
inline _Nerin_PROFILE currSetProfile{};
inline std::uint32_t currSetProfileID = 0;
// The image of one device slot, read from the mouse or about to be written.
inline _Nerin_PROFILE currFWProfile{};
// There are edits that were not applied.
inline bool isNeedSave = false;
// A macro without a name was read since the last slot was begun: macros created from then on are
// hidden.
inline bool isHaveNewName = false;
