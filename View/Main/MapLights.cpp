#include "View/Main/MapLights.h"

#include <QPaintEvent>
#include <QPainter>

#include "View/Lights/LightColor.h"
#include "View/Lights/TintedLights.h"
#include "View/Screen/Pictures.h"

MapLights::MapLights(const QString& stem, const QPoint& place, QWidget* parent)
    : QWidget(parent), m_place(place) {
  setObjectName(QStringLiteral("mapLights"));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    m_lights[zone] = pictures::load(stem + QStringLiteral("%1.png").arg(zone + 1));
  }
}

void MapLights::show(const _Nerin_PROFILE& profile) {
  Colors colors;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const _LightColorInfo& color = profile.lightColorArr[zone];
    colors[zone] = LightColor::ofBytes(color.cR, color.cG, color.cB).shown();
  }
  const bool isBattle = profile.modeType == 1;
  if (m_colors != colors || m_isBattle != isBattle) {
    m_colors = colors;
    m_isBattle = isBattle;
    m_drawn = LXImage([this](qreal ratio) { return drawn(ratio); });
    update();
  }
}

LXImage::Loaded MapLights::drawn(qreal ratio) const {
  QPixmap all;
  QSize size;
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    if (m_lights[zone].isNull()) {
      continue;
    }
    const QPixmap light = tinted(m_lights[zone], (*m_colors)[zone]).pixmap(ratio);
    if (all.isNull()) {
      size = m_lights[zone].size();
      all = QPixmap(light.size());
      all.setDevicePixelRatio(light.devicePixelRatio());
      all.fill(Qt::transparent);
    }
    QPainter painter(&all);
    const int times = m_isBattle ? 3 : 1;
    for (int i = 0; i < times; ++i) {
      // The soft edges add up, the light itself is full already.
      painter.drawPixmap(QPointF(), light);
    }
  }
  return {all, size};
}

void MapLights::paintEvent(QPaintEvent* event) {
  QPainter painter(this);
  painter.setClipRegion(event->region());
  m_drawn.draw(painter, m_place);
}
