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

// The flag of a modifier key, by its Mac virtual key code (54..63); left and right share one. 0 for
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
    FlagsChanged,  // a modifier key went down or up, as its flag below says
  };

  Kind kind;
  std::uint16_t keyCode;        // Mac virtual key code, 0..126; 54..63 for FlagsChanged
  std::uint32_t modifierFlags;  // after the event; set while either key of the pair is down,
                                // or while Caps Lock is locked
  bool isRepeat;                // a KeyDown of a key that was not released since the last one
  std::uint64_t timestamp;      // of the Qt event, in milliseconds; only useful for differences
};

// Follows the keyboard through the key events of one widget and translates them to Mac keys. The
// widget passes every KeyPress and KeyRelease to take() and calls forgetAll() when it loses the
// focus or starts a capture. It must leave input methods disabled, as they are by default, because
// they would swallow keys. Some keys belong to the desktop (Print Screen, the volume keys); on X a
// widget gets these too while it grabs the keyboard.
//
// Caps Lock changes its flag on every press and reports nothing on release. Qt cannot say whether
// it is locked. The window system's state before the event can, but not while Caps Lock is held,
// because unlocking takes effect on the release. So the state comes from the caller or the first
// event, and is then tracked by counting presses.
class KeyTracker {
 public:
  // Create it after the application object, or without one. `isCapsLockOn` is the state before the
  // first event. Without it, the state comes from the first event that is not a Caps Lock release.
  explicit KeyTracker(std::optional<bool> isCapsLockOn = std::nullopt);

  // What the event means. Nothing for a key without a Mac code, a repeated modifier, a release of
  // Caps Lock, or an event that is neither KeyPress nor KeyRelease. The release of a key whose
  // press was not seen is reported like any other.
  std::optional<TrackedKey> take(const QKeyEvent& event);

  // Forgets the keys that are down. After a loss of focus neither releases nor changes of Caps Lock
  // are reported, so the Caps Lock state must be determined again.
  void forgetAll(std::optional<bool> isCapsLockOn = std::nullopt);

  // The flags after the last event.
  std::uint32_t modifierFlags() const;

 private:
  void learnCapsLock(const QKeyEvent& event, std::optional<std::uint16_t> keyCode);

  std::set<std::uint32_t> m_down;  // evdev codes
  std::optional<bool> m_isCapsLockOn;
};
