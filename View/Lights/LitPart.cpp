#include "View/Lights/LitPart.h"

#include <QImage>
#include <QPainter>
#include <QPixmap>
#include <QtMath>
#include <algorithm>

namespace {

// In device pixels.
QRect litPixels(const QImage& image) {
  const auto isLit = [](QRgb pixel) { return qAlpha(pixel) != 0; };
  QRect lit;
  for (int y = 0; y < image.height(); ++y) {
    const auto* row = reinterpret_cast<const QRgb*>(image.constScanLine(y));
    const auto* end = row + image.width();
    const auto* first = std::find_if(row, end, isLit);
    if (first == end) {
      continue;
    }
    const auto* last = end - 1;
    while (!isLit(*last)) {
      --last;
    }
    lit |= QRect(QPoint(static_cast<int>(first - row), y), QPoint(static_cast<int>(last - row), y));
  }
  return lit;
}

// In device-independent pixels.
QRect placeOf(const QPixmap& picture) {
  QRect lit = litPixels(picture.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied));
  if (lit.isEmpty()) {
    return {};
  }
  // At another scale its edge may be softer.
  const int edge = qCeil(picture.devicePixelRatio());
  lit.adjust(-edge, -edge, edge, edge);
  // At every quarter of a scale, a multiple of four lies between two pixels.
  constexpr int step = 4;
  const qreal size = step * picture.devicePixelRatio();
  const auto floor = [size](int pixel) { return qFloor(pixel / size) * step; };
  const auto ceil = [size](int pixel) { return qCeil(pixel / size) * step; };
  const QPoint first(floor(lit.left()), floor(lit.top()));
  return {first, QSize(ceil(lit.right() + 1) - first.x(), ceil(lit.bottom() + 1) - first.y())};
}

}  // namespace

LitPart litPartOf(const LXImage& light) {
  const QRect place = placeOf(light.pixmap()) & QRect(QPoint(), light.size());
  return {light.cropped(place), place};
}

LXImage tinted(const LXImage& light, const QColor& color) {
  return LXImage([light, color](qreal ratio) {
    QPixmap picture = light.pixmap(ratio);
    QPainter tint(&picture);
    tint.setCompositionMode(QPainter::CompositionMode_SourceIn);
    tint.fillRect(picture.rect(), color);
    tint.end();
    return LXImage::Loaded{picture, light.size()};
  });
}
