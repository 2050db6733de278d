#include "Kit/Desktop/HeldKeys.h"

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>

namespace {

class Filter : public QObject {
 public:
  explicit Filter(QWidget& window) : QObject(&window), m_window(window) {
    qApp->installEventFilter(this);
  }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override {
    if (event->type() != QEvent::KeyPress && event->type() != QEvent::ShortcutOverride) {
      return false;
    }
    const auto* widget = qobject_cast<QWidget*>(watched);
    return static_cast<QKeyEvent*>(event)->isAutoRepeat() && answers(*event) && widget != nullptr &&
           widget->window() == &m_window;
  }

 private:
  static bool answers(const QEvent& event) {
    const int key = static_cast<const QKeyEvent&>(event).key();
    return key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Escape;
  }

  QWidget& m_window;
};

}  // namespace

void heldkeys::dropIn(QWidget& window) {
  // The window owns it.
  new Filter(window);
}
