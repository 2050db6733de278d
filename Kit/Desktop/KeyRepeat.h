#pragma once

namespace keyrepeat {

// Lets the X server repeat a held key of this program as presses alone. It would send a release
// before each of them, which nothing tells from a real one: Qt compares it with the event behind
// it, which often has not arrived yet. Nothing to do on other platforms. To be called on the GUI
// thread; more than once does no harm.
void withoutReleases();

}  // namespace keyrepeat
