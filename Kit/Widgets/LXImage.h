#pragma once

#include <QPixmap>
#include <QRect>
#include <functional>
#include <memory>

class QPainter;

// A picture, or a rectangle of one, that is loaded when it is first drawn: most states of most
// screens are never seen. Copies and slices share the loaded picture. Coordinates and sizes are
// device-independent pixels.
class LXImage {
 public:
  using Loader = std::function<QPixmap()>;

  // No picture.
  LXImage() = default;
  // A picture that `load` brings when it is needed: once.
  explicit LXImage(Loader load);
  explicit LXImage(const QPixmap& pixmap);

  bool isNull() const { return m_source == nullptr; }
  // Whether the picture has been brought, for the tests of its laziness.
  bool isLoaded() const;
  QSize size() const;
  // The rectangle of this picture; of no picture, none.
  LXImage slice(const QRect& rect) const;
  // A picture of its own.
  QPixmap pixmap() const;
  void draw(QPainter& painter, const QPoint& position) const;

 private:
  struct Source {
    Loader load;
    QPixmap pixmap;
    const QPixmap& get();
  };

  std::shared_ptr<Source> m_source;
  QRect m_rect;  // null for the whole picture
};
