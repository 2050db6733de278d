#pragma once

#include <cstddef>
#include <string_view>

namespace propertylist {

inline constexpr std::size_t maximumDepth = 256;
// Of the unfolded tree: its nodes, each counted as 32 bytes more than its own text or data.
inline constexpr std::size_t maximumNodes = 1'000'000;
inline constexpr std::size_t nodeWeight = 32;
inline constexpr std::size_t maximumWeight = maximumNodes * nodeWeight;

// Whether a binary property list can be unfolded into a tree: its objects are of a kind that is
// known, lie inside the file and do not contain themselves, and the tree stays within the limits
// above. In the file an object may be referred to many times, so that a few bytes can stand for a
// tree of any size.
bool isBinaryPropertyListSafe(std::string_view bytes);

}  // namespace propertylist
