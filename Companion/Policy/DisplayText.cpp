#include "Companion/Policy/DisplayText.h"

namespace {

constexpr std::int32_t settingChanged = 111;
constexpr std::int32_t rates = 4;

enum Setting : std::int32_t { Mode = 2, Level = 3, Rate = 4 };

}  // namespace

DisplayText slotDisplay(int slot, const std::string& profile, const std::string& explanation) {
  const std::string number = "Slot " + std::to_string(slot + 1);
  // The sentence names the slot itself.
  return profile.empty() ? DisplayText{number, explanation}
                         : DisplayText{number + ": " + profile, explanation};
}

DisplayText levelDisplay(int level) {
  return {"DPI level " + std::to_string(level + 1), ""};
}

std::optional<DisplayText> displayOf(const WindowMessage& message) {
  if (message.code != settingChanged || message.values.size() < 2) {
    return std::nullopt;
  }
  const std::int32_t value = message.value(1);
  switch (message.value(0)) {
    case Mode:
      return DisplayText{value == 0 ? "LED mode: Normal" : "LED mode: Battle", ""};
    case Level:
      return levelDisplay(value);
    case Rate:
      if (value < 0 || value >= rates) {
        return std::nullopt;
      }
      return DisplayText{"Report rate: " + std::to_string(125 << value) + " Hz", ""};
    default:
      return std::nullopt;
  }
}
