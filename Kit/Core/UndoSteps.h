#pragma once

#include <cstddef>
#include <deque>
#include <utility>

// The states that undo and redo lead to. The owner keeps the present state.
template <typename State>
class UndoSteps {
 public:
  // The oldest step goes when there are more.
  static constexpr std::size_t maximum = 200;

  void clear() {
    m_undo.clear();
    m_redo.clear();
  }
  // A change has been made: undo leads to `before`, and nothing can be redone.
  void note(State before) {
    m_undo.push_back(std::move(before));
    if (m_undo.size() > maximum) {
      m_undo.pop_front();
    }
    m_redo.clear();
  }

  bool canUndo() const { return !m_undo.empty(); }
  bool canRedo() const { return !m_redo.empty(); }
  // Give the nearest state, and keep `now` for the way back. Call only if that is possible.
  [[nodiscard]] State undo(State now) { return go(m_undo, m_redo, std::move(now)); }
  [[nodiscard]] State redo(State now) { return go(m_redo, m_undo, std::move(now)); }

  // Changes every kept state in place.
  template <typename Change>
  void forEach(const Change& change) {
    for (auto* steps : {&m_undo, &m_redo}) {
      for (State& step : *steps) {
        change(step);
      }
    }
  }

 private:
  using Steps = std::deque<State>;

  static State go(Steps& from, Steps& to, State now) {
    to.push_back(std::move(now));
    State reached = std::move(from.back());
    from.pop_back();
    return reached;
  }

  Steps m_undo;  // the nearest step is the last one
  Steps m_redo;
};
