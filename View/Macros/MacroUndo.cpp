#include "View/Macros/MacroUndo.h"

#include <algorithm>
#include <cstddef>
#include <utility>

namespace {

constexpr std::size_t mostSteps = 200;

}  // namespace

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
  m_before.clear();
  m_after.clear();
}

void MacroUndo::note(const MacroInfo::Events& commands) {
  State now = stateOf(commands);
  if (now == m_now) {
    return;
  }
  m_before.push_back(std::exchange(m_now, std::move(now)));
  if (m_before.size() > mostSteps) {
    m_before.erase(m_before.begin());
  }
  m_after.clear();
}

int MacroUndo::undo(MacroInfo::Events& commands) {
  return move(m_before, m_after, commands);
}

int MacroUndo::redo(MacroInfo::Events& commands) {
  return move(m_after, m_before, commands);
}

int MacroUndo::move(std::vector<State>& from, std::vector<State>& to, MacroInfo::Events& commands) {
  if (from.empty()) {
    return -1;
  }
  to.push_back(std::exchange(m_now, std::move(from.back())));
  from.pop_back();
  const State& old = to.back();
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
