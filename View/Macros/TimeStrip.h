#pragma once

#include <QWidget>
#include <optional>

#include "View/Macros/MacroTimeline.h"

// The commands of a macro to the scale of time: a bar for each key from its press to its release,
// keys that are down together below each other, and the selected command with the pause after it. A
// click chooses a command, the arrow keys the one before or after. Shift, or dragging, chooses all
// commands from there to here.
class TimeStrip : public QWidget {
  Q_OBJECT

 public:
  explicit TimeStrip(QWidget* parent);

  // Not owned; must outlive its use here. Null for no macro. Call it again after each change.
  void setCommands(const MacroInfo::Events* commands);
  // Out of range for none.
  void setCurrentRow(int row);
  int currentRow() const { return m_row; }
  // The rows that are chosen together with the current one, both included.
  void setChosenRows(int first, int last);
  const MacroTimeline& timeline() const { return m_timeline; }
  // Where the press of the bar is drawn, and where its bar ends. Empty without such a span.
  QRectF barOf(int row) const;

 signals:
  // `extends` if the rows chosen before stay chosen, up to this one.
  void rowChosen(int row, bool extends);

 protected:
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  double xOf(int row) const;
  QRectF bar(const MacroTimeline::Span& span) const;
  int rowAt(QPointF point) const;
  void drawSelection(QPainter& painter) const;
  void drawBar(QPainter& painter, const MacroTimeline::Span& span) const;
  void say();

  const MacroInfo::Events* m_commands = nullptr;
  MacroTimeline m_timeline;
  int m_row = MacroTimeline::none;
  int m_firstChosen = MacroTimeline::none;
  int m_lastChosen = MacroTimeline::none;
};
