#include "View/Macros/UsageBar.h"

#include <QPainter>
#include <algorithm>

#include "ArtworkFrames.h"

UsageBar::UsageBar(QLabel* label, QWidget* parent)
    : QWidget(parent), m_label(label), m_title(label->accessibleName()) {}

void UsageBar::showUsage(int used, int most) {
  m_fraction = most > 0 ? std::clamp(static_cast<double>(used) / most, 0.0, 1.0) : 0;
  m_label->setText(QStringLiteral("%1 / %2").arg(used).arg(most));
  m_label->setAccessibleName(m_title + QStringLiteral(": ") + m_label->text());
  update();
}

void UsageBar::paintEvent(QPaintEvent* /*event*/) {
  const double filled = width() * m_fraction;
  if (filled <= 0) {
    return;
  }
  constexpr double radius = 2;
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setPen(Qt::NoPen);
  painter.setBrush(QColor::fromRgb(Artwork::Color::ember));
  painter.drawRoundedRect(QRectF(0, 0, filled, height()), radius, radius);
}
