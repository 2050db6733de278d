#pragma once

#include <string>
#include <string_view>

#include "Kit/Core/LXCoding.h"

// Keyed archives as Cocoa writes them: a property list with "$archiver", "$version", "$top" and
// "$objects", in which objects refer to each other by index.
namespace keyedarchive {

// The archive of one root object, as a binary property list.
std::string archive(const LXCoding& root);

// Fills `root` from the root object of a binary or XML archive. False if the bytes are not an
// archive of an object of that class; `root` may then be partly filled and must be discarded.
bool unarchive(std::string_view bytes, LXCoding& root);

}  // namespace keyedarchive
