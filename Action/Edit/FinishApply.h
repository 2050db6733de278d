#pragma once

#include "Action/Record/Outcome.h"

namespace NerinAction {

// Writes to the slot what its unfinished Apply was to write, and saves the library as that Apply
// would have. An edit of the slot stays, unless it is the same. Does nothing without an unfinished
// Apply.
Outcome finishApply(int slot);

}  // namespace NerinAction
