#include "Kit/Widgets/LXImageView.h"

#include <QPainter>
#include <utility>

namespace {

constexpr QColor edgeColor(0x34, 0x39, 0x43);
constexpr qreal cornerRadius = 6;

}  // namespace

LXImageView::LXImageView(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

QRect LXImageView::imageRect() const {
  return {m_position, m_image.size()};
}

void LXImageView::setImage(LXImage image, const QPoint& position) {
  update(imageRect());
  m_image = std::move(image);
  m_position = position;
  update(imageRect());
}

void LXImageView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  m_image.draw(painter, m_position);
}

void LXImageBgView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  if (image().size() == size()) {
    image().draw(painter, {});
    return;
  }
  painter.setRenderHint(QPainter::SmoothPixmapTransform);
  painter.drawPixmap(rect(), image().pixmap(devicePixelRatioF()));
}

LXColorView::LXColorView(QWidget* parent) : QWidget(parent) {}

void LXColorView::setColor(const QColor& color) {
  m_color = color;
  update();
}

void LXColorView::paintEvent(QPaintEvent* /*event*/) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  // The edge separates a dark color from a dark window.
  painter.setPen(edgeColor);
  painter.setBrush(m_color);
  painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), cornerRadius,
                          cornerRadius);
}
