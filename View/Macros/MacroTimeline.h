#pragma once

#include <cstdint>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"

// When the commands of a macro happen, and which keys are down at the same time.
struct MacroTimeline {
  static constexpr int none = -1;

  // A key or mouse button from its press to its release, or a function, which is both at once.
  struct Span {
    int press = none;
    // `none` for a key that is not released; then it stays down to the end.
    int release = none;
    // Spans that overlap lie in different lanes, counted from 0, while there are less than six.
    int lane = 0;
    // Another key is down meanwhile.
    bool overlaps = false;
  };

  MacroTimeline() = default;
  explicit MacroTimeline(const MacroInfo::Events& commands);

  int rows() const { return static_cast<int>(starts.size()); }
  // Where the command stands, from 0 to 1. Without any pause they are spread evenly. One past the
  // last row is the end.
  double place(int row) const;
  // The command at that place or before it; `none` for an empty macro.
  int rowAt(double place) const;
  // The span that begins or ends with the command.
  const Span* spanOf(int row) const;

  // Of each command, in milliseconds from the beginning.
  std::vector<std::int64_t> starts;
  // Together with the pause after the last command.
  std::int64_t length = 0;
  std::vector<Span> spans;
  int lanes = 0;
};
