#pragma once

#include <QString>
#include <QWidget>
#include <functional>
#include <optional>

#include "Action/Record/Outcome.h"

class QLabel;
class QPushButton;

// The line in a window's footer that says how it went. Screen readers hear it. All lines of the
// program say the same, so that it is seen whichever window is in front.
class StatusLine : public QWidget {
  Q_OBJECT

 public:
  enum class Tone { Done, Note, Failure };
  // A link beside the words. It disappears once it was used.
  struct Offer {
    QString label;
    std::function<void()> act;
  };

  explicit StatusLine(QWidget* parent = nullptr);

  void say(const QString& text, Tone tone, const std::optional<Offer>& offer);
  // What was said; empty while the standing text is shown.
  QString text() const { return m_said; }
  // What this line shows while nothing is said. Screen readers find it, but are not alerted.
  void setStanding(const QString& text);
  QString standing() const { return m_standing; }
  Tone tone() const { return m_tone; }
  // Null while nothing is offered.
  QPushButton* offerButton() const;

 protected:
  void resizeEvent(QResizeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;

 private:
  void showText();
  void layOut();

  QString m_said;
  QString m_standing;
  QLabel* m_label;
  QPushButton* m_button;
  std::function<void()> m_act;
  Tone m_tone = Tone::Note;
};

// What all lines say. The texts are in the user's language.
namespace statusline {

void say(const QString& text, StatusLine::Tone tone = StatusLine::Tone::Note,
         const std::optional<StatusLine::Offer>& offer = std::nullopt);
void clear();

// Says what failed. A success only ends what an earlier failure said.
void tell(const Outcome& outcome);
// Says how an Apply or a Reset went, whose words for success are `done`. `reports` is the number of
// reports that it takes.
void tellApplied(const Outcome& outcome, int reports, const QString& done);
void tellMacrosNotSaved();
// The mouse has moved to another slot (from 1) while a child window is open.
void tellHeldBack(int slot);

}  // namespace statusline
