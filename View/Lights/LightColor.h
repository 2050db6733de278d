#pragma once

#include <QColor>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>

// A color with components 0..1. Doubles, because the rounding errors of floats would reach the
// profile.
struct LightColor {
  double red = 0;
  double green = 0;
  double blue = 0;

  bool operator==(const LightColor&) const = default;

  static LightColor ofBytes(std::uint32_t red, std::uint32_t green, std::uint32_t blue) {
    constexpr double largest = 255;
    return {red / largest, green / largest, blue / largest};
  }
  static LightColor of(const QColor& color) {
    return ofBytes(static_cast<std::uint32_t>(color.red()),
                   static_cast<std::uint32_t>(color.green()),
                   static_cast<std::uint32_t>(color.blue()));
  }
  // The stored form: red, green and blue, 0..255.
  std::array<std::uint32_t, 3> bytes() const {
    constexpr double scale = 254.99998474121094;
    const auto stored = [](double component) {
      return static_cast<std::uint32_t>(std::lround(component * scale)) & 0xFFU;
    };
    return {stored(red), stored(green), stored(blue)};
  }
  // Shows exactly the color that would be stored.
  QColor shown() const {
    const auto stored = bytes();
    return {static_cast<int>(stored[0]), static_cast<int>(stored[1]), static_cast<int>(stored[2])};
  }
};
