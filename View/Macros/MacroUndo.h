#pragma once

#include <cstdint>
#include <tuple>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Kit/Core/UndoSteps.h"

// The states of a macro's commands while the editor is open on it.
class MacroUndo {
 public:
  // Another macro, or none: there is nothing to undo.
  void start(const MacroInfo::Events* commands);
  // The commands may have changed. Their state before becomes a step to undo.
  void note(const MacroInfo::Events& commands);

  // Puts the commands back to the step before, or to the one after it. Answers the first row that
  // changed, or -1 if there is no such step.
  [[nodiscard]] int undo(MacroInfo::Events& commands);
  [[nodiscard]] int redo(MacroInfo::Events& commands);

 private:
  using Command = std::tuple<std::int32_t, std::int32_t, std::int32_t>;
  using State = std::vector<Command>;

  static State stateOf(const MacroInfo::Events& commands);
  int moveTo(State state, MacroInfo::Events& commands);

  State m_now;
  UndoSteps<State> m_steps;
};
