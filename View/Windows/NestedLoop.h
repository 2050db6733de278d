#pragma once

#include <functional>

// Exists while a dialog, a message or a file panel runs its own loop on the main thread. Reports of
// the mouse wait until the last of them ends and then arrive in order.
class NestedLoop {
 public:
  NestedLoop();
  ~NestedLoop();
  NestedLoop(const NestedLoop&) = delete;
  NestedLoop& operator=(const NestedLoop&) = delete;

  static bool isRunning();
  // Does the work now, or from the main loop after the last dialog.
  static void whenNone(std::function<void()> work);
};
