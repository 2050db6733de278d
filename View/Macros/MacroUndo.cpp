#include "View/Macros/MacroUndo.h"

#include <algorithm>
#include <utility>

MacroUndo::State MacroUndo::stateOf(const MacroInfo::Events& commands) {
  State state;
  state.reserve(commands.size());
  for (const auto& command : commands) {
    state.emplace_back(command->keyCode(), command->keyFlag(), command->delay());
  }
  return state;
}

void MacroUndo::start(const MacroInfo::Events* commands) {
  m_now = commands != nullptr ? stateOf(*commands) : State();
  m_steps.clear();
}

void MacroUndo::note(const MacroInfo::Events& commands) {
  State now = stateOf(commands);
  if (now == m_now) {
    return;
  }
  m_steps.note(std::exchange(m_now, std::move(now)));
}

int MacroUndo::undo(MacroInfo::Events& commands) {
  return m_steps.canUndo() ? moveTo(m_steps.undo(m_now), commands) : -1;
}

int MacroUndo::redo(MacroInfo::Events& commands) {
  return m_steps.canRedo() ? moveTo(m_steps.redo(m_now), commands) : -1;
}

int MacroUndo::moveTo(State state, MacroInfo::Events& commands) {
  const State old = std::exchange(m_now, std::move(state));
  const auto differs = std::mismatch(m_now.begin(), m_now.end(), old.begin(), old.end()).first;
  MacroInfo::Events restored;
  restored.reserve(m_now.size());
  for (const auto& [code, flag, delay] : m_now) {
    restored.push_back(std::make_shared<MacroKeyInfo>(code, flag, delay));
  }
  commands = std::move(restored);
  const auto row = static_cast<int>(differs - m_now.begin());
  return std::max(0, std::min(row, static_cast<int>(m_now.size()) - 1));
}
