#include "View/Macros/MacroWarningWords.h"

#include <cstddef>

#include "Action/Record/Limits.h"
#include "View/Macros/RigthMouseTBView.h"
#include "View/Screen/ControlFactory.h"

namespace {

using NerinAction::tooltipText;

QString keyOf(const MacroKeyInfo& command) {
  const QString words = MacroCommandModel::keyWords(command);
  return words.isEmpty() ? QStringLiteral("?") : words;
}

}  // namespace

QString macrowarnings::wordsOf(const MacroWarning& warning, const MacroInfo::Events& commands) {
  using Kind = MacroWarning::Kind;
  if (warning.kind == Kind::TooManyEvents) {
    return tooltipText("The macro has %1 events. A macro is meant to have %2 at most.")
        .arg(warning.value)
        .arg(limits::macroEvents);
  }
  const MacroKeyInfo& command = *commands.at(static_cast<std::size_t>(warning.row));
  const int line = warning.row + 1;
  switch (warning.kind) {
    case Kind::CannotSend:
      // One replacement: a name may hold a %.
      return tooltipText("Line %1: the mouse cannot send %2.")
          .arg(QString::number(line), keyOf(command));
    case Kind::NotReleased:
      return tooltipText("Line %1: %2 is not let go.").arg(QString::number(line), keyOf(command));
    case Kind::LostButton:
      return tooltipText("Line %1: which mouse button it was is lost. Choose it again.").arg(line);
    case Kind::NotReadBack:
      return tooltipText("Line %1: mouse buttons are lost when the slot is read again.").arg(line);
    case Kind::LongPause:
      return tooltipText("Line %1: the mouse waits %2 ms instead of %3 ms.")
          .arg(line)
          .arg(warning.value)
          .arg(command.delay());
    case Kind::NoRoom:
    case Kind::TooManyEvents:
      break;
  }
  return tooltipText("The mouse has no room for line %1 and what follows.").arg(line);
}

QString macrowarnings::summaryOf(const std::vector<MacroWarning>& warnings,
                                 const MacroInfo::Events& commands) {
  if (warnings.empty()) {
    return {};
  }
  const QString first = wordsOf(warnings.front(), commands);
  const std::size_t others = warnings.size() - 1;
  return others == 0 ? first : tooltipText("%1 (%2 more)").arg(first, QString::number(others));
}
