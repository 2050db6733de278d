#pragma once

namespace keyrepeat {

// Makes the X server repeat a held key of this program as presses only. Otherwise it sends a
// release before each press that looks like a real one: Qt compares it with the next event, which
// often has not arrived yet. Does nothing on other platforms. Call it on the GUI thread; repeated
// calls are harmless.
void withoutReleases();

}  // namespace keyrepeat
