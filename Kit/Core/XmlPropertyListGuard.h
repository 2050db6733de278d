#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace propertylist {

// The same property list in the plainest XML there is: no comments, sections, attributes, document
// type or references other than those for "<", ">" and "&". Nothing for what is no well-formed
// property list, or a deeper one than the binary form may be.
std::optional<std::string> plainXmlPropertyList(std::string_view bytes);

}  // namespace propertylist
