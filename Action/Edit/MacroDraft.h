#pragma once

// The macros while they are edited: the editor changes those of the catalogue, whose file is
// written only when the user says so. Until then they lie in "Drafts/macros.xml" of the support
// folder, so that neither a removal of the mouse nor the end of the program loses them.
namespace NerinAction {

// The editor opens: what the macros are now is not an edit.
void beginMacroEdit();
// Notes what the user has changed since: writes the draft, marks the macros, and raises isNeedSave
// if the edited profile plays one of them. Writes only what changed, so that it can be called
// often.
void keepMacroDraft();
// The macros were saved, or the user gave the edits up.
void discardMacroDraft();
// For the start of the program: takes the macros of the draft into the catalogue. False if there is
// no draft.
bool restoreMacroDraft();

}  // namespace NerinAction
