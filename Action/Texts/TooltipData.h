#pragma once

#include <cstdint>
#include <optional>
#include <string>

// One text in one language.
struct TooltipData {
  std::optional<std::string> name;    // the text's key
  std::optional<std::string> text;    // without its closing period
  std::int32_t viewId = 0;            // the view of the control
  std::optional<std::string> btnTag;  // the control's tag within that view
};
