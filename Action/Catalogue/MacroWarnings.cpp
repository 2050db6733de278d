#include "Action/Catalogue/MacroWarnings.h"

#include <algorithm>
#include <cstddef>
#include <map>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Record/Limits.h"

namespace {

using Kind = MacroWarning::Kind;
using Stream = std::vector<NerinAction::MacroStreamEvent>;

constexpr std::int32_t longestPause = 0xFFFF;
constexpr std::size_t pauseBytes = 3;

bool isMouseButton(const MacroKeyInfo& command) {
  return command.keyFlag() == MacroKeyInfo::MousePress ||
         command.keyFlag() == MacroKeyInfo::MouseRelease;
}

// Looks at the commands in their order.
class Inspection {
 public:
  void look(int row, const MacroKeyInfo& command) {
    const Stream sent = NerinAction::streamEventsOf(command);
    if (isMouseButton(command)) {
      lookAtButton(row, sent);
    } else if (sent.empty() || std::any_of(sent.begin(), sent.end(),
                                           [](const auto& event) { return event.code == 0; })) {
      add(Kind::CannotSend, row);
    }
    lookAtSpace(row, sent);
    for (const auto& event : sent) {
      if (event.delay > longestPause) {
        add(Kind::LongPause, row, event.delay & longestPause);
      }
      if (event.isRelease) {
        m_down.erase(event.code);
      } else if (event.code != 0) {
        m_down[event.code] = row;
      }
    }
  }
  // The warnings by row, and the keys that are still down.
  std::vector<MacroWarning> finish() {
    for (const auto& [code, row] : m_down) {
      add(Kind::NotReleased, row);
    }
    std::stable_sort(m_found.begin(), m_found.end(),
                     [](const auto& one, const auto& other) { return one.row < other.row; });
    return m_found;
  }

 private:
  void add(Kind kind, int row, std::int32_t value = 0) { m_found.push_back({kind, row, value}); }

  void lookAtButton(int row, const Stream& sent) {
    if (!sent.front().isMouseButton()) {
      add(Kind::LostButton, row);
    } else if (!m_hasButton) {
      m_hasButton = true;
      add(Kind::NotReadBack, row);
    }
  }

  void lookAtSpace(int row, const Stream& sent) {
    const bool hadRoom = m_bytes <= limits::macroBytes;
    for (const auto& event : sent) {
      m_bytes += event.delay > 0 ? 1 + pauseBytes : 1;
    }
    if (hadRoom && m_bytes > limits::macroBytes) {
      add(Kind::NoRoom, row);
    }
  }

  std::vector<MacroWarning> m_found;
  std::map<std::uint8_t, int> m_down;  // the row of the press, by the code that is sent
  std::size_t m_bytes = 0;
  bool m_hasButton = false;
};

}  // namespace

std::vector<MacroWarning> NerinAction::warningsOf(const MacroInfo::Events& commands) {
  Inspection inspection;
  for (std::size_t row = 0; row < commands.size(); ++row) {
    inspection.look(static_cast<int>(row), *commands[row]);
  }
  std::vector<MacroWarning> warnings = inspection.finish();
  if (commands.size() > limits::macroEvents) {
    warnings.insert(warnings.begin(),
                    {Kind::TooManyEvents, MacroWarning::wholeMacro,
                     static_cast<std::int32_t>(std::min<std::size_t>(commands.size(), INT32_MAX))});
  }
  return warnings;
}
