#pragma once

// Ends the program at any time: before the main loop, in a dialog, or in the main loop.
namespace termination {

// Ends all running loops. Posted messages still reach the bus; after that, nothing is sent to the
// mouse or the service.
void terminate();
bool isTerminating();

}  // namespace termination
