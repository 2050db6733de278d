#pragma once

namespace buttonaccessibility {

// Presents the kit's controls to screen readers as what they are: buttons, check boxes, items of a
// group with one selected, lists, windows and dialogs. Call it once per process.
void install();

}  // namespace buttonaccessibility
