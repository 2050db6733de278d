#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <plist/plist.h>

// Property lists, binary and XML, through libplist. A handle owns its tree.
namespace propertylist {

struct Free {
  void operator()(void* node) const { plist_free(node); }
};
using Handle = std::unique_ptr<void, Free>;

enum class Form { Xml, Binary };

// The maximum size of a file, in bytes.
inline constexpr std::size_t maximumSize = std::size_t{16} << 20U;

// The tree that the bytes describe. Null if they are not a property list, if a node contains
// itself, or if the list exceeds the limits of BinaryPropertyListGuard.h: that is an attack and not
// a file of ours. All texts of the tree are UTF-8.
Handle parse(std::string_view bytes);

// The form of bytes that parse() accepts.
Form formOf(std::string_view bytes);

// The bytes of a tree whose texts are UTF-8; empty if libplist cannot write it.
std::string serialize(plist_t node, Form form);

// The node's text, or an empty one for a node of another kind.
std::string stringOf(plist_t node);
// Integers, reals and booleans as a number; anything else is 0.
std::int64_t integerOf(plist_t node);
// A boolean's value; a number is true when it is not 0; anything else is false.
bool boolOf(plist_t node);
bool isKind(plist_t node, plist_type kind);

}  // namespace propertylist
