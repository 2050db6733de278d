#pragma once

#include <memory>

#include "Companion/Desktop/Foreground.h"

// The window in front in a Wayland session whose compositor lists its windows to ordinary programs:
// sway and others on wlroots. It tells no process; a window of an X11 program has its class as id.
class WlrForeground final : public Foreground {
 public:
  // Null without a compositor. One that does not list its windows is lost a moment later.
  static std::unique_ptr<WlrForeground> open(EventLoop& loop, Changed changed, Lost lost);
  ~WlrForeground() override;
  WlrForeground(const WlrForeground&) = delete;
  WlrForeground& operator=(const WlrForeground&) = delete;

  std::string name() const override { return "wlroots"; }

 private:
  struct State;
  explicit WlrForeground(std::unique_ptr<State> state);
  std::unique_ptr<State> m_state;
};
