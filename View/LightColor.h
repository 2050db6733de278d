#pragma once

#include <QColor>
#include <cmath>
#include <cstdint>

// A colour with components 0..1. Doubles until it is stored: the rounding of anything coarser would
// show in the profile.
struct LightColor {
  double red = 0;
  double green = 0;
  double blue = 0;

  bool operator==(const LightColor&) const = default;

  static LightColor of(const QColor& color) {
    return {color.redF(), color.greenF(), color.blueF()};
  }
  QColor shown() const {
    return QColor::fromRgbF(static_cast<float>(red), static_cast<float>(green),
                            static_cast<float>(blue));
  }
};
