#pragma once

#include <QColor>
#include <QPixmap>

// Plain pictures, one color each.
inline QPixmap filled(const QColor& color) {
  QPixmap pixmap(20, 20);
  pixmap.fill(color);
  return pixmap;
}

inline const QColor red(255, 0, 0);
inline const QColor green(0, 255, 0);
inline const QColor blue(0, 0, 255);
inline const QColor grey(128, 128, 128);
inline const QColor white(255, 255, 255);
