#include "View/Windows/NestedLoop.h"

#include <QTimer>
#include <deque>
#include <utility>

#include "Kit/Core/ProcessWide.h"

namespace {

struct Loops {
  int depth = 0;
  std::deque<std::function<void()>> waiting;
};
ProcessWide<Loops> loops;

// The work may open a dialog itself; then the rest waits for that dialog.
void workOff() {
  while (loops->depth == 0 && !loops->waiting.empty()) {
    const auto work = std::move(loops->waiting.front());
    loops->waiting.pop_front();
    work();
  }
}

}  // namespace

NestedLoop::NestedLoop() {
  ++loops->depth;
}

// Deferred, because the code that opened the dialog must handle the answer first.
NestedLoop::~NestedLoop() {
  --loops->depth;
  if (loops->depth == 0 && !loops->waiting.empty()) {
    QTimer::singleShot(0, workOff);
  }
}

bool NestedLoop::isRunning() {
  return loops->depth > 0;
}

void NestedLoop::whenNone(std::function<void()> work) {
  loops->waiting.push_back(std::move(work));
  workOff();
}
