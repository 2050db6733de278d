#include "Kit/Widgets/LXImage.h"

#include <QPainter>
#include <algorithm>
#include <utility>
#include <vector>

namespace {

// The rectangle in device pixels, of which a high-resolution picture has twice as many each way.
QRectF inPixels(const QPixmap& pixmap, const QRect& rect) {
  const qreal ratio = pixmap.devicePixelRatio();
  return {rect.x() * ratio, rect.y() * ratio, rect.width() * ratio, rect.height() * ratio};
}

QSize sizeOf(const QPixmap& pixmap) {
  return pixmap.deviceIndependentSize().toSize();
}

QPixmap partOf(const QPixmap& whole, const QRect& rect) {
  return whole.copy(inPixels(whole, rect).toRect());
}

}  // namespace

// The picture of a whole screen takes megabytes, and only the parts under the buttons are ever
// drawn from the hovered, pressed and disabled ones.
struct LXImage::Source {
  struct Part {
    QRect rect;
    QPixmap pixmap;  // null until the picture is loaded
  };

  Loader load;
  QPixmap whole;
  QSize size;
  std::vector<Part> parts;
  bool isLoaded = false;

  QPixmap bring() {
    QPixmap pixmap = load ? load() : QPixmap();
    isLoaded = true;
    size = sizeOf(pixmap);
    return pixmap;
  }

  const QPixmap& getWhole() {
    if (whole.isNull() && (!isLoaded || !size.isEmpty())) {
      whole = bring();
      parts.clear();
    }
    return whole;
  }

  std::vector<Part>::iterator find(const QRect& rect) {
    return std::find_if(parts.begin(), parts.end(),
                        [&](const Part& part) { return part.rect == rect; });
  }

  void want(const QRect& rect) {
    if (whole.isNull() && find(rect) == parts.end()) {
      parts.push_back({rect, {}});
    }
  }

  QPixmap getPart(const QRect& rect) {
    if (!whole.isNull()) {
      return partOf(whole, rect);
    }
    want(rect);
    auto part = find(rect);
    if (part->pixmap.isNull() && (!isLoaded || !size.isEmpty())) {
      const QPixmap pixmap = bring();
      for (Part& one : parts) {
        one.pixmap = partOf(pixmap, one.rect);
      }
    }
    return part->pixmap;
  }
};

LXImage::LXImage(Loader load) : m_source(std::make_shared<Source>()) {
  m_source->load = std::move(load);
}

LXImage::LXImage(const QPixmap& pixmap)
    : m_source(pixmap.isNull() ? nullptr : std::make_shared<Source>()) {
  if (m_source) {
    m_source->whole = pixmap;
    m_source->size = sizeOf(pixmap);
    m_source->isLoaded = true;
  }
}

bool LXImage::isLoaded() const {
  return m_source && m_source->isLoaded;
}

QSize LXImage::size() const {
  if (isNull()) {
    return {};
  }
  if (!m_rect.isNull()) {
    return m_rect.size();
  }
  if (!m_source->isLoaded) {
    m_source->getWhole();
  }
  return m_source->size;
}

LXImage LXImage::slice(const QRect& rect, bool isExpected) const {
  LXImage part;
  if (!isNull() && !rect.isEmpty()) {
    part.m_source = m_source;
    part.m_rect = m_rect.isNull() ? rect : rect.translated(m_rect.topLeft());
    if (isExpected) {
      part.expect();
    }
  }
  return part;
}

void LXImage::expect() const {
  if (!isNull() && !m_rect.isNull()) {
    m_source->want(m_rect);
  }
}

QPixmap LXImage::pixmap() const {
  if (isNull()) {
    return {};
  }
  return m_rect.isNull() ? m_source->getWhole() : m_source->getPart(m_rect);
}

void LXImage::draw(QPainter& painter, const QPoint& position) const {
  if (isNull()) {
    return;
  }
  if (m_rect.isNull() || !m_source->whole.isNull()) {
    const QPixmap& whole = m_source->getWhole();
    const QRect rect = m_rect.isNull() ? QRect(QPoint(), m_source->size) : m_rect;
    painter.drawPixmap(QRectF(position, rect.size()), whole, inPixels(whole, rect));
    return;
  }
  painter.drawPixmap(position, m_source->getPart(m_rect));
}

void LXImage::drawPart(QPainter& painter, const QRect& rect) const {
  if (isNull()) {
    return;
  }
  const QRect part = m_rect.isNull() ? rect : rect.translated(m_rect.topLeft());
  const QPixmap& whole = m_source->getWhole();
  painter.drawPixmap(QRectF(rect), whole, inPixels(whole, part));
}
