#pragma once

#include <functional>

// Stands while a dialog, a message or a file panel runs a loop of its own on the main thread. What
// the mouse reports meanwhile waits until the last of them has ended, and comes then in order.
class NestedLoop {
 public:
  NestedLoop();
  ~NestedLoop();
  NestedLoop(const NestedLoop&) = delete;
  NestedLoop& operator=(const NestedLoop&) = delete;

  static bool isRunning();
  // Does the work now, or from the main loop once no dialog is up.
  static void whenNone(std::function<void()> work);
};
