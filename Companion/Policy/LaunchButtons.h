#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <utility>

#include "Action/Service/LearnedButtons.h"

// Knows the buttons that a person taught by what they send, and tells a press from a button that is
// held.
class LaunchButtons {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // A held button may send its report again within this time, counted from the report before.
  static constexpr auto holding = std::chrono::milliseconds(500);

  // What was taught, by button. Which buttons are held is not forgotten.
  void learn(std::map<int, ButtonPattern> patterns) { m_patterns = std::move(patterns); }

  struct Press {
    int button = 0;  // from 0
    bool isNew = false;

    bool operator==(const Press&) const = default;
  };
  // What an input report of the mouse's interface is; nothing for a report that nobody taught. Of
  // several buttons, the lowest.
  std::optional<Press> heard(int interface, std::span<const std::uint8_t> report, Time now);

 private:
  std::map<int, ButtonPattern> m_patterns;
  std::map<int, Time> m_lastReports;
};
