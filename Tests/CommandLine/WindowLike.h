#pragma once

#include <filesystem>
#include <memory>

#include "Action/Library/ProfieController.h"
#include "Tests/CommandLine/TestHome.h"
#include "VirtualMouse/VirtualMouse.h"

// A program like the window, in this process, with a user's home and virtual mouse. Pauses last
// nothing, so that a test can be quick. Only one can exist.
class WindowLike {
 public:
  explicit WindowLike(const TestHome& user);
  ~WindowLike();
  WindowLike(const WindowLike&) = delete;
  WindowLike& operator=(const WindowLike&) = delete;

  static ProfieController& library() { return ProfieController::getShareProCon(); }
  VirtualMouse& mouse() { return *m_mouse; }

 private:
  std::shared_ptr<VirtualMouse> m_mouse;
};
