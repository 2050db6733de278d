#pragma once

#include <QColor>
#include <QPoint>
#include <QRect>
#include <array>

#include "Action/Record/Records.h"
#include "Kit/Widgets/LXImage.h"

class QPainter;

// The four lights in the drawing of the LED window. Keeps each in the color that was drawn last:
// tinting takes longer than all the rest, and every control over the drawing paints it too.
class TintedLights {
 public:
  using Colors = std::array<QColor, zoneCount>;

  // The top left corner of the drawing in its window.
  explicit TintedLights(const QPoint& place);

  // Where a light is in the window; empty if the drawing lacks it.
  const QRect& place(std::size_t zone) const { return m_places[zone]; }
  void draw(QPainter& painter, const Colors& colors);

 private:
  // Only the parts of the pictures that are not transparent.
  std::array<LXImage, zoneCount> m_lights;
  std::array<QRect, zoneCount> m_places{};
  std::array<LXImage, zoneCount> m_tinted;
  Colors m_colors;
};
