#pragma once

#include <QWidget>
#include <array>
#include <optional>

#include "Action/Record/Records.h"
#include "View/Lights/LitPart.h"

// The lights of the mouse in a drawing of it, in the colors of a profile. In Battle mode they glow
// stronger. Lies over the whole drawing and lets the pointer through.
class MapLights : public QWidget {
  Q_OBJECT

 public:
  // The pictures "stem1.png" to "stem4.png" show one light each, in white; a missing one is a light
  // that this side does not show. `place` is their top left corner.
  MapLights(const QString& stem, const QPoint& place, QWidget* parent);

  void show(const _Nerin_PROFILE& profile);

 protected:
  void paintEvent(QPaintEvent* event) override;

 private:
  using Colors = std::array<QColor, zoneCount>;

  // Finds the parts at the first painting, because a drawing may never be shown.
  void findLitParts();
  LXImage::Loaded drawn(qreal ratio) const;

  QPoint m_place;
  std::array<LXImage, zoneCount> m_pictures;  // empty once the parts are found
  std::array<LitPart, zoneCount> m_lights;    // in white
  QRect m_lit;                                // holds all parts
  std::optional<Colors> m_colors;
  bool m_isBattle = false;
  LXImage m_drawn;  // what m_lit holds
};
