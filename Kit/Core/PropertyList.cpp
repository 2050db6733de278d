#include "Kit/Core/PropertyList.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <limits>

#include "Kit/Core/BinaryPropertyListGuard.h"

namespace {

constexpr std::string_view binaryMagic = "bplist00";

// libplist descends one call a level into an XML document, so that a deep one would end the
// process. Counting the opening tags bounds the depth from above, cheaply.
bool isXmlTooDeep(std::string_view bytes) {
  std::size_t depth = 0;
  for (std::size_t at = bytes.find('<'); at != std::string_view::npos;
       at = bytes.find('<', at + 1)) {
    const std::string_view rest = bytes.substr(at + 1);
    if (rest.starts_with("dict") || rest.starts_with("array")) {
      ++depth;
    } else if ((rest.starts_with("/dict") || rest.starts_with("/array")) && depth > 0) {
      --depth;
    }
    if (depth > propertylist::maximumDepth) {
      return true;
    }
  }
  return false;
}

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
  if (bytes.empty() || bytes.size() > std::numeric_limits<std::uint32_t>::max()) {
    return nullptr;
  }
  const auto length = static_cast<std::uint32_t>(bytes.size());
  plist_t node = nullptr;
  if (formOf(bytes) == Form::Binary) {
    if (!isBinaryPropertyListSafe(bytes)) {
      return nullptr;
    }
    plist_from_bin(bytes.data(), length, &node);
  } else if (!isXmlTooDeep(bytes)) {
    plist_from_xml(bytes.data(), length, &node);
  }
  return Handle(node);
}

std::string propertylist::serialise(plist_t node, Form form) {
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
