#pragma once

#include <memory>

#include "Companion/Desktop/Foreground.h"

// The window in front on an X11 desktop, as its window manager tells it.
class X11Foreground final : public Foreground {
 public:
  // Null without an X server, and without a window manager that tells.
  static std::unique_ptr<X11Foreground> open(EventLoop& loop, Changed changed,
                                             std::function<void()> lost);
  ~X11Foreground() override;
  X11Foreground(const X11Foreground&) = delete;
  X11Foreground& operator=(const X11Foreground&) = delete;

  std::string name() const override { return "X11"; }

 private:
  struct State;
  explicit X11Foreground(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};
