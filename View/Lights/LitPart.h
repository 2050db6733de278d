#pragma once

#include <QColor>
#include <QRect>

#include "Kit/Widgets/LXImage.h"

// A light of a drawing: the part of its picture that is not transparent, and where in the picture
// that is. The picture is as large as the drawing and the light small, so that nothing else is
// kept.
struct LitPart {
  LXImage picture;
  QRect place;
};

// Loads the picture, which is white on transparent. No part of a picture without a lit pixel.
LitPart litPartOf(const LXImage& light);

// A light in a color.
LXImage tinted(const LXImage& light, const QColor& color);
