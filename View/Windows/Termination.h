#pragma once

// The end of the program, at every moment: before the main loop, inside a dialog, inside the main
// loop.
namespace termination {

// Ends every loop that runs. What was posted reaches the bus first; after that nothing is sent any
// more, neither to the mouse nor to the service.
void terminate();
bool isTerminating();

}  // namespace termination
