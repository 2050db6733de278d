#pragma once

#include <optional>
#include <string>

#include "Companion/Policy/WindowMessage.h"

// What the screen shows for a moment.
struct DisplayText {
  std::string summary;
  std::string body;

  bool operator==(const DisplayText&) const = default;
};

// Another slot (from 0), with the name of its profile and why it is there. An empty name: it holds
// none.
DisplayText slotDisplay(int slot, const std::string& profile, const std::string& explanation);
// Another DPI level, from 0.
DisplayText levelDisplay(int level);
// What the window says that it changed: LED mode, DPI level or report rate. Nothing for the rest; a
// slot needs its name.
std::optional<DisplayText> displayOf(const WindowMessage& message);
