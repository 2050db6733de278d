#include "Kit/Desktop/KeyTracker.h"

#include <QKeyEvent>

#include "Kit/Desktop/KeyRepeat.h"
#include "Kit/Desktop/NativeKeys.h"

namespace {

constexpr std::uint16_t capsLock = 57;
// The same bit in the key states of X and Wayland, whose first eight modifiers are those of X.
constexpr std::uint32_t nativeLockBit = 0x2;

}  // namespace

KeyTracker::KeyTracker(std::optional<bool> isCapsLockOn) : m_isCapsLockOn(isCapsLockOn) {
  keyrepeat::withoutReleases();
}

std::optional<TrackedKey> KeyTracker::take(const QKeyEvent& event) {
  const bool isPress = event.type() == QEvent::KeyPress;
  if (!isPress && event.type() != QEvent::KeyRelease) {
    return std::nullopt;
  }
  // On Wayland Qt itself repeats a key, with a release before each press, and marks that release as
  // a repeat. Elsewhere isAutoRepeat() may be false for a repeat, so a press is judged by the keys
  // that are down.
  if (!isPress && event.isAutoRepeat()) {
    return std::nullopt;
  }
  const auto keyCode = nativekeys::macKeyCode(event);
  learnCapsLock(event, keyCode);
  if (!keyCode) {
    return std::nullopt;
  }
  const std::uint32_t key = *nativekeys::evdevCode(event);
  const bool isRepeat = isPress && !m_down.insert(key).second;
  if (!isPress) {
    m_down.erase(key);
  }
  auto kind = isPress ? TrackedKey::Kind::KeyDown : TrackedKey::Kind::KeyUp;
  if (keyModifierFlag(*keyCode) != 0) {
    if (isRepeat || (*keyCode == capsLock && !isPress)) {
      return std::nullopt;
    }
    if (*keyCode == capsLock) {
      m_isCapsLockOn = !m_isCapsLockOn.value_or(false);
    }
    kind = TrackedKey::Kind::FlagsChanged;
  }
  return TrackedKey{kind, *keyCode, modifierFlags(), isRepeat, event.timestamp()};
}

void KeyTracker::forgetAll(std::optional<bool> isCapsLockOn) {
  m_down.clear();
  m_isCapsLockOn = isCapsLockOn;
}

std::uint32_t KeyTracker::modifierFlags() const {
  std::uint32_t flags = m_isCapsLockOn.value_or(false) ? KeyModifierCapsLock : 0U;
  for (const std::uint32_t key : m_down) {
    const auto keyCode = nativekeys::macKeyCode(key);
    if (keyCode && *keyCode != capsLock) {
      flags |= keyModifierFlag(*keyCode);
    }
  }
  return flags;
}

void KeyTracker::learnCapsLock(const QKeyEvent& event, std::optional<std::uint16_t> keyCode) {
  if (!m_isCapsLockOn && (keyCode != capsLock || event.type() == QEvent::KeyPress)) {
    m_isCapsLockOn = (event.nativeModifiers() & nativeLockBit) != 0;
  }
}
