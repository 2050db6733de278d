#pragma once

#include <QPixmap>
#include <QRect>
#include <functional>
#include <memory>

class QPainter;

// A picture, or a rectangle of one, that is loaded when it is first drawn: most states of most
// screens are never seen. Copies and slices share the loaded picture, and of a picture that only
// its slices draw, only these are kept. Coordinates and sizes are device-independent pixels.
class LXImage {
 public:
  using Loader = std::function<QPixmap()>;

  // No picture.
  LXImage() = default;
  // A picture that `load` brings when it is needed: once, unless a slice is wanted that was not
  // there at the first time.
  explicit LXImage(Loader load);
  explicit LXImage(const QPixmap& pixmap);

  bool isNull() const { return m_source == nullptr; }
  // Whether the picture has been brought, for the tests of its laziness.
  bool isLoaded() const;
  QSize size() const;
  // The rectangle of this picture; of no picture, none. What is not expected to be drawn is not
  // kept beforehand: drawing it may bring the picture again.
  LXImage slice(const QRect& rect, bool isExpected = true) const;
  // The slice will be drawn after all.
  void expect() const;
  // A picture of its own.
  QPixmap pixmap() const;
  void draw(QPainter& painter, const QPoint& position) const;
  // Draws the rectangle of this picture at its own place, and keeps the whole picture: other
  // rectangles of it are drawn soon.
  void drawPart(QPainter& painter, const QRect& rect) const;

 private:
  struct Source;

  std::shared_ptr<Source> m_source;
  QRect m_rect;  // null for the whole picture
};
