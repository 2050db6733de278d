#pragma once

#include <QPoint>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <QWindow>

// Pointer and keys of the window system, for one window. Each call returns when the program has
// taken the event, which may run a dialog to its end; a window that is gone by then takes no more.
class InputQueue {
 public:
  // `time` is the clock of the window system, in milliseconds. It goes on with each event.
  InputQueue(const QWidget& window, int& time) : m_window(window.windowHandle()), m_time(time) {}

  // Places are in the window.
  void press(const QPoint& place, Qt::MouseButton button, Qt::KeyboardModifiers keys);
  void release(const QPoint& place, Qt::MouseButton button, Qt::KeyboardModifiers keys);
  // With the left button held.
  void drag(const QPoint& place);
  // Presses a key and lets it go.
  void hit(int key, Qt::KeyboardModifiers keys, const QString& text = {});
  void hold(int key, int repeats);
  void letGo(int key);

 private:
  bool canTake() const { return m_window != nullptr && m_window->isVisible(); }
  void sendMouse(QEvent::Type type, const QPoint& place, Qt::MouseButtons held,
                 Qt::MouseButton button, Qt::KeyboardModifiers keys);
  void sendKey(QEvent::Type type, int key, Qt::KeyboardModifiers keys, const QString& text,
               bool isRepeat);

  QPointer<QWindow> m_window;
  int& m_time;
};
