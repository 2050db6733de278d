#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"

namespace pugi {
class xml_node;
}

// Several programs write the macros into one file. What another one changed there since this one
// read or wrote it is taken in before a save.
namespace macromerge {

// A macro as this program last saw it in the file.
struct KnownMacro {
  std::shared_ptr<MacroInfo> macro;
  // The macro itself may have another one meanwhile.
  std::int32_t id = 0;
  std::string text;
};
using KnownMacros = std::vector<KnownMacro>;

// The macros are as the file has them now.
void remember();
// Takes in what others did to the section: their new macros join the catalogue, their deletions
// count, and of a macro that both changed both are kept, theirs under a free name. Answers whether
// the catalogue changed.
bool takeIn(const pugi::xml_node& section);

}  // namespace macromerge
