#pragma once

#include <string>

#include "Kit/Widgets/LXMenulist.h"

class LXButton;
class MacroInfo;

// The pop-up list of macros. The program has one; the view that opens it gets the choice.
namespace macromenulist {

// Fills the list and opens it at the button, on the current macro; null for none. An empty list
// says the text of that key.
void open(LXButton& button, LXMenulistDelegate* delegate, const MacroInfo* current,
          const char* emptyKey);
// Hides the list if it is open for this delegate, which gets no more calls.
void release(LXMenulistDelegate* delegate);
// Null while the list is not in use.
LXMenulist* list();

// The macro's title on the screen. Hides the generated name of a macro that has none in the mouse.
QString titleOf(const MacroInfo& macro);

}  // namespace macromenulist
