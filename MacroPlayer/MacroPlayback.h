#pragma once

#include <chrono>
#include <cstdint>
#include <span>
#include <vector>

// One event that the mouse sends to its host while it plays a macro.
struct PlayedEvent {
  enum class Kind {
    Key,          // code: HID usage of the keyboard page, modifiers 0xE0..0xE7
    MouseButton,  // code: number of the button, 1 left, 2 right, 3 middle, up to 7
  };
  Kind kind = Kind::Key;
  std::uint8_t code = 0;
  bool isDown = false;
  std::chrono::milliseconds time{0};  // since the macro began

  bool operator==(const PlayedEvent&) const = default;
};

// What pressing a button with a macro makes the mouse do.
struct MacroPlayback {
  enum class Repeat { Once, Counted, WhilePressed, UntilStopped };
  Repeat repeat = Repeat::Once;
  int runs = 1;                           // 1..255, of Counted; otherwise 1
  std::vector<PlayedEvent> events;        // of one run, in order
  std::chrono::milliseconds duration{0};  // of one run, including the pause after its last event
};

// How the mouse plays a macro report of 2053 bytes, whatever its mark and checksum. Plays up to the
// 2000 bytes of events that the mouse has room for; a pause that is cut off at their end does not
// count. A code that stands for no key makes a pause, but no event.
MacroPlayback playbackOf(std::span<const std::uint8_t> macroReport);
