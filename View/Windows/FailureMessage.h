#pragma once

#include "Action/Record/Outcome.h"

// Tells the user of a failure, in a message that waits to be read.
namespace failuremessage {

// Nothing happens for an outcome that is done.
void tell(const Outcome& outcome);
// The macros could not be written to their file.
void tellMacrosNotSaved();

}  // namespace failuremessage
