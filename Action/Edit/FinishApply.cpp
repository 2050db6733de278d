#include "Action/Edit/FinishApply.h"

#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"

namespace {

// The intent on disk stays as it is until the mouse took all of it.
Outcome writeToMouseOnly(int slot) {
  editState->currFWProfile() = editState->selProfile();
  Outcome outcome = NerinAction::setFWProfileData(static_cast<std::uint8_t>(slot));
  if (outcome.isDone()) {
    NerinAction::endApply(slot);
    editState->clearNeedSave();
  }
  return outcome;
}

}  // namespace

Outcome NerinAction::finishApply(int slot) {
  const auto intent = unfinishedApply(slot);
  if (!intent) {
    return {};
  }
  const auto draft = draftOf(slot);
  beginSlot(slot);
  restoreApply(slot);
  Outcome outcome = intent->isMouseOnly ? writeToMouseOnly(slot) : applySlot();
  if (outcome.isDone() && draft && isSameEdit(*draft, *intent)) {
    dropDraft(slot);
  }
  return outcome;
}
