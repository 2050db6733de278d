#pragma once

#include <optional>
#include <string>
#include <vector>

#include "Action/Texts/TooltipData.h"

struct LanData {
  std::optional<std::string> name;    // the name in "Tooltip.xml": "US", "German"
  std::vector<TooltipData> tooltips;  // empty until the language is selected
  bool isRead = false;
};
