#include "Companion/Policy/WindowMessage.h"

#include <charconv>
#include <variant>

namespace {

constexpr std::int32_t settingChanged = 111;
constexpr std::int32_t slotSetting = 1;
constexpr std::int32_t slotCount = 10;

}  // namespace

std::optional<int> WindowMessage::chosenSlot() const {
  const std::int32_t slot = value(1);
  const bool isChoice = code == settingChanged && values.size() >= 2 && value(0) == slotSetting;
  return isChoice && slot >= 0 && slot < slotCount ? std::optional<int>(slot) : std::nullopt;
}

std::optional<WindowMessage> windowMessageOf(const std::string& object,
                                             const LXUserInfo& userInfo) {
  WindowMessage message;
  const char* end = object.data() + object.size();
  const auto parsed = std::from_chars(object.data(), end, message.code);
  if (parsed.ec != std::errc() || parsed.ptr != end) {
    return std::nullopt;
  }
  for (int number = 1;; ++number) {
    const auto found = userInfo.find("value" + std::to_string(number));
    if (found == userInfo.end()) {
      return message;
    }
    message.values.push_back(
        std::visit([](auto value) { return static_cast<std::int32_t>(value); }, found->second));
  }
}
