#pragma once

#include <QFrame>
#include <cstdint>

#include "Action/Catalogue/MacroInfo.h"

class LXNumberTextField;
class QGridLayout;
class QPushButton;

// What can be done to several commands at once. Rows count from 0, both ends included, and must be
// in the macro.
namespace macrotools {

struct Rows {
  int first;
  int last;
};

void setPauses(MacroInfo::Events& commands, Rows rows, std::int32_t milliseconds);
// At 200 percent the pauses are half as long.
void scaleSpeed(MacroInfo::Events& commands, Rows rows, std::int32_t percent);
void removePausesUnder(MacroInfo::Events& commands, Rows rows, std::int32_t milliseconds);
// Copies the rows behind the last of them. False if the macro would hold too many events.
[[nodiscard]] bool duplicate(MacroInfo::Events& commands, Rows rows);

}  // namespace macrotools

// The pop-up panel of these tools, with the rows on which they work. Escape and a click beside
// close it.
class MacroTools : public QFrame {
  Q_OBJECT

 public:
  explicit MacroTools(QWidget* parent);

  // Opens under the widget for these rows, or for all if they are less than two. The commands must
  // outlive the panel's being open.
  void open(MacroInfo::Events& commands, macrotools::Rows rows, const QWidget& below);

 signals:
  // The commands were changed, and that row is to be selected.
  void edited(int row);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  using Tool = void (*)(MacroInfo::Events&, macrotools::Rows, std::int32_t);

  LXNumberTextField* addField(const char* name, const char* key, int least, int most, int value);
  void addRange(QGridLayout& grid);
  void addTool(QGridLayout& grid, LXNumberTextField* field, const QString& unit, const char* words,
               Tool tool);
  void addDuplicate(QGridLayout& grid);
  void showRows(macrotools::Rows rows);
  macrotools::Rows chosenRows();

  MacroInfo::Events* m_commands = nullptr;
  LXNumberTextField* m_first = nullptr;
  LXNumberTextField* m_last = nullptr;
  QPushButton* m_duplicate = nullptr;
};
