#include "View/Windows/QueuedInput.h"

#include <QCoreApplication>
#include <QEvent>
#include <QTimer>

namespace {

// Drops the input that waited while the program did not answer.
class QueuedInputFilter : public QObject {
 public:
  QueuedInputFilter() : QObject(QCoreApplication::instance()) {
    QCoreApplication::instance()->installEventFilter(this);
    // Runs when no event is waiting any more.
    QTimer::singleShot(0, this, &QObject::deleteLater);
  }

 protected:
  bool eventFilter(QObject* /*watched*/, QEvent* event) override {
    switch (event->type()) {
      case QEvent::MouseButtonPress:
      case QEvent::MouseButtonRelease:
      case QEvent::MouseButtonDblClick:
      case QEvent::KeyPress:
      case QEvent::KeyRelease:
      case QEvent::ShortcutOverride:
      case QEvent::Wheel:
        return event->spontaneous();
      default:
        return false;
    }
  }
};

}  // namespace

void queuedinput::drop() {
  // The application owns it, and it goes by itself.
  new QueuedInputFilter;
}
