#pragma once

// Input that waits while the program does not answer. It was meant for what the screen showed then.
namespace queuedinput {

// Drops what waits now: clicks and keys that arrive before the event loop has nothing else to do.
void drop();

}  // namespace queuedinput
