#include "View/Macros/RecordedKeys.h"

#include <QKeyEvent>
#include <algorithm>
#include <utility>

#include "Kit/Desktop/NativeKeys.h"

namespace {

// A layout without Latin letters has the shortcut on the same physical key.
bool isLetterR(const QKeyEvent& event) {
  constexpr std::uint16_t physicalR = 15;
  constexpr int lastLatin = 0xFF;
  const bool isLatin = event.key() > 0 && event.key() <= lastLatin;
  const auto code = nativekeys::macKeyCode(event);
  return isLatin ? event.key() == Qt::Key_R : code == physicalR;
}

bool isDown(const TrackedKey& key) {
  return key.kind == TrackedKey::Kind::FlagsChanged
             ? (key.modifierFlags & keyModifierFlag(key.keyCode)) != 0
             : key.kind == TrackedKey::Kind::KeyDown;
}

}  // namespace

RecordedKeys::Event RecordedKeys::take(const QKeyEvent& event, bool isRecording) {
  if (isRecording && isStopShortcut(event)) {
    return {std::exchange(m_isShortcutDown, true) ? Meaning::Shortcut : Meaning::Stop, {}};
  }
  if (event.type() == QEvent::KeyRelease && isLetterR(event)) {
    m_isShortcutDown = false;
  }
  const auto key = m_tracker.take(event);
  if (!key || !isRecording || key->isRepeat || !belongsToMacro(event, key->keyCode)) {
    return {Meaning::None, key};
  }
  return {isDown(*key) ? Meaning::Press : Meaning::Release, key};
}

bool RecordedKeys::startsByShortcut() {
  return !std::exchange(m_isShortcutDown, true);
}

void RecordedKeys::forgetKeys() {
  m_tracker.forgetAll();
  m_held.clear();
}

void RecordedKeys::drop(std::int32_t keyCode) {
  std::erase(m_held, keyCode);
}

std::vector<std::uint16_t> RecordedKeys::letGo() {
  std::vector<std::uint16_t> held = std::exchange(m_held, {});
  std::reverse(held.begin(), held.end());
  return held;
}

bool RecordedKeys::isControl(std::int32_t keyCode) {
  constexpr std::int32_t leftControl = 59;
  constexpr std::int32_t rightControl = 62;
  return keyCode == leftControl || keyCode == rightControl;
}

bool RecordedKeys::isOption(std::int32_t keyCode) {
  constexpr std::int32_t leftOption = 58;
  constexpr std::int32_t rightOption = 61;
  return keyCode == leftOption || keyCode == rightOption;
}

bool RecordedKeys::isStopShortcut(const QKeyEvent& event) const {
  if (event.type() != QEvent::KeyPress || !isLetterR(event)) {
    return false;
  }
  const std::uint32_t held = m_tracker.modifierFlags();
  const auto others = Qt::ShiftModifier | Qt::AltModifier | Qt::MetaModifier;
  return ((held & KeyModifierControl) != 0 || event.modifiers().testFlag(Qt::ControlModifier)) &&
         (held & (KeyModifierShift | KeyModifierOption | KeyModifierCommand)) == 0 &&
         !event.modifiers().testAnyFlags(others);
}

// A key that was already down neither repeats nor releases in the macro.
bool RecordedKeys::belongsToMacro(const QKeyEvent& event, std::uint16_t keyCode) {
  if (event.type() == QEvent::KeyRelease) {
    return std::erase(m_held, keyCode) != 0;
  }
  const bool isHeld = std::find(m_held.begin(), m_held.end(), keyCode) != m_held.end();
  if (event.isAutoRepeat() && !isHeld) {
    return false;
  }
  if (!isHeld) {
    m_held.push_back(keyCode);
  }
  return true;
}
