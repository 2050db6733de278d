#pragma once

#include <QObject>
#include <cstdint>

#include "Action/Catalogue/MacroInfo.h"
#include "View/Macros/MacroUndo.h"

class KeyField;
class LXNumberTextField;
class QLabel;
class TavImageView;
class TimeStrip;

// What stands around the table of commands: the time strip, the key and the pause of the selected
// command, the warnings, and the steps to undo. Edits the macro's own commands.
class MacroWorkbench : public QObject {
  Q_OBJECT

 public:
  // The longest pause that the mouse can store, in milliseconds.
  static constexpr int longestPause = 65535;

  // Creates its controls in the view.
  explicit MacroWorkbench(TavImageView& view);

  // Another macro, or null. Not owned; must outlive its use here.
  void setCommands(MacroInfo::Events* commands);
  // The commands were changed. While a recording runs, its commands are not yet a step to undo.
  void commandsChanged(bool isRecording);
  // Out of range for none. `extends` if the rows from the one that was chosen before to this one
  // are chosen together.
  void setCurrentRow(int row, bool extends);
  // The rows that are chosen together, both included.
  struct Rows {
    int first;
    int last;
  };
  Rows chosenRows() const;
  // False while a recording runs.
  void setUsable(bool isUsable);
  // Leaves the key of the row as it is. True if its field was waiting for another one.
  bool endKeyChoice();
  // The view's field of that kind was committed. False if it is not the pause of the row.
  bool takePause(LXNumberTextField& field);
  // The command moves to where the gap before that row was.
  void moveRow(int row, int gap);
  void undo();
  void redo();

 signals:
  // The user has chosen a command.
  void rowChosen(int row, bool extends);
  // The rows that are chosen together, which may be the current one only, or none: -1.
  void rowsChosen(int first, int last);
  // The commands were changed, and that one is to be selected.
  void edited(int row);

 private:
  MacroKeyInfo* selected() const;
  void showRow();
  void showSummary(bool isRecording);
  void setKey(std::int32_t code, bool isMouseButton);

  MacroInfo::Events* m_commands = nullptr;
  int m_row = -1;
  // Where the chosen rows begin; they end at the current one.
  int m_anchor = -1;
  bool m_isUsable = true;
  MacroUndo m_undo;
  TimeStrip* m_strip;
  QLabel* m_length;
  QLabel* m_warning;
  KeyField* m_key;
  LXNumberTextField* m_pause;
};
