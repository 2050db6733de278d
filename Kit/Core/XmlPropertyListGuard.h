#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace propertylist {

// The same property list in the simplest XML: no comments, sections, attributes, document type or
// references other than those for "<", ">" and "&". Nothing if it is not a well-formed property
// list or is deeper than the binary form may be.
std::optional<std::string> plainXmlPropertyList(std::string_view bytes);

}  // namespace propertylist
