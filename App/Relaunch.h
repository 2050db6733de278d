#pragma once

// Starts the program anew after it has ended: before that, the old one still has its name on the
// bus and its locks.
namespace relaunch {

void request();
// Starts this program with its arguments, detached from this process, if that was requested. Call
// it last; QCoreApplication must still exist.
void carryOut();

}  // namespace relaunch
