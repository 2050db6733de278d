#include <charconv>

#include "VirtualMouse/VirtualMouse.h"

std::optional<MouseScenario> MouseScenario::parse(std::string_view text) {
  struct Name {
    std::string_view text;
    Kind kind;
  };
  constexpr Name names[] = {{"healthy", Kind::Healthy},
                            {"absent", Kind::Absent},
                            {"slow", Kind::Slow},
                            {"short", Kind::AnswersShort},
                            {"random", Kind::AnswersRandom},
                            {"garbage", Kind::HoldsGarbage}};
  MouseScenario scenario;
  for (const Name& name : names) {
    if (name.text == text) {
      scenario.kind = name.kind;
      return scenario;
    }
  }
  constexpr std::string_view unplugged = "unplugged-after=";
  if (!text.starts_with(unplugged)) {
    return std::nullopt;
  }
  text.remove_prefix(unplugged.size());
  scenario.kind = Kind::UnpluggedAfter;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, scenario.transfers);
  if (error != std::errc() || stop != end) {
    return std::nullopt;
  }
  return scenario;
}
