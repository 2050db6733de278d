#pragma once

#include <QInputDevice>
#include <QKeyEvent>
#include <cstdint>

// A key event as X and Wayland make it, with the scan code of the key. It has its own keyboard,
// because Qt's needs an application object.
inline QKeyEvent scannedEvent(QEvent::Type type, std::uint32_t scanCode,
                              std::uint32_t nativeModifiers = 0, bool isAutoRepeat = false) {
  static const QInputDevice keyboard;
  return {type, Qt::Key_unknown, Qt::NoModifier, scanCode,
          0,    nativeModifiers, QString(),      isAutoRepeat,
          1,    &keyboard};
}

// The same for an evdev code.
inline QKeyEvent nativeEvent(QEvent::Type type, std::uint32_t evdevCode,
                             std::uint32_t nativeModifiers = 0, bool isAutoRepeat = false) {
  return scannedEvent(type, evdevCode + 8, nativeModifiers, isAutoRepeat);
}
