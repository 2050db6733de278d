#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "Kit/Desktop/KeyTracker.h"

class QKeyEvent;

// Reads the keys of a window in which macros are recorded: which of them are commands of the macro,
// and which start or stop the recording (Ctrl+R). Keys are Mac virtual key codes.
class RecordedKeys {
 public:
  enum class Meaning : std::uint8_t {
    None,
    Press,     // a command of the macro
    Release,   // a command of the macro
    Stop,      // the shortcut that ends the recording
    Shortcut,  // the shortcut that started the recording and is still held
  };
  struct Event {
    Meaning meaning = Meaning::None;
    // What the keyboard did, also without a recording; nothing for the last two meanings.
    std::optional<TrackedKey> key;
  };

  // Every KeyPress and KeyRelease of the window must come here. Nothing but None without a
  // recording.
  Event take(const QKeyEvent& event, bool isRecording);
  // The shortcut asks for a recording. False for its repeats.
  bool startsByShortcut();

  // A recording begins, or the window has the keyboard again: keys that are down by then, such as
  // the one that pressed the Record button, neither repeat nor are let go in the macro.
  void forgetKeys();
  // The window loses the keyboard, and the release of the shortcut will not arrive.
  void forgetShortcut() { m_isShortcutDown = false; }
  // The macro has no press of this key any more.
  void drop(std::int32_t keyCode);
  // Forgets the keys that the macro holds. Returns them in the order in which hands let go of them:
  // the last one first.
  std::vector<std::uint16_t> letGo();

  static bool isControl(std::int32_t keyCode);
  static bool isOption(std::int32_t keyCode);

 private:
  bool isStopShortcut(const QKeyEvent& event) const;
  bool belongsToMacro(const QKeyEvent& event, std::uint16_t keyCode);

  KeyTracker m_tracker;
  // Pressed during the recording and still down, in the order of their presses.
  std::vector<std::uint16_t> m_held;
  bool m_isShortcutDown = false;
};
