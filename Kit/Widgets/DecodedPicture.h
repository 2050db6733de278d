#pragma once

#include <QImage>
#include <QRect>
#include <QString>
#include <optional>
#include <span>
#include <vector>

// A picture that lies on the disk as its pixels, in the format for drawing. Tools/DecodePicture
// writes it of a PNG, for the pictures that the user waits for when the program starts.
//
// Numbers of 32 bits in the order of the machine: "NPX1", the width, the height, whether it has
// transparent pixels (0 or 1) and the number of pieces; for each piece the left and upper edge, the
// width and the height; then the pixels of the pieces, row by row. What lies in no piece is
// transparent.
struct DecodedPicture {
  struct Piece {
    QRect rect;
    const uchar* pixels;  // rect.height() rows of rect.width() pixels, without a gap
  };

  QSize size;
  QImage::Format format;
  std::vector<Piece> pieces;  // at least one if no pixel is transparent

  // The pieces stay in these bytes, which must be aligned for numbers of 32 bits. Nothing if the
  // bytes are anything else than one whole picture.
  static std::optional<DecodedPicture> of(std::span<const uchar> bytes);
  // A copy.
  QImage image() const;
};

// The picture in that file; null if there is none, or a damaged one. A picture of one piece is not
// copied but mapped: it is read page by page, and shared with other programs until it is drawn on.
QImage readDecodedPicture(const QString& path);
