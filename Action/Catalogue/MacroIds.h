#pragma once

class MacroInfo;

// A button names its macro by an id. A macro file holds none, so that imported macros begin with
// id 0, and older lists may hold an id twice: the button would then play the first of them.
namespace NerinAction {

// Whether a button with this macro's id plays this macro.
bool hasOwnId(const MacroInfo& macro);
// Gives the macro of the catalogue a new id, unless it has one of its own. One that was
// saved without an id, and that buttons of profiles name by that, keeps it. Returns whether the id
// changed; the catalogue is then to be saved.
bool giveOwnId(MacroInfo& macro);
// The same for all macros of the catalogue.
bool giveOwnIds();

}  // namespace NerinAction
