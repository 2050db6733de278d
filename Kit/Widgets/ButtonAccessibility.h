#pragma once

namespace buttonaccessibility {

// Lets screen readers see the kit's controls as what they are: buttons, check boxes, the items of a
// group of which one is selected, lists, windows and dialogs. Once for the process.
void install();

}  // namespace buttonaccessibility
