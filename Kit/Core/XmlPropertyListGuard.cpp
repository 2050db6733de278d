#include "Kit/Core/XmlPropertyListGuard.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <system_error>

#include <pugixml.hpp>

#include "Kit/Core/BinaryPropertyListGuard.h"
#include "Kit/Core/Utf8.h"

namespace {

constexpr std::string_view blanks = " \t\r\n";

// Comments and sections may split a text into several nodes.
std::string textOf(const pugi::xml_node& element) {
  std::string text;
  for (const pugi::xml_node& child : element) {
    text += child.value();
  }
  return text;
}

std::string withoutBlanks(std::string text) {
  std::erase_if(text, [](char byte) { return blanks.find(byte) != std::string_view::npos; });
  return text;
}

std::string escaped(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (const char byte : text) {
    switch (byte) {
      case '<':
        result += "&lt;";
        break;
      case '>':
        result += "&gt;";
        break;
      case '&':
        result += "&amp;";
        break;
      default:
        result += byte;
    }
  }
  return result;
}

bool isInteger(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) {
    text.remove_prefix(1);
  }
  int base = 10;
  if (text.starts_with("0x") || text.starts_with("0X")) {
    text.remove_prefix(2);
    base = 16;
  }
  std::uint64_t magnitude = 0;
  const auto [end, error] =
      std::from_chars(text.data(), text.data() + text.size(), magnitude, base);
  constexpr std::uint64_t magnitudeOfMinimum = std::uint64_t{1} << 63U;
  return error == std::errc() && end == text.data() + text.size() &&
         (!isNegative || magnitude <= magnitudeOfMinimum);
}

bool isReal(std::string_view text) {
  if (text.starts_with('+')) {
    text.remove_prefix(1);
  }
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size() && std::isfinite(value);
}

bool isOnlyOf(std::string_view text, std::string_view allowed) {
  return text.find_first_not_of(allowed) == std::string_view::npos;
}

class Writer {
 public:
  bool value(const pugi::xml_node& element, std::size_t depth) {
    const std::string_view kind = element.name();
    if (kind == "dict" || kind == "array") {
      return depth < propertylist::maximumDepth && container(element, kind == "dict", depth + 1);
    }
    if (hasElements(element)) {
      return false;
    }
    const std::string text = textOf(element);
    if (kind == "string" || kind == "key") {
      return utf8::isValid(text) && put(kind, escaped(text));
    }
    const std::string word = withoutBlanks(text);
    if (kind == "true" || kind == "false") {
      return word.empty() && put(kind, word);
    }
    return (kind == "integer" && isInteger(word) && put(kind, word)) ||
           (kind == "real" && isReal(word) && put(kind, word)) ||
           (kind == "date" && isOnlyOf(word, "0123456789-:TZ") && put(kind, word)) ||
           (kind == "data" &&
            isOnlyOf(word, "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/=") &&
            put(kind, word));
  }

  std::string take() { return std::move(m_text); }

 private:
  static bool hasElements(const pugi::xml_node& element) {
    return std::any_of(element.begin(), element.end(), [](const pugi::xml_node& child) {
      return child.type() == pugi::node_element;
    });
  }

  bool put(std::string_view kind, std::string_view text) {
    m_text += '<';
    m_text += kind;
    m_text += '>';
    m_text += text;
    m_text += "</";
    m_text += kind;
    m_text += '>';
    return true;
  }

  bool container(const pugi::xml_node& element, bool isDictionary, std::size_t depth) {
    m_text += isDictionary ? "<dict>" : "<array>";
    bool isKeyNext = isDictionary;
    for (const pugi::xml_node& child : element) {
      if (child.type() != pugi::node_element) {
        if (!isOnlyOf(child.value(), blanks)) {
          return false;
        }
        continue;
      }
      const bool isKey = std::string_view(child.name()) == "key";
      if (isKey != isKeyNext || !value(child, depth)) {
        return false;
      }
      isKeyNext = isDictionary && !isKeyNext;
    }
    m_text += isDictionary ? "</dict>" : "</array>";
    return isKeyNext == isDictionary;
  }

  std::string m_text;
};

}  // namespace

std::optional<std::string> propertylist::plainXmlPropertyList(std::string_view bytes) {
  pugi::xml_document document;
  const auto result = document.load_buffer(
      bytes.data(), bytes.size(),
      pugi::parse_cdata | pugi::parse_escapes | pugi::parse_eol | pugi::parse_ws_pcdata);
  const pugi::xml_node list = document.document_element();
  const auto isElement = [](const pugi::xml_node& node) {
    return node.type() == pugi::node_element;
  };
  if (!result || std::string_view(list.name()) != "plist" ||
      std::count_if(list.begin(), list.end(), isElement) != 1) {
    return std::nullopt;
  }
  const pugi::xml_node root = *std::find_if(list.begin(), list.end(), isElement);
  Writer writer;
  if (std::string_view(root.name()) == "key" || !writer.value(root, 0)) {
    return std::nullopt;
  }
  return R"(<plist version="1.0">)" + writer.take() + "</plist>";
}
