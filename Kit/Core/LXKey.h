#pragma once

#include <cstdint>
#include <string>

// Keys by their Mac virtual key code, which is how profiles and macros name them.
class LXKey {
 public:
  // The name shown for a key; empty for a code that no key has.
  static std::string getStrByKeycode(std::int32_t keycode);
};
