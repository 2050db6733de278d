#include "View/Windows/NestedLoop.h"

#include <QTimer>
#include <deque>
#include <utility>

namespace {

int depth = 0;

std::deque<std::function<void()>>& waiting() {
  static std::deque<std::function<void()>> works;
  return works;
}

// A work may open a dialog itself; the rest waits for that one then.
void workOff() {
  while (depth == 0 && !waiting().empty()) {
    const auto work = std::move(waiting().front());
    waiting().pop_front();
    work();
  }
}

}  // namespace

NestedLoop::NestedLoop() {
  ++depth;
}

// Not from here: whoever opened the dialog has its answer to deal with first.
NestedLoop::~NestedLoop() {
  --depth;
  if (depth == 0 && !waiting().empty()) {
    QTimer::singleShot(0, workOff);
  }
}

bool NestedLoop::isRunning() {
  return depth > 0;
}

void NestedLoop::whenNone(std::function<void()> work) {
  waiting().push_back(std::move(work));
  workOff();
}
