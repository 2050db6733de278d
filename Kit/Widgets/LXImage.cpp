#include "Kit/Widgets/LXImage.h"

#include <QGuiApplication>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "Kit/Core/ProcessWide.h"

namespace {

// Pictures of an older edition are loaded again.
ProcessWide<int> currentEdition;

// Of a scaled length, for what is left of a fraction after multiplying.
constexpr qreal roundingError = 1e-6;

// The pixels that the rectangle touches. Parts of one picture share the pixels at a common edge
// that lies between two of them.
QRect inPixels(const QPixmap& pixmap, const QRect& rect) {
  const qreal ratio = pixmap.devicePixelRatio();
  const auto first = [ratio](int edge) {
    return static_cast<int>(std::floor(edge * ratio + roundingError));
  };
  const auto last = [ratio](int edge) {
    return static_cast<int>(std::ceil(edge * ratio - roundingError)) - 1;
  };
  return {QPoint(first(rect.x()), first(rect.y())),
          QPoint(last(rect.x() + rect.width()), last(rect.y() + rect.height()))};
}

QPixmap partOf(const QPixmap& whole, const QRect& rect) {
  return whole.copy(inPixels(whole, rect));
}

qreal finestRatio() {
  return qGuiApp != nullptr ? qGuiApp->devicePixelRatio() : 1;
}

// Device pixels to a device-independent one where the painter draws now.
qreal ratioOf(const QPainter& painter) {
  const qreal ratio = painter.deviceTransform().m11();
  return ratio > 0 ? ratio : painter.device()->devicePixelRatioF();
}

// Draws some pixels of a picture so that each becomes one pixel of the screen. `rect` is their
// place in the picture; `position` is where its corner belongs. At a fractional scale both may lie
// between two pixels of the screen.
void drawPixels(QPainter& painter, const QPointF& position, const QRect& rect,
                const QPixmap& pixmap, const QRect& pixels) {
  const qreal ratio = pixmap.devicePixelRatio();
  const QTransform& toScreen = painter.deviceTransform();
  if (!qFuzzyCompare(toScreen.m11(), ratio) || !toScreen.isInvertible()) {
    painter.drawPixmap(QRectF(position, rect.size()), pixmap, pixels);
    return;
  }
  const QPointF inside(rect.x() * ratio - std::floor(rect.x() * ratio + roundingError),
                       rect.y() * ratio - std::floor(rect.y() * ratio + roundingError));
  const QPoint corner = (toScreen.map(position) - inside).toPoint();
  painter.drawPixmap(
      QRectF(toScreen.inverted().map(QPointF(corner)), QSizeF(pixels.size()) / ratio), pixmap,
      pixels);
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
  qreal ratio = 0;  // of the screen that the pixmaps are for; 0 for one that is given as it is
  std::vector<Part> parts;
  int edition = *currentEdition;
  bool isLoaded = false;

  // Forgets what was loaded for a screen of another scale, or with other words.
  void useRatio(qreal newRatio) {
    if (!load || (qFuzzyCompare(ratio, newRatio) && edition == *currentEdition)) {
      return;
    }
    ratio = newRatio;
    edition = *currentEdition;
    if (isLoaded) {
      whole = QPixmap();
      isLoaded = false;
      for (Part& part : parts) {
        part.pixmap = QPixmap();
      }
    }
  }

  QPixmap bring() {
    Loaded loaded = load ? load(ratio) : Loaded();
    isLoaded = true;
    size = loaded.size;
    return std::move(loaded.pixmap);
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

  void keepOnly(const QRect& rect) {
    if (!whole.isNull()) {
      parts = {{rect, partOf(whole, rect)}};
      whole = QPixmap();
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
    m_source->size = pixmap.deviceIndependentSize().toSize();
    m_source->isLoaded = true;
  }
}

void LXImage::reloadAll() {
  ++*currentEdition;
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
    m_source->useRatio(finestRatio());
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

LXImage LXImage::cropped(const QRect& rect) const {
  LXImage part = slice(rect);
  if (!part.isNull()) {
    m_source->keepOnly(part.m_rect);
  }
  return part;
}

void LXImage::expect() const {
  if (!isNull() && !m_rect.isNull()) {
    m_source->want(m_rect);
  }
}

QPixmap LXImage::pixmap(qreal ratio) const {
  if (isNull()) {
    return {};
  }
  m_source->useRatio(ratio > 0 ? ratio : finestRatio());
  return m_rect.isNull() ? m_source->getWhole() : m_source->getPart(m_rect);
}

void LXImage::draw(QPainter& painter, const QPoint& position) const {
  if (isNull()) {
    return;
  }
  m_source->useRatio(ratioOf(painter));
  if (m_rect.isNull() || !m_source->whole.isNull()) {
    const QPixmap& whole = m_source->getWhole();
    const QRect rect = m_rect.isNull() ? QRect(QPoint(), m_source->size) : m_rect;
    drawPixels(painter, position, rect, whole,
               m_rect.isNull() ? whole.rect() : inPixels(whole, rect));
    return;
  }
  const QPixmap part = m_source->getPart(m_rect);
  drawPixels(painter, position, m_rect, part, part.rect());
}

void LXImage::drawPart(QPainter& painter, const QRect& rect) const {
  if (isNull()) {
    return;
  }
  m_source->useRatio(ratioOf(painter));
  const QRect part = m_rect.isNull() ? rect : rect.translated(m_rect.topLeft());
  const QPixmap& whole = m_source->getWhole();
  drawPixels(painter, rect.topLeft(), part, whole, inPixels(whole, part));
}
