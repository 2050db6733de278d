#include "Kit/Core/PropertyList.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>

#include <locale.h>

#include "Kit/Core/BinaryPropertyListGuard.h"
#include "Kit/Core/XmlPropertyListGuard.h"

namespace {

constexpr std::string_view binaryMagic = "bplist00";

// libplist formats numbers as the user's language does, in some cases with a comma, but files are
// the same in every language. While this lives, the calling thread uses the plain form.
class PlainNumbers {
 public:
  PlainNumbers()
      : m_plain(::newlocale(LC_NUMERIC_MASK, "C", static_cast<locale_t>(nullptr))),
        m_before(::uselocale(m_plain)) {}
  ~PlainNumbers() {
    ::uselocale(m_before);
    ::freelocale(m_plain);
  }
  PlainNumbers(const PlainNumbers&) = delete;
  PlainNumbers& operator=(const PlainNumbers&) = delete;

 private:
  locale_t m_plain;
  locale_t m_before;
};

std::string taken(char* bytes, std::uint32_t length) {
  std::string result(bytes != nullptr ? bytes : "", bytes != nullptr ? length : 0);
  // The library allocates with malloc.
  std::free(bytes);  // NOLINT(cppcoreguidelines-no-malloc)
  return result;
}

}  // namespace

propertylist::Form propertylist::formOf(std::string_view bytes) {
  return bytes.starts_with(binaryMagic) ? Form::Binary : Form::Xml;
}

propertylist::Handle propertylist::parse(std::string_view bytes) {
  if (bytes.size() > maximumSize) {
    return nullptr;
  }
  const PlainNumbers plainNumbers;
  plist_t node = nullptr;
  if (formOf(bytes) == Form::Binary) {
    if (!isBinaryPropertyListSafe(bytes)) {
      return nullptr;
    }
    plist_from_bin(bytes.data(), static_cast<std::uint32_t>(bytes.size()), &node);
  } else if (const auto plain = plainXmlPropertyList(bytes)) {
    // libplist trusts XML too much, so it gets only XML that was parsed and written again here.
    plist_from_xml(plain->data(), static_cast<std::uint32_t>(plain->size()), &node);
  }
  return Handle(node);
}

std::string propertylist::serialize(plist_t node, Form form) {
  const PlainNumbers plainNumbers;
  char* bytes = nullptr;
  std::uint32_t length = 0;
  if (form == Form::Binary) {
    plist_to_bin(node, &bytes, &length);
  } else {
    plist_to_xml(node, &bytes, &length);
  }
  return taken(bytes, length);
}

bool propertylist::isKind(plist_t node, plist_type kind) {
  return node != nullptr && plist_get_node_type(node) == kind;
}

std::string propertylist::stringOf(plist_t node) {
  if (!isKind(node, PLIST_STRING)) {
    return {};
  }
  std::uint64_t length = 0;
  const char* text = plist_get_string_ptr(node, &length);
  return text != nullptr ? std::string(text, length) : std::string();
}

std::int64_t propertylist::integerOf(plist_t node) {
  if (isKind(node, PLIST_BOOLEAN)) {
    return boolOf(node) ? 1 : 0;
  }
  if (isKind(node, PLIST_UINT)) {
    std::uint64_t value = 0;
    plist_get_uint_val(node, &value);
    return static_cast<std::int64_t>(value);
  }
  if (isKind(node, PLIST_REAL)) {
    double value = 0;
    plist_get_real_val(node, &value);
    constexpr double limit = 9.0e18;
    return std::isnan(value) ? 0 : static_cast<std::int64_t>(std::clamp(value, -limit, limit));
  }
  return 0;
}

bool propertylist::boolOf(plist_t node) {
  if (isKind(node, PLIST_BOOLEAN)) {
    std::uint8_t value = 0;
    plist_get_bool_val(node, &value);
    return value != 0;
  }
  return integerOf(node) != 0;
}
