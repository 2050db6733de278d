#pragma once

#include <string>

// Saves the macros of a catalogue that is no XML any more, because a disk was full or a hand
// slipped.
namespace macrosalvage {

// The catalogue `shipped` with every macro that `damaged` still holds whole, from its start tag to
// its end tag. `shipped` itself if there is none, or if it has no place for macros.
std::string withMacrosOf(const std::string& shipped, const std::string& damaged);

}  // namespace macrosalvage
