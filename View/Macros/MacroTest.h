#pragma once

#include <QElapsedTimer>
#include <QFrame>
#include <QTimer>
#include <cstddef>

#include "Action/Catalogue/MacroInfo.h"
#include "MacroPlayer/MacroPlayback.h"

class QLabel;
class QListWidget;
class QPlainTextEdit;
class QPushButton;

// The pop-up panel that plays a macro as the mouse will: the macro is encoded into the report that
// the mouse would get, and what the player makes of that report appears at its time, as text in a
// box of the panel. Nothing is sent to other programs. Above it stand the warnings about the macro.
// Escape and a click beside close the panel.
class MacroTest : public QFrame {
  Q_OBJECT

 public:
  explicit MacroTest(QWidget* parent);

  // Opens under the widget and plays one run. Takes what it needs of the macro at once.
  void open(const MacroInfo& macro, const QWidget& below);

 signals:
  // The user has chosen the warning about that command.
  void rowChosen(int row);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void hideEvent(QHideEvent* event) override;

 private:
  void addWarnings();
  void addPlayer();
  void showWarnings(const MacroInfo::Events& commands);
  void toggle();
  void play();
  void stop();
  void playOn();
  void finish();
  void say(std::chrono::milliseconds time, const QString& words);

  MacroPlayback m_playback;
  std::size_t m_next = 0;  // the first event that was not played yet
  QElapsedTimer m_clock;   // since the run began
  QTimer m_timer;
  QListWidget* m_warnings;
  QPlainTextEdit* m_played;
  QPushButton* m_button;
};
