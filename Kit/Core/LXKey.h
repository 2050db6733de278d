#pragma once

#include <cstdint>
#include <string>

// Keys by their Mac virtual key code, which profiles and macros use to name them.
class LXKey {
 public:
  // The display name of a key; empty for a code without a key.
  static std::string getStrByKeycode(std::int32_t keycode);
};
