#pragma once

#include <QRect>
#include <array>
#include <cstddef>

// The rectangle of a control in its drawing.
template <typename Frame>
constexpr QRect frameRect(const Frame& frame) {
  return {frame.x, frame.y, frame.width, frame.height};
}

// The names and rectangles of a drawing, in the form that a view needs.
template <typename Place, typename NamedFrame, std::size_t Count>
std::array<Place, Count> placesOf(const std::array<NamedFrame, Count>& named) {
  std::array<Place, Count> places;
  for (std::size_t i = 0; i < Count; ++i) {
    places[i] = {named[i].name, frameRect(named[i].frame)};
  }
  return places;
}
