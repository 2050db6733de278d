#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "Action/Wire/ReportLayout.h"

// The name of a slot, as the mouse keeps it.
namespace NerinAction {

using NameReport = std::array<std::uint8_t, reportlayout::nameSize>;

// The report that writes a name, cut to the 65 characters that the mouse keeps. Nothing for a name
// that is not ASCII: the mouse cannot hold it.
std::optional<NameReport> encodeNameReport(std::uint8_t slot, const std::string& name);
// The name in an answer of the mouse; nothing when it is not ASCII.
std::optional<std::string> decodeNameReport(const NameReport& report);

}  // namespace NerinAction
