#pragma once

#include <cstddef>
#include <string_view>

namespace propertylist {

inline constexpr std::size_t maximumDepth = 256;
// Limits of the expanded tree. Each node counts as 32 bytes plus its own text or data.
inline constexpr std::size_t maximumNodes = 1'000'000;
inline constexpr std::size_t nodeWeight = 32;
inline constexpr std::size_t maximumWeight = maximumNodes * nodeWeight;

// Whether a binary property list can be expanded into a tree: its objects are of a known kind, lie
// inside the file and do not contain themselves, and the tree stays within the limits above. The
// file may refer to an object many times, so a few bytes can stand for a tree of any size.
bool isBinaryPropertyListSafe(std::string_view bytes);

}  // namespace propertylist
