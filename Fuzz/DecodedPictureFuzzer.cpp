#include <cstring>
#include <vector>

#include "Fuzz/FuzzInput.h"
#include "Kit/Widgets/DecodedPicture.h"

// Any bytes as a picture that lies on the disk as its pixels.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  // Aligned as a mapped file is.
  std::vector<std::uint32_t> memory(size / sizeof(std::uint32_t) + 1);
  std::memcpy(memory.data(), data, size);
  const auto* bytes = reinterpret_cast<const uchar*>(memory.data());
  const auto picture = DecodedPicture::of({bytes, size});
  if (!picture) {
    return 0;
  }
  const QRect whole(QPoint(), picture->size);
  for (const DecodedPicture::Piece& piece : picture->pieces) {
    const auto count = static_cast<std::size_t>(piece.rect.width()) *
                       static_cast<std::size_t>(piece.rect.height());
    fuzz::require(whole.contains(piece.rect) && piece.pixels >= bytes &&
                  piece.pixels + count * sizeof(std::uint32_t) <= bytes + size);
  }
  const QImage image = picture->image();
  fuzz::require(image.isNull() || image.size() == picture->size);
  return 0;
}
