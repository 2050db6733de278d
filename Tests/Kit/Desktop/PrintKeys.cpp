// A window that prints what a key tracker reports about its keyboard, one line per event: "<kind>
// <Mac key> <flags> <repeat 0 or 1> <milliseconds>", and "focus in" or "focus out". With --grab it
// also receives the keys that the desktop would otherwise keep.

#include <QApplication>
#include <QKeyEvent>
#include <QWidget>
#include <cstdio>

#include "Kit/Desktop/KeyTracker.h"

namespace {

class KeyPrinter : public QWidget {
 public:
  KeyPrinter() {
    setWindowTitle(QStringLiteral("PrintKeys"));
    setFocusPolicy(Qt::StrongFocus);
    resize(300, 200);
  }

 protected:
  bool event(QEvent* event) override {
    switch (event->type()) {
      case QEvent::ShortcutOverride:
        event->accept();
        return true;
      case QEvent::KeyPress:
      case QEvent::KeyRelease:
        print(*static_cast<QKeyEvent*>(event));
        return true;
      case QEvent::FocusIn:
        // Not earlier, because X refuses a window that is not shown yet.
        if (QApplication::arguments().contains(QStringLiteral("--grab"))) {
          grabKeyboard();
        }
        printLine(QStringLiteral("focus in"));
        break;
      case QEvent::FocusOut:
        m_tracker.forgetAll();
        printLine(QStringLiteral("focus out"));
        break;
      default:
        break;
    }
    return QWidget::event(event);
  }

 private:
  static void printLine(const QString& line) {
    std::puts(line.toUtf8().constData());
    std::fflush(stdout);
  }

  void print(const QKeyEvent& event) {
    const auto key = m_tracker.take(event);
    if (!key) {
      return;
    }
    constexpr const char* kinds[] = {"KeyDown", "KeyUp", "FlagsChanged"};
    printLine(QStringLiteral("%1 %2 %3 %4 %5")
                  .arg(QLatin1String(kinds[static_cast<std::size_t>(key->kind)]))
                  .arg(key->keyCode)
                  .arg(key->modifierFlags)
                  .arg(key->isRepeat ? 1 : 0)
                  .arg(key->timestamp));
  }

  KeyTracker m_tracker;
};

}  // namespace

int main(int argc, char** argv) {
  const QApplication application(argc, argv);
  KeyPrinter printer;
  printer.show();
  return QApplication::exec();
}
