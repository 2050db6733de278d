#pragma once

#include <cstdint>
#include <optional>
#include <set>

class QKeyEvent;

// Modifier flags of a key event, as macros and single-key capture test them.
enum KeyModifierFlag : std::uint32_t {
  KeyModifierCapsLock = 0x10000,
  KeyModifierShift = 0x20000,
  KeyModifierControl = 0x40000,
  KeyModifierOption = 0x80000,
  KeyModifierCommand = 0x100000,
  KeyModifierFunction = 0x800000,
};

// The flag of a modifier key, left and right sharing one: 54..63 by Mac virtual key code, 0 for
// any other key.
constexpr std::uint32_t keyModifierFlag(std::uint32_t macKeyCode) {
  switch (macKeyCode) {
    case 54:
    case 55:
      return KeyModifierCommand;
    case 56:
    case 60:
      return KeyModifierShift;
    case 57:
      return KeyModifierCapsLock;
    case 58:
    case 61:
      return KeyModifierOption;
    case 59:
    case 62:
      return KeyModifierControl;
    case 63:
      return KeyModifierFunction;
    default:
      return 0;
  }
}

struct TrackedKey {
  enum class Kind : std::uint8_t {
    KeyDown,
    KeyUp,
    FlagsChanged,  // a modifier key, down or up: its flag below tells which
  };

  Kind kind;
  std::uint16_t keyCode;        // Mac virtual key code, 0..126; 54..63 for FlagsChanged
  std::uint32_t modifierFlags;  // after the event; a flag is set while either key of its pair is
                                // down, Caps Lock while it is locked
  bool isRepeat;                // a KeyDown of a key that was not released since the last one
  std::uint64_t timestamp;      // of the Qt event, in milliseconds; only differences mean anything
};

// Follows the keyboard through the key events of one widget and tells what happened in terms of
// Mac keys. The widget gives every KeyPress and KeyRelease to take() and calls forgetAll() when it
// loses the focus or starts a capture. It leaves input methods disabled, as widgets do unless told
// otherwise, because they would swallow keys. Some keys are the desktop's own (Print Screen, the
// volume); on X a widget has them too while it grabs the keyboard.
//
// Caps Lock changes its flag with every press and tells nothing when it is let go. Qt has no call
// that says whether it is locked; the window system's state before the event does, but not while
// Caps Lock itself is held (unlocking takes effect on the release only). So the state is taken from
// outside or from the first event, and from then on counted.
class KeyTracker {
 public:
  // Made after the application object, or without one. `isCapsLockOn` is the state before the first
  // event; without it the first event of a key other than a Caps Lock release tells it.
  explicit KeyTracker(std::optional<bool> isCapsLockOn = std::nullopt);

  // What the event says; nothing for a key without a Mac code, for a repeated modifier, for the
  // release of Caps Lock and for events that are neither KeyPress nor KeyRelease. The release of a
  // key whose press was not seen is told as any other.
  std::optional<TrackedKey> take(const QKeyEvent& event);

  // No key is down any more: after a loss of focus nobody tells of releases, nor of a change of
  // Caps Lock, so that it is learnt anew.
  void forgetAll(std::optional<bool> isCapsLockOn = std::nullopt);

  // The flags after the last event.
  std::uint32_t modifierFlags() const;

 private:
  void learnCapsLock(const QKeyEvent& event, std::optional<std::uint16_t> keyCode);

  std::set<std::uint32_t> m_down;  // evdev codes
  std::optional<bool> m_isCapsLockOn;
};
