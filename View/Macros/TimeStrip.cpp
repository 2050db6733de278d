#include "View/Macros/TimeStrip.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "ArtworkFrames.h"
#include "View/Macros/RigthMouseTBView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"

namespace {

constexpr double margin = 6;
constexpr double thinnestBar = 3;
constexpr double highestBar = 18;
constexpr double laneGap = 2;
constexpr double barRadius = 2;
constexpr double textMargin = 4;
constexpr double leastTextHeight = 12;
constexpr qreal typeSize = 11;

QColor color(std::uint32_t rgb) {
  return QColor::fromRgb(rgb);
}

}  // namespace

TimeStrip::TimeStrip(QWidget* parent) : QWidget(parent) {
  setFocusPolicy(Qt::StrongFocus);
  setFont(pictures::font(typeSize, QFont::Normal));
}

void TimeStrip::setCommands(const MacroInfo::Events* commands) {
  m_commands = commands;
  m_timeline = commands != nullptr ? MacroTimeline(*commands) : MacroTimeline();
  m_row = std::min(m_row, m_timeline.rows() - 1);
  say();
  update();
}

void TimeStrip::setCurrentRow(int row) {
  m_row = row < m_timeline.rows() ? row : MacroTimeline::none;
  say();
  update();
}

void TimeStrip::setChosenRows(int first, int last) {
  m_firstChosen = first;
  m_lastChosen = last;
  say();
  update();
}

// What the strip shows of the selected commands, for screen readers.
void TimeStrip::say() {
  if (m_row < 0) {
    setAccessibleDescription({});
    return;
  }
  const auto row = static_cast<std::size_t>(m_row);
  QString words = QStringLiteral("%1, %2 / %3")
                      .arg(MacroCommandModel::describe(*(*m_commands)[row]),
                           MacroCommandModel::milliseconds(m_timeline.starts[row]),
                           MacroCommandModel::milliseconds(m_timeline.length));
  if (m_firstChosen < m_lastChosen) {
    words += QStringLiteral(", %1 %2 %3 %4")
                 .arg(NerinAction::tooltipText("From line"), QString::number(m_firstChosen + 1),
                      NerinAction::tooltipText("to line"), QString::number(m_lastChosen + 1));
  }
  setAccessibleDescription(words);
}

double TimeStrip::xOf(int row) const {
  return margin + m_timeline.place(row) * (width() - 2 * margin);
}

QRectF TimeStrip::bar(const MacroTimeline::Span& span) const {
  const double room = (height() - 2 * margin + laneGap) / std::max(1, m_timeline.lanes);
  const double thick = std::min(room - laneGap, highestBar);
  const bool isReleased = span.release != MacroTimeline::none;
  const double from = xOf(span.press != MacroTimeline::none ? span.press : span.release);
  const double to = isReleased ? xOf(span.release) : width() - margin;
  const double top = margin + span.lane * std::min(room, highestBar + laneGap);
  return {std::min(from, width() - margin - thinnestBar), top, std::max(to - from, thinnestBar),
          thick};
}

QRectF TimeStrip::barOf(int row) const {
  const MacroTimeline::Span* span = m_timeline.spanOf(row);
  return span != nullptr ? bar(*span) : QRectF();
}

// A bar is its press on the left and its release on the right. Beside the bars stands the pause.
int TimeStrip::rowAt(QPointF point) const {
  for (const auto& span : m_timeline.spans) {
    const QRectF place = bar(span);
    if (place.contains(point)) {
      const bool isPress = point.x() < place.center().x() || span.release == MacroTimeline::none;
      return isPress && span.press != MacroTimeline::none ? span.press : span.release;
    }
  }
  return m_timeline.rowAt((point.x() - margin) / (width() - 2 * margin));
}

void TimeStrip::drawSelection(QPainter& painter) const {
  if (m_firstChosen < m_lastChosen) {
    const double first = xOf(m_firstChosen);
    painter.fillRect(QRectF(first, 1, xOf(m_lastChosen + 1) - first, height() - 2),
                     QColor(0x45, 0x0A, 0x0C));
  }
  const double from = xOf(m_row);
  QColor pause = color(Artwork::Color::ember);
  pause.setAlphaF(0.35F);
  painter.fillRect(QRectF(from, 1, xOf(m_row + 1) - from, height() - 2), pause);
}

void TimeStrip::drawBar(QPainter& painter, const MacroTimeline::Span& span) const {
  const QRectF place = bar(span);
  const bool isSelected = m_row >= 0 && (span.press == m_row || span.release == m_row);
  painter.setPen(Qt::NoPen);
  painter.setBrush(isSelected      ? color(Artwork::Color::snow)
                   : span.overlaps ? color(Artwork::Color::mist)
                                   : color(Artwork::Color::outlineLit));
  painter.drawRoundedRect(place, barRadius, barRadius);
  if (span.release == MacroTimeline::none) {
    // It is not let go: the end of the bar stays open.
    painter.fillRect(QRectF(place.right() - thinnestBar, place.top(), thinnestBar, place.height()),
                     color(Artwork::Color::emberLit));
  }
  const int row = span.press != MacroTimeline::none ? span.press : span.release;
  const QString words = MacroCommandModel::keyWords(*(*m_commands)[static_cast<std::size_t>(row)]);
  const QRectF room = place.adjusted(textMargin, 0, -textMargin, 0);
  if (place.height() >= leastTextHeight && fontMetrics().horizontalAdvance(words) <= room.width()) {
    painter.setPen(isSelected || span.overlaps ? color(Artwork::Color::ink)
                                               : color(Artwork::Color::snow));
    painter.drawText(room, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine, words);
  }
}

void TimeStrip::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  if (m_row >= 0) {
    drawSelection(painter);
  }
  for (const auto& span : m_timeline.spans) {
    drawBar(painter, span);
  }
  if (m_row >= 0) {
    painter.fillRect(QRectF(xOf(m_row) - 0.5, 1, 1.5, height() - 2),
                     color(Artwork::Color::emberLit));
  }
  if (hasFocus()) {
    painter.setPen(QPen(color(Artwork::Color::snow), 1));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
  }
}

void TimeStrip::mousePressEvent(QMouseEvent* event) {
  const int row =
      event->button() == Qt::LeftButton ? rowAt(event->position()) : MacroTimeline::none;
  if (row < 0) {
    event->ignore();
    return;
  }
  emit rowChosen(row, event->modifiers().testFlag(Qt::ShiftModifier));
}

void TimeStrip::mouseMoveEvent(QMouseEvent* event) {
  const int row =
      event->buttons().testFlag(Qt::LeftButton) ? rowAt(event->position()) : MacroTimeline::none;
  if (row >= 0 && row != m_row) {
    emit rowChosen(row, true);
  }
}

void TimeStrip::keyPressEvent(QKeyEvent* event) {
  const int last = m_timeline.rows() - 1;
  const int row = event->key() == Qt::Key_Left    ? m_row - 1
                  : event->key() == Qt::Key_Right ? m_row + 1
                  : event->key() == Qt::Key_Home  ? 0
                  : event->key() == Qt::Key_End   ? last
                                                  : MacroTimeline::none - 1;
  if (row < MacroTimeline::none || last < 0) {
    QWidget::keyPressEvent(event);
    return;
  }
  emit rowChosen(std::clamp(row, 0, last), event->modifiers().testFlag(Qt::ShiftModifier));
}
