#include "Kit/Widgets/LXImage.h"

#include <QPainter>
#include <utility>

namespace {

// The rectangle in the pixels of the picture, which has twice as many each way on a fine screen.
QRectF inPixels(const QPixmap& pixmap, const QRect& rect) {
  const qreal ratio = pixmap.devicePixelRatio();
  return {rect.x() * ratio, rect.y() * ratio, rect.width() * ratio, rect.height() * ratio};
}

}  // namespace

const QPixmap& LXImage::Source::get() {
  if (load) {
    pixmap = std::exchange(load, nullptr)();
  }
  return pixmap;
}

LXImage::LXImage(Loader load) : m_source(std::make_shared<Source>(Source{std::move(load), {}})) {}

LXImage::LXImage(const QPixmap& pixmap)
    : m_source(pixmap.isNull() ? nullptr : std::make_shared<Source>(Source{nullptr, pixmap})) {}

bool LXImage::isLoaded() const {
  return m_source && !m_source->load;
}

QSize LXImage::size() const {
  if (isNull()) {
    return {};
  }
  return m_rect.isNull() ? m_source->get().deviceIndependentSize().toSize() : m_rect.size();
}

LXImage LXImage::slice(const QRect& rect) const {
  LXImage part;
  if (!isNull() && !rect.isEmpty()) {
    part.m_source = m_source;
    part.m_rect = m_rect.isNull() ? rect : rect.translated(m_rect.topLeft());
  }
  return part;
}

QPixmap LXImage::pixmap() const {
  if (isNull()) {
    return {};
  }
  const QPixmap& whole = m_source->get();
  return m_rect.isNull() ? whole : whole.copy(inPixels(whole, m_rect).toRect());
}

void LXImage::draw(QPainter& painter, const QPoint& position) const {
  if (isNull()) {
    return;
  }
  const QPixmap& whole = m_source->get();
  const QRect rect = m_rect.isNull() ? QRect(QPoint(), size()) : m_rect;
  painter.drawPixmap(QRectF(position, rect.size()), whole, inPixels(whole, rect));
}
