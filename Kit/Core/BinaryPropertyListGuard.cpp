#include "Kit/Core/BinaryPropertyListGuard.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

#include "Kit/Core/Utf8.h"

namespace {

constexpr std::size_t headerSize = 8;
constexpr std::size_t trailerSize = 32;

// The high four bits of an object's first byte.
enum Marker : unsigned {
  Simple = 0x0,
  Integer = 0x1,
  Real = 0x2,
  Date = 0x3,
  Data = 0x4,
  Ascii = 0x5,
  Utf16 = 0x6,
  Uid = 0x8,
  Array = 0xA,
  Dictionary = 0xD
};

// An object as stored in the file.
struct Object {
  std::size_t begin = 0;   // after the marker and the count
  std::size_t length = 0;  // of its own text or data
  std::size_t references = 0;
  std::size_t keys = 0;  // how many of the first references must be texts
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

  // Nothing if the object lies outside the file or is of an unknown kind.
  std::optional<Object> objectAt(std::size_t index) const {
    const auto offset = numberAt(m_table + index * m_offsetSize, m_offsetSize);
    if (offset < headerSize || offset >= m_table) {
      return std::nullopt;
    }
    const unsigned marker = byteAt(offset) >> 4U;
    const unsigned low = byteAt(offset) & 0x0FU;
    switch (marker) {
      case Simple:
        return low == 8 || low == 9 ? within(offset + 1, 0, 1) : std::nullopt;
      case Integer:
        return low <= 4 ? within(offset + 1, 1, std::size_t{1} << low) : std::nullopt;
      case Real:
        return low == 2 || low == 3 ? within(offset + 1, 1, std::size_t{1} << low) : std::nullopt;
      case Date:
        return low == 3 ? within(offset + 1, 1, 8) : std::nullopt;
      case Uid:
        return low < 4 ? within(offset + 1, 1, low + 1) : std::nullopt;
      default:
        return countedAt(offset, marker, low);
    }
  }

  // Whether the object can be the key of a dictionary.
  bool isText(std::size_t index) const {
    const auto offset = numberAt(m_table + index * m_offsetSize, m_offsetSize);
    const unsigned marker = offset < m_table ? byteAt(offset) >> 4U : 0;
    return marker == Ascii || marker == Utf16;
  }

  std::size_t reference(const Object& object, std::size_t index) const {
    return numberAt(object.begin + index * m_referenceSize, m_referenceSize);
  }

 private:
  // An object whose content is `count` times `size` bytes; nothing if that exceeds the file.
  std::optional<Object> within(std::size_t begin, std::size_t count, std::size_t size) const {
    if (begin > m_table || count > (m_table - begin) / size) {
      return std::nullopt;
    }
    return Object{begin, count * size, 0, 0};
  }

  // The kinds of object that have a count.
  std::optional<Object> countedAt(std::size_t offset, unsigned marker, unsigned low) const {
    std::size_t count = low;
    std::size_t begin = offset + 1;
    if (low == 0x0F) {
      // A larger count follows as a separate integer object.
      const std::size_t width = std::size_t{1} << (byteAt(begin) & 0x0FU);
      if (byteAt(begin) >> 4U != Integer || width > 8 || begin + 1 + width > m_table) {
        return std::nullopt;
      }
      count = numberAt(begin + 1, width);
      begin += 1 + width;
    }
    std::optional<Object> object;
    switch (marker) {
      case Data:
        return within(begin, count, 1);
      case Ascii:
        object = within(begin, count, 1);
        return object && isPlainAscii(*object) ? object : std::nullopt;
      case Utf16:
        object = within(begin, count, 2);
        return object && isWellFormedUtf16(*object) ? object : std::nullopt;
      case Array:
        object = within(begin, count, m_referenceSize);
        return object ? std::optional(Object{begin, 0, count, 0}) : std::nullopt;
      case Dictionary:
        object = within(begin, count, 2 * m_referenceSize);
        return object ? std::optional(Object{begin, 0, 2 * count, count}) : std::nullopt;
      default:
        return std::nullopt;
    }
  }

  // libplist ends texts with a NUL, so none may contain one.
  bool isPlainAscii(const Object& text) const {
    const std::string_view bytes = m_bytes.substr(text.begin, text.length);
    return utf8::isAscii(bytes) && bytes.find('\0') == std::string_view::npos;
  }

  bool isWellFormedUtf16(const Object& text) const {
    bool isPairOpen = false;
    for (std::size_t at = 0; at < text.length; at += 2) {
      const auto unit = numberAt(text.begin + at, 2);
      const bool isSecond = unit >= 0xDC00 && unit <= 0xDFFF;
      if (unit == 0 || isSecond != isPairOpen) {
        return false;
      }
      isPairOpen = unit >= 0xD800 && unit <= 0xDBFF;
    }
    return !isPairOpen;
  }

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

// The size of an object once its references are expanded.
struct Expanded {
  enum class State : std::uint8_t { Unknown, Open, Known } state = State::Unknown;
  std::uint32_t depth = 0;
  std::size_t weight = 0;
};

struct Visit {
  std::size_t index = 0;
  Object object;
  std::size_t next = 0;
};

}  // namespace

bool propertylist::isBinaryPropertyListSafe(std::string_view bytes) {
  Document document(bytes);
  if (!document.readTrailer()) {
    return false;
  }
  std::vector<Expanded> known(document.objects());
  std::vector<Visit> path;
  const auto enter = [&](std::size_t index) {
    const auto object = document.objectAt(index);
    if (!object || path.size() >= maximumDepth) {
      return false;
    }
    known[index] = {Expanded::State::Open, 1, nodeWeight + object->length};
    path.push_back({index, *object, 0});
    return true;
  };
  if (!enter(document.root())) {
    return false;
  }
  while (!path.empty()) {
    Visit& visit = path.back();
    if (visit.next == visit.object.references) {
      known[visit.index].state = Expanded::State::Known;
      path.pop_back();
      continue;
    }
    const std::size_t child = document.reference(visit.object, visit.next);
    if (child >= document.objects() || known[child].state == Expanded::State::Open ||
        (visit.next < visit.object.keys && !document.isText(child))) {
      return false;
    }
    if (known[child].state == Expanded::State::Unknown) {
      if (!enter(child)) {
        return false;
      }
      continue;
    }
    Expanded& parent = known[visit.index];
    parent.weight += known[child].weight;
    parent.depth = std::max(parent.depth, known[child].depth + 1);
    if (parent.weight > maximumWeight || parent.depth > maximumDepth) {
      return false;
    }
    ++visit.next;
  }
  return true;
}
