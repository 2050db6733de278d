#pragma once

#include <QPixmap>
#include <QRect>
#include <functional>
#include <memory>

class QPainter;

// A picture, or a rectangle of one, that is loaded when it is first drawn, because many states are
// never seen. Copies and slices share the loaded picture. If only its slices are drawn, only these
// are kept. Coordinates and sizes are device-independent pixels.
class LXImage {
 public:
  using Loader = std::function<QPixmap()>;

  // No picture.
  LXImage() = default;
  // A picture that `load` provides when it is needed: once, unless a slice is then requested that
  // was not expected the first time.
  explicit LXImage(Loader load);
  explicit LXImage(const QPixmap& pixmap);

  bool isNull() const { return m_source == nullptr; }
  // Whether the picture has been loaded; for tests.
  bool isLoaded() const;
  QSize size() const;
  // A rectangle of this picture; none of no picture. An unexpected slice is not kept in advance, so
  // drawing it may load the picture again.
  LXImage slice(const QRect& rect, bool isExpected = true) const;
  // Marks the slice as one that will be drawn after all.
  void expect() const;
  // The picture as a pixmap.
  QPixmap pixmap() const;
  void draw(QPainter& painter, const QPoint& position) const;
  // Draws the rectangle of this picture at its own position and keeps the whole picture, because
  // other rectangles of it will be drawn soon.
  void drawPart(QPainter& painter, const QRect& rect) const;

 private:
  struct Source;

  std::shared_ptr<Source> m_source;
  QRect m_rect;  // null for the whole picture
};
