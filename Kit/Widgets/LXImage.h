#pragma once

#include <QPixmap>
#include <QRect>
#include <functional>
#include <memory>

class QPainter;

// A picture, or a rectangle of one, that is loaded when it is first drawn, because many states are
// never seen. Copies and slices share the loaded picture. If only its slices are drawn, only these
// are kept. Coordinates and sizes are device-independent pixels.
//
// A picture is loaded for the scale of the screen that it is drawn on and is drawn pixel by pixel,
// so that its words stay sharp at 125 % too. A window that moves to another screen brings it again.
class LXImage {
 public:
  // `size` is the picture's place, in device-independent pixels. The pixmap covers it with whole
  // device pixels: at 125 % a place of 5 pixels is 6.25 device pixels wide, and the pixmap 7.
  struct Loaded {
    QPixmap pixmap;
    QSize size;
  };
  // Gets the number of device pixels to a device-independent one, which the pixmap should have.
  using Loader = std::function<Loaded(qreal ratio)>;

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
  // The same, of a picture of which nothing else is needed: what is loaded of the rest is let go.
  LXImage cropped(const QRect& rect) const;
  // Marks the slice as one that will be drawn after all.
  void expect() const;
  // Lets all pictures be loaded again when they are next drawn: their words have changed.
  static void reloadAll();
  // The picture as a pixmap for a screen of that scale; 0 stands for the finest screen.
  QPixmap pixmap(qreal ratio = 0) const;
  void draw(QPainter& painter, const QPoint& position) const;
  // Draws the rectangle of this picture at its own position and keeps the whole picture, because
  // other rectangles of it will be drawn soon.
  void drawPart(QPainter& painter, const QRect& rect) const;

 private:
  struct Source;

  std::shared_ptr<Source> m_source;
  QRect m_rect;  // null for the whole picture
};
