#include "MacroPlayer/MacroPlayback.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace {

constexpr std::size_t repeatByte = 4;
constexpr std::size_t countByte = 5;
constexpr std::size_t lengthBytes = 7;
constexpr std::size_t eventBytes = 52;
constexpr std::size_t maximumEventBytes = 2000;

constexpr std::uint8_t counted = 4;
constexpr std::uint8_t whilePressed = 7;
constexpr std::uint8_t endless = 255;

constexpr std::uint8_t pauseMark = 1;
constexpr std::uint8_t released = 0x80;

// Control, Shift, Alt and Command. No code stands for the right Command key: the second row has
// Control in its place.
constexpr std::uint8_t firstModifier = 112;
constexpr std::array<std::uint8_t, 8> modifierUsages{0xE0, 0xE1, 0xE2, 0xE3, 0, 0xE5, 0xE6, 0xE4};
constexpr std::uint8_t firstMouseButton = 120;
constexpr std::uint8_t lastMouseButton = 126;

std::optional<PlayedEvent> eventOf(std::uint8_t code) {
  PlayedEvent event;
  event.isDown = (code & released) == 0;
  code &= static_cast<std::uint8_t>(~released);
  if (code >= firstMouseButton && code <= lastMouseButton) {
    event.kind = PlayedEvent::Kind::MouseButton;
    event.code = static_cast<std::uint8_t>(code - firstMouseButton + 1);
    return event;
  }
  const bool isModifier = code >= firstModifier && code < firstModifier + modifierUsages.size();
  event.code = isModifier ? modifierUsages[code - firstModifier] : code;
  return event.code == 0 ? std::nullopt : std::optional(event);
}

MacroPlayback::Repeat repeatOf(std::uint8_t type, std::uint8_t count) {
  if (type == counted) {
    return count == endless ? MacroPlayback::Repeat::UntilStopped : MacroPlayback::Repeat::Counted;
  }
  return type == whilePressed ? MacroPlayback::Repeat::WhilePressed : MacroPlayback::Repeat::Once;
}

}  // namespace

MacroPlayback playbackOf(std::span<const std::uint8_t> macroReport) {
  MacroPlayback playback;
  playback.repeat = repeatOf(macroReport[repeatByte], macroReport[countByte]);
  if (playback.repeat == MacroPlayback::Repeat::Counted) {
    playback.runs = macroReport[countByte] + 1;
  }
  const std::size_t length = static_cast<std::size_t>(macroReport[lengthBytes]) +
                             (static_cast<std::size_t>(macroReport[lengthBytes + 1]) << 8U);
  const auto codes = macroReport.subspan(eventBytes, std::min(length, maximumEventBytes));
  for (std::size_t at = 0; at < codes.size(); ++at) {
    if (codes[at] != pauseMark) {
      if (auto event = eventOf(codes[at])) {
        event->time = playback.duration;
        playback.events.push_back(*event);
      }
    } else if (at + 2 < codes.size()) {
      playback.duration += std::chrono::milliseconds(codes[at + 1] + (codes[at + 2] << 8U));
      at += 2;
    } else {
      break;
    }
  }
  return playback;
}
