#include "View/Main/MapLights.h"

#include <QPaintEvent>
#include <QPainter>
#include <utility>

#include "View/Lights/LightColor.h"
#include "View/Screen/Pictures.h"

MapLights::MapLights(const QString& stem, const QPoint& place, QWidget* parent)
    : QWidget(parent), m_place(place) {
  setObjectName(QStringLiteral("mapLights"));
  setAttribute(Qt::WA_TransparentForMouseEvents);
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    m_pictures[zone] = pictures::load(stem + QStringLiteral("%1.png").arg(zone + 1));
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

void MapLights::findLitParts() {
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    if (!m_pictures[zone].isNull()) {
      m_lights[zone] = litPartOf(std::exchange(m_pictures[zone], {}));
      m_lit |= m_lights[zone].place;
    }
  }
}

LXImage::Loaded MapLights::drawn(qreal ratio) const {
  QPixmap all((QSizeF(m_lit.size()) * ratio).toSize());
  all.setDevicePixelRatio(ratio);
  all.fill(Qt::transparent);
  QPainter painter(&all);
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    const auto& [picture, place] = m_lights[zone];
    if (picture.isNull()) {
      continue;
    }
    const LXImage light = tinted(picture, (*m_colors)[zone]);
    const int times = m_isBattle ? 3 : 1;
    for (int i = 0; i < times; ++i) {
      // The soft edges add up, the light itself is full already.
      light.draw(painter, place.topLeft() - m_lit.topLeft());
    }
  }
  painter.end();
  return {all, m_lit.size()};
}

void MapLights::paintEvent(QPaintEvent* event) {
  findLitParts();
  QPainter painter(this);
  painter.setClipRegion(event->region());
  m_drawn.draw(painter, m_place + m_lit.topLeft());
}
