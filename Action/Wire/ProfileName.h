#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "Action/Wire/ReportLayout.h"

// The mouse's form of a slot's name.
namespace NerinAction {

using NameReport = std::array<std::uint8_t, reportlayout::nameSize>;

// The report that writes a name, cut to 65 characters. No value for a name that is not ASCII,
// because the mouse cannot hold it.
std::optional<NameReport> encodeNameReport(std::uint8_t slot, const std::string& name);
// The name in the mouse's answer; no value when it is not ASCII.
std::optional<std::string> decodeNameReport(const NameReport& report);

}  // namespace NerinAction
