#pragma once

#include "Action/Edit/SlotDraft.h"

// What the user changed in a slot and did not apply, and what an Apply did not finish. Both lie in
// the folder "Drafts" of the support folder, so that neither a slot change on the mouse nor the end
// of the program loses them. A disk that takes no draft is logged; the draft then lasts as long as
// the program. Slots count from 0.
namespace NerinAction {

// --- Edits -------------------------------------------------------------------------------------

// Keeps the current edit as the draft of its slot. Writes only what changed, so that it can be
// called often. `working` is the profile in an open window that the user has not decided about yet;
// without it, such a draft is forgotten again.
void keepDraft(const _Nerin_PROFILE* working = nullptr);
bool hasDraft(int slot);
// For another program than the one in which somebody edits: whether that one keeps a draft of any
// slot. Looks at the disk each time.
bool isAnyDraftOnDisk();
std::optional<SlotDraft> draftOf(int slot);
// For a program in which nobody edits: from now on it changes no draft, since they are another
// program's. It still says which Applies began and ended.
void leaveDraftsAlone();
// Makes the slot's draft, or else its unfinished Apply, the current edit: record, name, link and
// macros. False if there is neither.
bool restoreDraft(int slot);
// The user quits without applying. An unfinished Apply comes back at the next start.
void dropDraft(int slot);
// The user gives up what was edited in the slot. An unfinished Apply stays known as such.
void discardDraft(int slot);

// --- Applies that did not end --------------------------------------------------------------------

// Whether the slot may hold a mixture of two profiles, from this program or another one. Such a
// slot says nothing about the profile whose name it has.
bool isApplyUnfinished(int slot);
// The unfinished Apply of the slot; nothing when there is none.
std::optional<SlotDraft> unfinishedApply(int slot);
// Makes the unfinished Apply of the slot the current edit, whatever was edited since. False if
// there is none.
bool restoreApply(int slot);
// Call before the first report, and after the last one when the mouse took all of them: then the
// slot has no draft any more either.
void beginApply(const SlotDraft& draft);
void endApply(int slot);
// For an Apply that changed nothing in the mouse.
void forgetApply(int slot);

// The edited profile as the draft of a slot.
SlotDraft currentDraft(int slot);
// Makes a content the current edit: record, name, link and linked program. A linked profile that is
// gone is left out.
void takeContent(int slot, const _Nerin_CONFIG& content);

}  // namespace NerinAction
