#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileImage.h"
#include "Action/Wire/ProfileName.h"

namespace NerinAction {

// All that the mouse holds of a slot, in its own bytes. A record cannot hold each of them.
struct SlotReports {
  NameReport name{};
  ProfileImage image{};
  // By button index (0..15), as they are read: the first byte says that there is a macro.
  std::map<int, MacroReport> macros;

  bool operator==(const SlotReports&) const = default;
};

// The reports as the bytes of a file: "NRS1", the name, the image, the macros in the order of their
// buttons, and a byte that makes the sum of all bytes 0.
std::string encodeSlotFile(const SlotReports& reports);
// Nothing unless the bytes are whole: the right size, only reports of that slot (0..9), every
// checksum right.
std::optional<SlotReports> decodeSlotFile(std::string_view bytes, std::uint8_t slot);

}  // namespace NerinAction
