#include "View/Lights/TintedLights.h"

#include <QPainter>

#include "View/Lights/LitPart.h"
#include "View/Screen/Pictures.h"

TintedLights::TintedLights(const QPoint& place) {
  for (std::size_t i = 0; i < zoneCount; ++i) {
    const LitPart lit = litPartOf(pictures::load(QStringLiteral("LightZone%1.png").arg(i + 1)));
    m_lights[i] = lit.picture;
    m_places[i] = lit.place.translated(place);
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
