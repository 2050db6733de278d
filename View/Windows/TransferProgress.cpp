#include "View/Windows/TransferProgress.h"

#include <QElapsedTimer>
#include <QEvent>
#include <QGuiApplication>
#include <QPainter>
#include <QPointer>
#include <QTimer>
#include <algorithm>

#include "Kit/Core/ProcessWide.h"

namespace {

constexpr QColor lineColor(0xE5, 0x26, 0x2F);

struct Work {
  QPointer<ProgressLine> line;
  int reports = 0;
  int done = 0;
  QElapsedTimer time;
};

ProcessWide<Work> currentWork;

Work& work() {
  return *currentWork;
}

// Shorter work leaves no time to click into it.
constexpr int noticedMilliseconds = 100;

// Drops the input that waited while the program did not answer.
class QueuedInputFilter : public QObject {
 public:
  QueuedInputFilter() : QObject(qApp) {
    qApp->installEventFilter(this);
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

ProgressLine::ProgressLine(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ProgressLine::showFraction(double fraction) {
  m_fraction = fraction;
  repaint();
}

void ProgressLine::paintEvent(QPaintEvent* /*event*/) {
  if (m_fraction > 0) {
    QPainter(this).fillRect(QRectF(0, 0, width() * m_fraction, height()), lineColor);
  }
}

TransferProgress::TransferProgress(ProgressLine* line, int reports)
    : m_isOutermost(work().reports == 0) {
  if (m_isOutermost) {
    work() = {line, std::max(1, reports), 0, {}};
    work().time.start();
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  }
}

TransferProgress::~TransferProgress() {
  if (m_isOutermost) {
    QGuiApplication::restoreOverrideCursor();
    if (work().line) {
      work().line->showFraction(-1);
    }
    const bool isNoticed = work().time.elapsed() > noticedMilliseconds;
    work() = {};
    if (isNoticed) {
      // The application owns it, and it goes by itself.
      new QueuedInputFilter;
    }
  }
}

void TransferProgress::reportDone() {
  Work& current = work();
  if (current.reports > 0 && current.line) {
    ++current.done;
    current.line->showFraction(std::min(1.0, static_cast<double>(current.done) / current.reports));
  }
}
