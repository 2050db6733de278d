#include "View/Macros/MacroTimeline.h"

#include <algorithm>
#include <limits>
#include <map>
#include <utility>

namespace {

using Span = MacroTimeline::Span;

// What needs more shares the last lane.
constexpr int mostLanes = 6;

bool isRelease(const MacroKeyInfo& command) {
  return command.keyFlag() == MacroKeyInfo::KeyRelease ||
         command.keyFlag() == MacroKeyInfo::MouseRelease;
}

int firstRow(const Span& span) {
  return span.press != MacroTimeline::none ? span.press : span.release;
}

int lastRow(const Span& span) {
  return span.release != MacroTimeline::none ? span.release : std::numeric_limits<int>::max();
}

// The spans are in the order of their beginnings.
void markOverlaps(std::vector<Span>& spans) {
  int lastBefore = MacroTimeline::none;
  for (std::size_t i = 0; i < spans.size(); ++i) {
    const bool reachesNext = i + 1 < spans.size() && firstRow(spans[i + 1]) <= lastRow(spans[i]);
    spans[i].overlaps = reachesNext || firstRow(spans[i]) <= lastBefore;
    lastBefore = std::max(lastBefore, lastRow(spans[i]));
  }
}

// Each span lies in the first lane that is free.
int placeInLanes(std::vector<Span>& spans) {
  std::vector<int> lastRows;
  lastRows.reserve(mostLanes);
  for (Span& span : spans) {
    const auto free = std::find_if(lastRows.begin(), lastRows.end(),
                                   [&](int last) { return last < firstRow(span); });
    span.lane = std::min(static_cast<int>(free - lastRows.begin()), mostLanes - 1);
    const auto lane = static_cast<std::size_t>(span.lane);
    if (lane == lastRows.size()) {
      lastRows.push_back(lastRow(span));
    } else {
      lastRows[lane] = std::max(lastRows[lane], lastRow(span));
    }
  }
  return static_cast<int>(lastRows.size());
}

}  // namespace

MacroTimeline::MacroTimeline(const MacroInfo::Events& commands) {
  // The spans that wait for their release, by the code of the key and the kind of the press.
  std::map<std::pair<std::int32_t, std::int32_t>, std::vector<std::size_t>> open;
  starts.reserve(commands.size());
  for (const auto& command : commands) {
    const int row = rows();
    starts.push_back(length);
    length += std::max(0, command->delay());
    if (command->keyFlag() == MacroKeyInfo::Function) {
      spans.push_back({.press = row, .release = row});
    } else if (!isRelease(*command)) {
      open[{command->keyCode(), command->keyFlag()}].push_back(spans.size());
      spans.push_back({.press = row});
    } else if (auto& presses = open[{command->keyCode(), command->keyFlag() - 1}];
               !presses.empty()) {
      spans[presses.back()].release = row;
      presses.pop_back();
    } else {
      spans.push_back({.release = row});
    }
  }
  markOverlaps(spans);
  lanes = placeInLanes(spans);
}

double MacroTimeline::place(int row) const {
  if (row >= rows()) {
    return 1;
  }
  return length > 0 ? static_cast<double>(starts[static_cast<std::size_t>(row)]) /
                          static_cast<double>(length)
                    : static_cast<double>(row) / rows();
}

int MacroTimeline::rowAt(double at) const {
  int found = rows() > 0 ? 0 : none;
  for (int row = 0; row < rows() && place(row) <= at; ++row) {
    found = row;
  }
  return found;
}

const MacroTimeline::Span* MacroTimeline::spanOf(int row) const {
  const auto found = std::find_if(spans.begin(), spans.end(), [&](const Span& span) {
    return span.press == row || span.release == row;
  });
  return found == spans.end() ? nullptr : &*found;
}
