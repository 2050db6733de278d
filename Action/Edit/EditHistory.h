#pragma once

#include <optional>

#include "Action/Record/Records.h"
#include "Kit/Core/UndoSteps.h"

// Undo and redo over what the user edits in the current slot: the record, the name, the linked
// program and the linked profile. A read of a slot begins the history anew, so that no step of one
// slot reaches another. An Apply keeps it: undoing past an Apply is a new edit.
class EditHistory {
 public:
  // Begins with what the slot holds; nothing if that is not known.
  void begin(const std::optional<_Nerin_CONFIG>& held, const _Nerin_CONFIG& now);
  // Takes a step where the edit has changed. A change of the linked profile alone is none: it comes
  // from the library.
  void note(const _Nerin_CONFIG& now);
  // Takes over a change that is not the user's, such as the name that an Apply has settled. Steps
  // of the same name or linked profile get the new one.
  void follow(const _Nerin_CONFIG& now);
  // The slot holds it now.
  void hold(const _Nerin_CONFIG& now) { m_held = now; }
  const std::optional<_Nerin_CONFIG>& held() const { return m_held; }

  bool canUndo() const { return m_steps.canUndo(); }
  bool canRedo() const { return m_steps.canRedo(); }
  // Goes one step. Call only if that is possible. Returns what the edit was or is to be.
  const _Nerin_CONFIG& undo();
  const _Nerin_CONFIG& redo();

 private:
  std::optional<_Nerin_CONFIG> m_held;
  _Nerin_CONFIG m_now{};
  UndoSteps<_Nerin_CONFIG> m_steps;
};

namespace NerinAction {

// Whether both would be applied as the same: all but the linked profile and the id.
bool isSameEdit(const _Nerin_CONFIG& a, const _Nerin_CONFIG& b);

// The current slot was read, and no draft of it is back yet.
void beginHistory(bool isKnown);
// Call after every deed that edits, and as often as wanted.
void recordEdit();
// The mouse has the settings that an open window tries, and not what the slot holds: an undo back
// to that is still to be applied.
void noteTrial();
// False after a trial, and after an Apply that the mouse did not take wholly.
bool isMouseAsHeld();

// The edit is another profile. Unlike recordEdit, it does not ask who has changed it.
void recordReset();
// The slot was renamed; or written, wholly or not.
void recordRename();
void recordWrite(bool isDone);

bool canUndoEdit();
bool canRedoEdit();
// Goes one step. Where the edit is again what the slot holds, there is nothing left to apply.
// False if there is no step.
bool undoEdit();
bool redoEdit();
// For an edit that may be again what the slot holds.
void settleIfUnchanged();

// Name, record and linked program as the slot holds them; nothing while that is not known.
std::optional<_Nerin_CONFIG> heldContent();

}  // namespace NerinAction
