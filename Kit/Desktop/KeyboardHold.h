#pragma once

#include <QPointer>
#include <memory>

class QWidget;
class ShortcutsInhibitor;

// While it exists, a widget that is shown gets every key, also those that are the desktop's own
// shortcuts, as far as the desktop allows it: an X server does, and so do Wayland compositors that
// can be asked. End it when the window loses the keyboard.
class KeyboardHold {
 public:
  explicit KeyboardHold(QWidget& widget);
  ~KeyboardHold();
  KeyboardHold(const KeyboardHold&) = delete;
  KeyboardHold& operator=(const KeyboardHold&) = delete;

 private:
  QPointer<QWidget> m_widget;
  std::unique_ptr<ShortcutsInhibitor> m_inhibitor;
};
