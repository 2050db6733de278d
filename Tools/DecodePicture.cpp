// Reads a PNG from standard input and writes to standard output what the program draws of it: the
// pixels, so that nothing is left to decode while it starts. Kit/Widgets/DecodedPicture.h reads it.
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "Tools/PngPicture.h"

namespace {

constexpr std::uint32_t magic = 0x3158504E;  // "NPX1"
// Pieces that are nearer than this to each other are one.
constexpr std::uint32_t smallestGap = 8;

struct Picture {
  std::uint32_t width = 0;
  std::uint32_t height = 0;
  bool hasAlpha = false;
  std::vector<std::uint32_t> pixels;  // 0xAARRGGBB, multiplied by alpha

  std::uint32_t at(std::uint32_t x, std::uint32_t y) const { return pixels[y * width + x]; }
};

struct Rect {
  std::uint32_t x;
  std::uint32_t y;
  std::uint32_t width;
  std::uint32_t height;
};

std::uint32_t multiplied(std::uint32_t channel, std::uint32_t alpha) {
  constexpr std::uint32_t full = 255;
  return (channel * alpha * 2 + full) / (full * 2);
}

Picture converted(const PngPicture& png) {
  Picture picture;
  picture.width = png.width;
  picture.height = png.height;
  picture.hasAlpha = png.colorType == PNG_COLOR_TYPE_RGBA;
  if (png.bitDepth != 8 || (!picture.hasAlpha && png.colorType != PNG_COLOR_TYPE_RGB)) {
    failOfPng(nullptr, "a picture of eight bits in RGB or RGBA is expected");
  }
  const std::size_t channels = picture.hasAlpha ? 4 : 3;
  picture.pixels.reserve(std::size_t{png.width} * png.height);
  for (std::size_t at = 0; at < png.pixels.size(); at += channels) {
    const png_byte* pixel = &png.pixels[at];
    const std::uint32_t alpha = picture.hasAlpha ? pixel[3] : 0xFF;
    picture.pixels.push_back(alpha << 24 | multiplied(pixel[0], alpha) << 16 |
                             multiplied(pixel[1], alpha) << 8 | multiplied(pixel[2], alpha));
  }
  return picture;
}

bool isBlank(const Picture& picture, const Rect& rect) {
  for (std::uint32_t y = rect.y; y < rect.y + rect.height; ++y) {
    for (std::uint32_t x = rect.x; x < rect.x + rect.width; ++x) {
      if (picture.at(x, y) != 0) {
        return false;
      }
    }
  }
  return true;
}

// The rows of a rectangle, or its columns.
Rect line(const Rect& rect, bool isRow, std::uint32_t index) {
  return isRow ? Rect{rect.x, rect.y + index, rect.width, 1}
               : Rect{rect.x + index, rect.y, 1, rect.height};
}

Rect lines(const Rect& rect, bool areRows, std::uint32_t first, std::uint32_t count) {
  return areRows ? Rect{rect.x, rect.y + first, rect.width, count}
                 : Rect{rect.x + first, rect.y, count, rect.height};
}

// The parts of a rectangle between wide blank gaps in one direction.
std::vector<Rect> split(const Picture& picture, const Rect& rect, bool intoRows) {
  std::vector<Rect> parts;
  const std::uint32_t count = intoRows ? rect.height : rect.width;
  std::uint32_t first = 0;
  std::uint32_t end = 0;  // of the part that began at `first`; the same if none did
  for (std::uint32_t index = 0; index < count; ++index) {
    if (isBlank(picture, line(rect, intoRows, index))) {
      continue;
    }
    if (first == end) {
      first = index;
    } else if (index - end >= smallestGap) {
      parts.push_back(lines(rect, intoRows, first, end - first));
      first = index;
    }
    end = index + 1;
  }
  if (first != end) {
    parts.push_back(lines(rect, intoRows, first, end - first));
  }
  return parts;
}

// Splits until nothing changes any more.
void findPieces(const Picture& picture, const Rect& rect, std::vector<Rect>& pieces) {
  for (const Rect& row : split(picture, rect, true)) {
    const std::vector<Rect> parts = split(picture, row, false);
    for (const Rect& part : parts) {
      const bool isWhole = part.width == rect.width && part.height == rect.height;
      isWhole ? pieces.push_back(part) : findPieces(picture, part, pieces);
    }
  }
}

// An opaque picture is one piece, which needs no copy in memory.
std::vector<Rect> piecesOf(const Picture& picture) {
  const Rect whole{0, 0, picture.width, picture.height};
  std::vector<Rect> pieces;
  if (picture.hasAlpha) {
    findPieces(picture, whole, pieces);
  } else {
    pieces.push_back(whole);
  }
  return pieces;
}

template <std::size_t Count>
void write(const std::array<std::uint32_t, Count>& numbers) {
  std::fwrite(numbers.data(), sizeof(std::uint32_t), Count, stdout);
}

}  // namespace

int main() {
  const Picture picture = converted(readPng(stdin));
  const std::vector<Rect> pieces = piecesOf(picture);
  write(std::array{magic, picture.width, picture.height, std::uint32_t{picture.hasAlpha},
                   static_cast<std::uint32_t>(pieces.size())});
  for (const Rect& piece : pieces) {
    write(std::array{piece.x, piece.y, piece.width, piece.height});
  }
  for (const Rect& piece : pieces) {
    for (std::uint32_t y = piece.y; y < piece.y + piece.height; ++y) {
      std::fwrite(&picture.pixels[std::size_t{y} * picture.width + piece.x], sizeof(std::uint32_t),
                  piece.width, stdout);
    }
  }
  return std::fflush(stdout) == 0 && std::ferror(stdout) == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
