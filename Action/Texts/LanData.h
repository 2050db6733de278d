#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Action/Texts/TooltipData.h"

// One language.
struct LanData {
  std::optional<std::string> name;  // as "Tooltip.xml" calls it: "US", "German"
  std::vector<TooltipData> tooltips;
};
