#pragma once

#include <string>

namespace NerinAction {

// Call once when the program starts, before a catalogue is read. Brings the catalogues of the
// support folder up to date with those that came with the program: sections, entries and languages
// that are new are added, and what the user never changed is renewed. The user's macros, the user's
// changes and what the user removed stay. What came with the program is kept beside each catalogue
// (".MenuInfo.xml.shipped"), because only so can the two be told apart.
void bringCataloguesUpToDate();

}  // namespace NerinAction
