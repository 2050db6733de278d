#pragma once

#include <memory>
#include <string>

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Scratch.h"

// A Wayland compositor of its own without a screen, set in the environment.
class PrivateSway {
 public:
  PrivateSway();
  ~PrivateSway();
  PrivateSway(const PrivateSway&) = delete;
  PrivateSway& operator=(const PrivateSway&) = delete;

  void end() { m_compositor.reset(); }
  // Stops and goes on, as a compositor that hangs.
  void freeze() const;
  void thaw() const;

 private:
  Scratch m_runtime;
  std::unique_ptr<ChildProcess> m_compositor;
};

// A window of some program, which comes to the front when it opens.
class WaylandWindow {
 public:
  explicit WaylandWindow(const std::string& appId);
  ~WaylandWindow();
  WaylandWindow(const WaylandWindow&) = delete;
  WaylandWindow& operator=(const WaylandWindow&) = delete;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
