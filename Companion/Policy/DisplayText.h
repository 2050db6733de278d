#pragma once

#include <optional>
#include <string>

#include "Action/Service/SlotReason.h"
#include "Action/Texts/FilledText.h"
#include "Companion/Policy/WindowMessage.h"

// What the screen shows for a moment.
struct DisplayText {
  std::string summary;
  std::string body;

  bool operator==(const DisplayText&) const = default;
};

// The mouse has another slot, for that reason. `profile` is the name of what the slot holds; empty
// for none.
DisplayText slotDisplay(const SlotReason& reason, const std::string& profile, const Words& words);
// Another DPI level, from 0.
DisplayText levelDisplay(int level, const Words& words);
// What the window says that it changed: LED mode, DPI level or report rate. Nothing for the rest; a
// slot needs its name.
std::optional<DisplayText> displayOf(const WindowMessage& message, const Words& words);
