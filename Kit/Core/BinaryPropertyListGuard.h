#pragma once

#include <cstddef>
#include <string_view>

namespace propertylist {

inline constexpr std::size_t maximumDepth = 256;
inline constexpr std::size_t maximumNodes = 4'000'000;

// Whether a binary property list can be unfolded into a tree: its objects lie inside the file, do
// not contain themselves, and the tree stays within the limits above. In the file an object may be
// referred to many times, so that a few bytes can stand for a tree of any size.
bool isBinaryPropertyListSafe(std::string_view bytes);

}  // namespace propertylist
