#include "Kit/Widgets/DecodedPicture.h"

#include <QFile>
#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <utility>

namespace {

constexpr std::uint32_t magic = 0x3158504E;
constexpr std::uint32_t largestEdge = 8192;
constexpr std::size_t pixelSize = sizeof(QRgb);

// Takes numbers from the front of the bytes.
class Numbers {
 public:
  explicit Numbers(std::span<const uchar> bytes) : m_rest(bytes) {}

  template <std::size_t Count>
  std::optional<std::array<std::uint32_t, Count>> take() {
    std::array<std::uint32_t, Count> numbers;
    if (m_rest.size() < sizeof(numbers)) {
      return std::nullopt;
    }
    std::memcpy(numbers.data(), m_rest.data(), sizeof(numbers));
    m_rest = m_rest.subspan(sizeof(numbers));
    return numbers;
  }
  std::span<const uchar> rest() const { return m_rest; }

 private:
  std::span<const uchar> m_rest;
};

bool isEdge(std::uint32_t length) {
  return length >= 1 && length <= largestEdge;
}

QRect rectOf(const std::array<std::uint32_t, 4>& numbers) {
  const auto& [x, y, width, height] = numbers;
  if (x >= largestEdge || y >= largestEdge || !isEdge(width) || !isEdge(height)) {
    return {};
  }
  return {static_cast<int>(x), static_cast<int>(y), static_cast<int>(width),
          static_cast<int>(height)};
}

std::size_t sizeOf(const QRect& rect) {
  return static_cast<std::size_t>(rect.width()) * static_cast<std::size_t>(rect.height()) *
         pixelSize;
}

qsizetype rowSize(const QSize& size) {
  return qsizetype{size.width()} * static_cast<qsizetype>(pixelSize);
}

}  // namespace

std::optional<DecodedPicture> DecodedPicture::of(std::span<const uchar> bytes) {
  Numbers numbers(bytes);
  const auto head = numbers.take<5>();
  if (!head) {
    return std::nullopt;
  }
  const auto& [name, width, height, hasAlpha, count] = *head;
  if (name != magic || !isEdge(width) || !isEdge(height) || hasAlpha > 1) {
    return std::nullopt;
  }
  DecodedPicture picture{
      .size = QSize(static_cast<int>(width), static_cast<int>(height)),
      .format = hasAlpha != 0 ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32,
      .pieces = {}};
  const QRect whole(QPoint(), picture.size);
  picture.pieces.reserve(std::min<std::size_t>(count, bytes.size() / sizeof(QRect)));
  for (std::uint32_t i = 0; i < count; ++i) {
    const auto place = numbers.take<4>();
    const QRect rect = place ? rectOf(*place) : QRect();
    if (rect.isEmpty() || !whole.contains(rect)) {
      return std::nullopt;
    }
    picture.pieces.push_back({rect, nullptr});
  }
  std::span<const uchar> pixels = numbers.rest();
  for (Piece& piece : picture.pieces) {
    const std::size_t size = sizeOf(piece.rect);
    if (pixels.size() < size) {
      return std::nullopt;
    }
    piece.pixels = pixels.data();
    pixels = pixels.subspan(size);
  }
  const bool isCovered = picture.pieces.size() == 1 && picture.pieces.front().rect == whole;
  if (!pixels.empty() || (hasAlpha == 0 && !isCovered)) {
    return std::nullopt;
  }
  return picture;
}

QImage DecodedPicture::image() const {
  // What lies between the pieces is never touched, so that it takes no memory.
  void* memory =
      std::calloc(static_cast<std::size_t>(size.height()), static_cast<std::size_t>(rowSize(size)));
  if (memory == nullptr) {
    return {};
  }
  QImage image(static_cast<uchar*>(memory), size.width(), size.height(), rowSize(size), format,
               std::free, memory);
  for (const Piece& piece : pieces) {
    const qsizetype row = rowSize(piece.rect.size());
    for (int y = 0; y < piece.rect.height(); ++y) {
      std::memcpy(image.scanLine(piece.rect.y() + y) + piece.rect.x() * qsizetype{pixelSize},
                  piece.pixels + y * row, static_cast<std::size_t>(row));
    }
  }
  return image;
}

QImage readDecodedPicture(const QString& path) {
  auto file = std::make_unique<QFile>(path);
  if (!file->open(QIODevice::ReadOnly)) {
    return {};
  }
  const qint64 size = file->size();
  uchar* bytes = file->map(0, size, QFileDevice::MapPrivateOption);
  if (bytes == nullptr) {
    return {};
  }
  const auto picture = DecodedPicture::of({bytes, static_cast<std::size_t>(size)});
  if (!picture) {
    return {};
  }
  if (picture->pieces.size() != 1 || picture->pieces.front().rect.size() != picture->size) {
    return picture->image();
  }
  // The mapping lives as long as its file object.
  return {bytes + (picture->pieces.front().pixels - bytes),
          picture->size.width(),
          picture->size.height(),
          rowSize(picture->size),
          picture->format,
          [](void* mapped) { delete static_cast<QFile*>(mapped); },
          file.release()};
}
