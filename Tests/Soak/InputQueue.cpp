#include "Tests/Soak/InputQueue.h"

// Declares how events are put into the window system. The functions of QTest itself process what
// else waits, so that steps would run inside each other without end.
#include <QTest>

namespace {

constexpr int stepTime = 10;
// Two clicks that are no double click.
constexpr int longTime = 1000;

}  // namespace

void InputQueue::sendMouse(QEvent::Type type, const QPoint& place, Qt::MouseButtons held,
                           Qt::MouseButton button, Qt::KeyboardModifiers keys) {
  if (canTake()) {
    m_time += stepTime;
    qt_handleMouseEvent(m_window, place, m_window->mapToGlobal(place), held, button, type, keys,
                        m_time);
  }
}

void InputQueue::press(const QPoint& place, Qt::MouseButton button, Qt::KeyboardModifiers keys) {
  sendMouse(QEvent::MouseMove, place, Qt::NoButton, Qt::NoButton, keys);
  sendMouse(QEvent::MouseButtonPress, place, button, button, keys);
}

void InputQueue::release(const QPoint& place, Qt::MouseButton button, Qt::KeyboardModifiers keys) {
  sendMouse(QEvent::MouseButtonRelease, place, Qt::NoButton, button, keys);
}

void InputQueue::drag(const QPoint& place) {
  sendMouse(QEvent::MouseMove, place, Qt::LeftButton, Qt::NoButton, {});
}

void InputQueue::sendKey(QEvent::Type type, int key, Qt::KeyboardModifiers keys,
                         const QString& text, bool isRepeat) {
  if (!canTake()) {
    return;
  }
  m_time += longTime;
  if (type == QEvent::KeyPress && qt_sendShortcutOverrideEvent(m_window, static_cast<ulong>(m_time),
                                                               key, keys, text, isRepeat)) {
    return;
  }
  if (canTake()) {
    qt_handleKeyEvent(m_window, type, key, keys, text, isRepeat);
  }
}

void InputQueue::hit(int key, Qt::KeyboardModifiers keys, const QString& text) {
  sendKey(QEvent::KeyPress, key, keys, text, false);
  sendKey(QEvent::KeyRelease, key, keys, text, false);
}

void InputQueue::hold(int key, int repeats) {
  sendKey(QEvent::KeyPress, key, {}, {}, false);
  for (int repeat = 0; repeat < repeats; ++repeat) {
    sendKey(QEvent::KeyPress, key, {}, {}, true);
  }
}

void InputQueue::letGo(int key) {
  sendKey(QEvent::KeyRelease, key, {}, {}, false);
}
