#pragma once

#include "Action/Record/Outcome.h"

// Shows failures in a message and waits for the answer.
namespace failuremessage {

// Does nothing if the outcome is a success.
void tell(const Outcome& outcome);
// For macros that could not be written to their file.
void tellMacrosNotSaved();

}  // namespace failuremessage
