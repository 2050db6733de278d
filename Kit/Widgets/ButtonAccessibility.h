#pragma once

namespace buttonaccessibility {

// Lets screen readers see the kit's buttons as what they are: buttons, check boxes, and the items
// of a group of which one is selected. Once for the process.
void install();

}  // namespace buttonaccessibility
