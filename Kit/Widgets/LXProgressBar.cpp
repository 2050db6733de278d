#include "Kit/Widgets/LXProgressBar.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QStyle>
#include <algorithm>
#include <utility>

namespace {

constexpr QSize plainKnob(12, 12);
constexpr QColor plainKnobColor(0xE5, 0x26, 0x2F);
constexpr QColor focusColor(0xF2, 0xF4, 0xF7);

}  // namespace

LXProgressBar::LXProgressBar(QWidget* parent) : QAbstractSlider(parent) {
  setOrientation(Qt::Horizontal);
  setFocusPolicy(Qt::StrongFocus);
}

void LXProgressBar::setBackgroundImage(LXImage image) {
  m_background = std::move(image);
  update();
}

void LXProgressBar::setOverImage(LXImage image) {
  m_over = std::move(image);
  update();
}

void LXProgressBar::setIndicateImage(LXImage image) {
  m_indicate = std::move(image);
  update();
}

QSize LXProgressBar::knobSize() const {
  return m_indicate.isNull() ? plainKnob : m_indicate.size();
}

int LXProgressBar::travel() const {
  return orientation() == Qt::Horizontal ? std::max(0, width() - knobSize().width())
                                         : std::max(0, height() - knobSize().height());
}

int LXProgressBar::indicatePosition() const {
  const int half = (orientation() == Qt::Horizontal ? knobSize().width() : knobSize().height()) / 2;
  return half + QStyle::sliderPositionFromValue(minimum(), maximum(), value(), travel());
}

QRect LXProgressBar::indicateRect() const {
  QRect knob(QPoint(), knobSize());
  knob.moveCenter(orientation() == Qt::Horizontal
                      ? QPoint(indicatePosition(), height() / 2)
                      : QPoint(width() / 2, height() - indicatePosition()));
  return knob;
}

void LXProgressBar::setMaxValue(int maximum) {
  const QScopedValueRollback guard(m_isSetByProgram, true);
  setMaximum(maximum);
}

void LXProgressBar::setMinValue(int minimum) {
  const QScopedValueRollback guard(m_isSetByProgram, true);
  setMinimum(minimum);
}

void LXProgressBar::setValue(int value) {
  const QScopedValueRollback guard(m_isSetByProgram, true);
  QAbstractSlider::setValue(value);
}

void LXProgressBar::sliderChange(SliderChange change) {
  QAbstractSlider::sliderChange(change);
  if (change == SliderValueChange && !m_isSetByProgram && m_action) {
    m_action(*this);
  }
}

void LXProgressBar::moveTo(const QPoint& point) {
  const bool isLevel = orientation() == Qt::Horizontal;
  const int along =
      isLevel ? point.x() - knobSize().width() / 2 : height() - point.y() - knobSize().height() / 2;
  QAbstractSlider::setValue(
      QStyle::sliderValueFromPosition(minimum(), maximum(), along, std::max(1, travel())));
}

void LXProgressBar::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  (m_isPointerIn && !m_over.isNull() ? m_over : m_background).draw(painter, {0, 0});
  painter.setRenderHint(QPainter::Antialiasing);
  const QRect knob = indicateRect();
  if (m_indicate.isNull()) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(plainKnobColor);
    painter.drawEllipse(knob);
  } else {
    m_indicate.draw(painter, knob.topLeft());
  }
  if (hasFocus()) {
    painter.setPen(QPen(focusColor, 2));
    painter.setBrush(Qt::NoBrush);
    painter.drawEllipse(QRectF(knob).adjusted(1, 1, -1, -1));
  }
}

void LXProgressBar::mousePressEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    setSliderDown(true);
    const int before = value();
    moveTo(event->position().toPoint());
    tellIfStill(before);
  }
  event->accept();
}

void LXProgressBar::mouseMoveEvent(QMouseEvent* event) {
  if (isSliderDown()) {
    moveTo(event->position().toPoint());
  }
}

void LXProgressBar::mouseReleaseEvent(QMouseEvent* /*event*/) {
  setSliderDown(false);
}

void LXProgressBar::keyPressEvent(QKeyEvent* event) {
  const int before = value();
  QAbstractSlider::keyPressEvent(event);
  if (event->isAccepted()) {
    tellIfStill(before);
  }
}

void LXProgressBar::tellIfStill(int before) {
  if (m_tellsEveryChoice && value() == before && m_action) {
    m_action(*this);
  }
}

void LXProgressBar::enterEvent(QEnterEvent* event) {
  m_isPointerIn = true;
  update();
  QAbstractSlider::enterEvent(event);
}

void LXProgressBar::leaveEvent(QEvent* event) {
  m_isPointerIn = false;
  update();
  QAbstractSlider::leaveEvent(event);
}
