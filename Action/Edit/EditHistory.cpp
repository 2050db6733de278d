#include "Action/Edit/EditHistory.h"

#include "Action/Edit/Drafts.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/ProcessWide.h"

namespace {

struct CurrentHistory {
  EditHistory history;
  bool isMouseAsHeld = false;
};
ProcessWide<CurrentHistory> current;

int currentSlot() {
  return ProfieController::getShareProCon().currFWProfileIndex();
}

_Nerin_CONFIG currentContent() {
  return NerinAction::currentDraft(currentSlot()).content;
}

bool isSameText(const char (&a)[textSize], const char (&b)[textSize]) {
  return textOf(a) == textOf(b);
}

}  // namespace

bool NerinAction::isSameEdit(const _Nerin_CONFIG& a, const _Nerin_CONFIG& b) {
  return isSameRecord(a.profile, b.profile) && isSameText(a.profileName, b.profileName) &&
         isSameText(a.activeAppPath, b.activeAppPath) && a.isActiveApp == b.isActiveApp;
}

void EditHistory::begin(const std::optional<_Nerin_CONFIG>& held, const _Nerin_CONFIG& now) {
  m_steps.clear();
  m_held = held;
  m_now = now;
}

void EditHistory::note(const _Nerin_CONFIG& now) {
  if (!NerinAction::isSameEdit(m_now, now)) {
    m_steps.note(m_now);
  }
  m_now = now;
}

void EditHistory::follow(const _Nerin_CONFIG& now) {
  m_steps.forEach([&](_Nerin_CONFIG& step) {
    if (step.profileId == m_now.profileId) {
      step.profileId = now.profileId;
    }
    if (isSameText(step.profileName, m_now.profileName)) {
      setText(step.profileName, textOf(now.profileName));
    }
  });
  m_now = now;
}

const _Nerin_CONFIG& EditHistory::undo() {
  m_now = m_steps.undo(m_now);
  return m_now;
}

const _Nerin_CONFIG& EditHistory::redo() {
  m_now = m_steps.redo(m_now);
  return m_now;
}

void NerinAction::beginHistory(bool isKnown) {
  const _Nerin_CONFIG now = currentContent();
  current->history.begin(isKnown ? std::optional(now) : std::nullopt, now);
  current->isMouseAsHeld = isKnown;
}

void NerinAction::recordEdit() {
  if (editState->isEdited()) {
    current->history.note(currentContent());
  } else {
    current->history.follow(currentContent());
  }
}

void NerinAction::noteTrial() {
  current->isMouseAsHeld = false;
}

bool NerinAction::isMouseAsHeld() {
  return current->isMouseAsHeld;
}

void NerinAction::recordReset() {
  current->history.note(currentContent());
}

void NerinAction::recordRename() {
  const _Nerin_CONFIG now = currentContent();
  current->history.note(now);
  if (auto held = current->history.held()) {
    setText(held->profileName, textOf(now.profileName));
    held->profileId = now.profileId;
    current->history.hold(*held);
  }
}

void NerinAction::recordWrite(bool isDone) {
  const _Nerin_CONFIG now = currentContent();
  current->history.follow(now);
  current->isMouseAsHeld = isDone;
  if (isDone) {
    current->history.hold(now);
  }
}

bool NerinAction::canUndoEdit() {
  recordEdit();
  return current->history.canUndo();
}

bool NerinAction::canRedoEdit() {
  recordEdit();
  return current->history.canRedo();
}

void NerinAction::settleIfUnchanged() {
  const auto held = heldContent();
  if (held && current->isMouseAsHeld && !isApplyUnfinished(currentSlot()) &&
      isSameEdit(*held, currentContent())) {
    dropDraft(currentSlot());
  }
}

bool NerinAction::undoEdit() {
  if (!canUndoEdit()) {
    return false;
  }
  takeContent(currentSlot(), _Nerin_CONFIG(current->history.undo()));
  settleIfUnchanged();
  return true;
}

bool NerinAction::redoEdit() {
  if (!canRedoEdit()) {
    return false;
  }
  takeContent(currentSlot(), _Nerin_CONFIG(current->history.redo()));
  settleIfUnchanged();
  return true;
}

std::optional<_Nerin_CONFIG> NerinAction::heldContent() {
  auto held = current->history.held();
  const auto& base = editState->base();
  if (!held || !base) {
    return std::nullopt;
  }
  held->profile = *base;
  return held;
}
