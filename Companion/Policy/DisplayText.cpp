#include "Companion/Policy/DisplayText.h"

namespace {

constexpr std::int32_t settingChanged = 111;
constexpr std::int32_t rates = 4;

enum Setting : std::int32_t { Mode = 2, Level = 3, Rate = 4 };

}  // namespace

DisplayText slotDisplay(const SlotReason& reason, const std::string& profile, const Words& words) {
  const std::string number = std::to_string(reason.slot + 1);
  return {profile.empty() ? filledText(words("Slot %1"), {number})
                          : filledText(words("Slot %1: %2"), {number, profile}),
          slotreason::concernsProgram(reason) ? slotreason::sentenceOf(reason, words) : ""};
}

DisplayText levelDisplay(int level, const Words& words) {
  return {filledText(words("DPI level %1"), {std::to_string(level + 1)}), ""};
}

std::optional<DisplayText> displayOf(const WindowMessage& message, const Words& words) {
  if (message.code != settingChanged || message.values.size() < 2) {
    return std::nullopt;
  }
  const std::int32_t value = message.value(1);
  switch (message.value(0)) {
    case Mode:
      return DisplayText{words(value == 0 ? "LED mode: Normal" : "LED mode: Battle"), ""};
    case Level:
      return levelDisplay(value, words);
    case Rate:
      if (value < 0 || value >= rates) {
        return std::nullopt;
      }
      return DisplayText{filledText(words("Report rate: %1 Hz"), {std::to_string(125 << value)}),
                         ""};
    default:
      return std::nullopt;
  }
}
