#include "Kit/Core/BinaryPropertyListGuard.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

// The high four bits of an object's first byte.
enum Marker : unsigned { Integer = 0x1, Array = 0xA, Set = 0xC, Dictionary = 0xD };

// The objects that one object refers to.
struct References {
  std::size_t begin = 0;  // of the first reference, from the start of the file
  std::size_t count = 0;
};

class Document {
 public:
  explicit Document(std::string_view bytes) : m_bytes(bytes) {}

  bool readTrailer() {
    if (m_bytes.size() < headerSize + trailerSize) {
      return false;
    }
    const std::size_t trailer = m_bytes.size() - trailerSize;
    m_offsetSize = byteAt(trailer + 6);
    m_referenceSize = byteAt(trailer + 7);
    const auto objects = numberAt(trailer + 8, 8);
    const auto root = numberAt(trailer + 16, 8);
    const auto table = numberAt(trailer + 24, 8);
    if (m_offsetSize < 1 || m_offsetSize > 8 || m_referenceSize < 1 || m_referenceSize > 8 ||
        table > trailer || objects > (trailer - table) / m_offsetSize || root >= objects) {
      return false;
    }
    m_objects = objects;
    m_root = root;
    m_table = table;
    return true;
  }

  std::size_t objects() const { return m_objects; }
  std::size_t root() const { return m_root; }

  // Nothing when the object does not lie inside the file.
  std::optional<References> referencesOf(std::size_t object) const {
    const auto offset = numberAt(m_table + object * m_offsetSize, m_offsetSize);
    if (offset < headerSize || offset >= m_table) {
      return std::nullopt;
    }
    const unsigned kind = byteAt(offset) >> 4U;
    if (kind != Array && kind != Set && kind != Dictionary) {
      return References{};
    }
    std::size_t count = byteAt(offset) & 0x0FU;
    std::size_t begin = offset + 1;
    if (count == 0x0F) {
      // A longer count follows as an integer object of its own.
      const std::size_t width = std::size_t{1} << (byteAt(begin) & 0x0FU);
      if (byteAt(begin) >> 4U != Integer || width > 8 || begin + 1 + width > m_table) {
        return std::nullopt;
      }
      count = numberAt(begin + 1, width);
      begin += 1 + width;
    }
    const std::size_t perEntry = kind == Dictionary ? 2 : 1;
    if (begin > m_table || count > (m_table - begin) / (perEntry * m_referenceSize)) {
      return std::nullopt;
    }
    return References{begin, count * perEntry};
  }

  std::size_t reference(const References& references, std::size_t index) const {
    return numberAt(references.begin + index * m_referenceSize, m_referenceSize);
  }

 private:
  unsigned byteAt(std::size_t at) const { return static_cast<unsigned char>(m_bytes[at]); }

  std::size_t numberAt(std::size_t at, std::size_t width) const {
    std::uint64_t value = 0;
    for (std::size_t i = 0; i < width; ++i) {
      value = value << 8U | byteAt(at + i);
    }
    return value;
  }

  std::string_view m_bytes;
  std::size_t m_offsetSize = 0;
  std::size_t m_referenceSize = 0;
  std::size_t m_objects = 0;
  std::size_t m_root = 0;
  std::size_t m_table = 0;
};

// What an object is worth once its references are unfolded.
struct Weight {
  enum class State : std::uint8_t { Unknown, Open, Known } state = State::Unknown;
  std::uint32_t nodes = 0;
  std::uint32_t depth = 0;
};

struct Visit {
  std::size_t object = 0;
  References references;
  std::size_t next = 0;
};

}  // namespace

bool propertylist::isBinaryPropertyListSafe(std::string_view bytes) {
  Document document(bytes);
  if (!document.readTrailer()) {
    return false;
  }
  std::vector<Weight> weights(document.objects());
  std::vector<Visit> path;
  const auto enter = [&](std::size_t object) {
    const auto references = document.referencesOf(object);
    if (!references || path.size() >= maximumDepth) {
      return false;
    }
    weights[object] = {Weight::State::Open, 1, 1};
    path.push_back({object, *references, 0});
    return true;
  };
  if (!enter(document.root())) {
    return false;
  }
  while (!path.empty()) {
    Visit& visit = path.back();
    if (visit.next == visit.references.count) {
      weights[visit.object].state = Weight::State::Known;
      path.pop_back();
      continue;
    }
    const std::size_t child = document.reference(visit.references, visit.next);
    if (child >= document.objects() || weights[child].state == Weight::State::Open) {
      return false;
    }
    if (weights[child].state == Weight::State::Unknown) {
      if (!enter(child)) {
        return false;
      }
      continue;
    }
    Weight& weight = weights[visit.object];
    weight.nodes += weights[child].nodes;
    weight.depth = std::max(weight.depth, weights[child].depth + 1);
    if (weight.nodes > maximumNodes || weight.depth > maximumDepth) {
      return false;
    }
    ++visit.next;
  }
  return true;
}
