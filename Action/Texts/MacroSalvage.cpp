#include "Action/Texts/MacroSalvage.h"

#include <sstream>
#include <string_view>

#include <pugixml.hpp>

namespace {

constexpr std::string_view startTag = "<Item";
constexpr std::string_view endTag = "</Item>";
constexpr unsigned parseOptions =
    (pugi::parse_full | pugi::parse_ws_pcdata) & ~pugi::parse_wconv_attribute;

// Where the element that begins at `from` ends, exclusive; 0 if it does not end before the next
// one begins.
std::size_t endOf(std::string_view text, std::size_t from) {
  const std::size_t next = text.find(startTag, from + startTag.size());
  const std::size_t close = text.find('>', from);
  if (close == std::string_view::npos || close > next) {
    return 0;
  }
  if (text[close - 1] == '/') {
    return close + 1;
  }
  const std::size_t end = text.find(endTag, close);
  return end == std::string_view::npos || end > next ? 0 : end + endTag.size();
}

// What a user has commented out is no macro.
bool isInComment(std::string_view text, std::size_t at) {
  const std::size_t begin = text.substr(0, at).rfind("<!--");
  return begin != std::string_view::npos &&
         text.substr(begin, at - begin).find("-->") == std::string_view::npos;
}

}  // namespace

std::string macrosalvage::withMacrosOf(const std::string& shipped, const std::string& damaged) {
  pugi::xml_document document;
  if (!document.load_buffer(shipped.data(), shipped.size(), parseOptions)) {
    return shipped;
  }
  pugi::xml_node macros = document.document_element().child("MacroList");
  if (!macros) {
    return shipped;
  }
  const std::string_view text = damaged;
  bool hasMacros = false;
  for (std::size_t at = text.find(startTag); at != std::string_view::npos;
       at = text.find(startTag, at + startTag.size())) {
    const std::size_t end = endOf(text, at);
    pugi::xml_document element;
    // Only a macro has an id; the other entries came with the program.
    if (end != 0 && !isInComment(text, at) &&
        element.load_buffer(text.data() + at, end - at, parseOptions) &&
        element.document_element().attribute("MacroID")) {
      macros.append_copy(element.document_element());
      hasMacros = true;
    }
  }
  if (!hasMacros) {
    return shipped;
  }
  std::ostringstream whole;
  document.save(whole, "  ", pugi::format_indent, pugi::encoding_utf8);
  return whole.str();
}
