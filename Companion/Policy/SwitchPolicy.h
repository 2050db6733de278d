#pragma once

#include <array>
#include <chrono>
#include <deque>
#include <optional>
#include <string>
#include <utility>

#include "Action/Service/SlotReason.h"

// Which slot the mouse should have for the program in front, and why. It knows neither the mouse
// nor the desktop: it is told what happened and when, and asked what to do. Slots count from 0; a
// person reads them from 1.
class SwitchPolicy {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // A program counts as in front when it has been there for so long.
  static constexpr auto settling = std::chrono::milliseconds(200);
  // The mouse's memory is written no more often than this.
  static constexpr auto writePause = std::chrono::seconds(1);
  // The window tells in its own words what it was told: within this time, a slot that this program
  // chose is not a person's choice.
  static constexpr auto echoTime = std::chrono::seconds(3);

  // The program in front: its name for a person, and the slot that it is linked to.
  struct Program {
    std::string id;  // tells programs apart
    std::string name;
    std::optional<int> slot;

    bool operator==(const Program&) const = default;
  };

  enum class Pause { None, WindowHasEdits, Locked };
  // How the desktop tells of programs.
  enum class Sight { InFront, Running, None };

  void mouseCame(int slot);
  void mouseGone();
  // Another program is in front. No program, as between two windows, changes nothing: do not call.
  void inFront(Program program, Time now);
  // The links changed: the program in front may have another slot now.
  void relinked(const std::optional<int>& slot);
  // A person chose a slot, at the mouse or in the window.
  void personChose(int slot, Time now);
  // The mouse was read right before a decision.
  void mouseHas(int slot);
  void wrote(int slot, bool isDone, Time now);
  void pause(Pause pause) { m_pause = pause; }
  void setSight(Sight sight) { m_sight = sight; }
  // Whether a person wants it at all, and has linked anything.
  void setIsOn(bool isOn) { m_isOn = isOn; }
  void setHasLinks(bool hasLinks) { m_hasLinks = hasLinks; }

  // The slot to write now: read the mouse first, tell mouseHas, and ask again.
  std::optional<int> wanted(Time now);
  // When to ask again, if nothing else happens before.
  std::optional<Time> due(Time now) const;

  std::optional<int> slot() const { return m_current; }
  const std::optional<Program>& program() const { return m_front; }
  // Why the mouse has its slot, and the same in one English sentence.
  SlotReason reason() const;
  std::string explanation() const { return slotreason::sentenceOf(reason()); }

 private:
  void settle(Time now);
  std::optional<int> target() const;
  bool isOwnEcho(int slot, Time now) const;
  SlotReason::Kind reasonKind() const;

  std::optional<int> m_current;  // what the mouse has; nothing without a mouse
  std::optional<int> m_base;     // the last slot that a person chose
  std::optional<int> m_ours;     // the last slot that was set here and that nobody changed since
  std::optional<Program> m_front;
  std::optional<std::pair<Program, Time>> m_coming;
  bool m_isOverridden = false;  // a person chose another slot since the program is in front
  bool m_hasFailed = false;
  bool m_isOn = true;
  bool m_hasLinks = true;
  Pause m_pause = Pause::None;
  Sight m_sight = Sight::InFront;
  std::optional<Time> m_lastWrite;
  std::deque<std::pair<int, Time>> m_writes;
};
