#pragma once

#include <string>

#include "Kit/Widgets/LXMenulist.h"

class LXButton;
class MacroInfo;

// The pop-up list of macros. There is one for the program: who opens it hears what is chosen.
namespace macromenulist {

// Opens the list, filled anew, where the button is.
void open(LXButton& button, LXMenulistDelegate* delegate);
// Hides the list if it is open for this delegate, which hears of nothing any more.
void release(LXMenulistDelegate* delegate);
// Null while nobody uses it.
LXMenulist* list();

// What a macro is called on the screen; the name that a macro without one got when it was read from
// the mouse is shown to nobody.
QString titleOf(const MacroInfo& macro);

}  // namespace macromenulist
