#include "View/Windows/TransferProgress.h"

#include <QGuiApplication>
#include <QPainter>
#include <QPointer>
#include <algorithm>

#include "Kit/Core/ProcessWide.h"
#include "Kit/Desktop/WaylandDisplay.h"

namespace {

constexpr QColor lineColor(0xE5, 0x26, 0x2F);

struct Work {
  QPointer<ProgressLine> line;
  int reports = 0;
  int done = 0;
};

ProcessWide<Work> currentWork;

Work& work() {
  return *currentWork;
}

}  // namespace

ProgressLine::ProgressLine(QWidget* parent) : QWidget(parent) {
  setAttribute(Qt::WA_TransparentForMouseEvents);
}

void ProgressLine::showFraction(double fraction) {
  m_fraction = fraction;
  repaint();
  // No event is handled during the transfers, which would send it.
  waylanddisplay::flush();
}

void ProgressLine::paintEvent(QPaintEvent* /*event*/) {
  if (m_fraction > 0) {
    QPainter(this).fillRect(QRectF(0, 0, width() * m_fraction, height()), lineColor);
  }
}

TransferProgress::TransferProgress(ProgressLine* line, int reports)
    : m_isOutermost(work().reports == 0) {
  if (m_isOutermost) {
    work() = {line, std::max(1, reports), 0};
    busycursor::show(true);
  }
}

TransferProgress::~TransferProgress() {
  if (m_isOutermost) {
    busycursor::show(false);
    if (work().line) {
      work().line->showFraction(-1);
    }
    work() = {};
  }
}

void TransferProgress::reportDone() {
  Work& current = work();
  if (current.reports > 0 && current.line) {
    ++current.done;
    current.line->showFraction(std::min(1.0, static_cast<double>(current.done) / current.reports));
  }
}

void busycursor::show(bool isBusy) {
  if (isBusy) {
    QGuiApplication::setOverrideCursor(Qt::WaitCursor);
  } else {
    QGuiApplication::restoreOverrideCursor();
  }
}
