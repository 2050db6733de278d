#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Kit/Core/LXNotificationCenter.h"

// What the window or nerinctl says in a "NerinSettingChange".
struct WindowMessage {
  std::int32_t code = 0;
  // In the order of their numbers; a flag is 0 or 1.
  std::vector<std::int32_t> values;

  // The value at that place, from 0; 0 if it is missing.
  std::int32_t value(std::size_t place) const { return place < values.size() ? values[place] : 0; }
  // The slot that the message says was chosen, 0..9.
  std::optional<int> chosenSlot() const;
};

// Nothing for what is no such message.
std::optional<WindowMessage> windowMessageOf(const std::string& object, const LXUserInfo& userInfo);
