#include "View/Lights/TintedLights.h"

#include <QImage>
#include <QPainter>
#include <QtMath>

#include "View/Screen/Pictures.h"

namespace {

// The part of the picture that is not transparent, in device-independent pixels.
QRect litPartOf(const QPixmap& picture) {
  const QImage image = picture.toImage().convertToFormat(QImage::Format_ARGB32_Premultiplied);
  QRect lit;
  for (int y = 0; y < image.height(); ++y) {
    int first = 0;
    int last = image.width() - 1;
    while (first <= last && qAlpha(image.pixel(first, y)) == 0) {
      ++first;
    }
    while (last > first && qAlpha(image.pixel(last, y)) == 0) {
      --last;
    }
    if (first <= last) {
      lit |= QRect(QPoint(first, y), QPoint(last, y));
    }
  }
  if (lit.isEmpty()) {
    return {};
  }
  // At every quarter of a scale, a multiple of four lies between two pixels.
  constexpr int step = 4;
  const qreal size = step * picture.devicePixelRatio();
  const auto floor = [size](int pixel) { return qFloor(pixel / size) * step; };
  const auto ceil = [size](int pixel) { return qCeil(pixel / size) * step; };
  const QPoint first(floor(lit.left()), floor(lit.top()));
  return {first, QSize(ceil(lit.right() + 1) - first.x(), ceil(lit.bottom() + 1) - first.y())};
}

}  // namespace

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

TintedLights::TintedLights(const QPoint& place) {
  for (std::size_t i = 0; i < zoneCount; ++i) {
    const LXImage picture = pictures::load(QStringLiteral("LightZone%1.png").arg(i + 1));
    const QRect lit = litPartOf(picture.pixmap());
    m_lights[i] = picture.slice(lit);
    m_places[i] = lit.translated(place);
  }
}

void TintedLights::draw(QPainter& painter, const Colors& colors) {
  for (std::size_t i = 0; i < zoneCount; ++i) {
    if (m_lights[i].isNull()) {
      continue;
    }
    if (m_tinted[i].isNull() || m_colors[i] != colors[i]) {
      m_colors[i] = colors[i];
      m_tinted[i] = tinted(m_lights[i], colors[i]);
    }
    m_tinted[i].draw(painter, m_places[i].topLeft());
  }
}
