#include "Kit/Desktop/KeyboardHold.h"

#include <QWidget>

#include "Kit/Desktop/ShortcutsInhibitor.h"

KeyboardHold::KeyboardHold(QWidget& widget) : m_widget(&widget) {
  widget.grabKeyboard();
  if (QWindow* window = widget.window()->windowHandle()) {
    m_inhibitor = ShortcutsInhibitor::of(*window);
  }
}

KeyboardHold::~KeyboardHold() {
  if (m_widget) {
    m_widget->releaseKeyboard();
  }
}
