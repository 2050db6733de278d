#pragma once

#include <memory>
#include <string>

#include <xcb/xcb.h>

#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/Scratch.h"

// An X server of its own without a screen, set in the environment, with a window manager if wanted.
class PrivateDisplay {
 public:
  explicit PrivateDisplay(bool hasWindowManager = true);
  ~PrivateDisplay();
  PrivateDisplay(const PrivateDisplay&) = delete;
  PrivateDisplay& operator=(const PrivateDisplay&) = delete;

  void end();
  void endWindowManager() { m_windowManager.reset(); }

 private:
  Scratch m_home;
  std::unique_ptr<ChildProcess> m_server;
  std::unique_ptr<ChildProcess> m_windowManager;
};

// A window of some program, which comes to the front when it opens.
class ProgramWindow {
 public:
  // `pid` 0: the window does not say whose it is.
  ProgramWindow(const std::string& instance, const std::string& className, int pid = 0);
  ~ProgramWindow();
  ProgramWindow(const ProgramWindow&) = delete;
  ProgramWindow& operator=(const ProgramWindow&) = delete;

  void activate();
  // In the place of a window manager: says that it tells the window in front, and that this window
  // is or that none is.
  void claimFront(bool isInFront);

 private:
  xcb_atom_t atom(const std::string& name) const;

  xcb_connection_t* m_connection;
  xcb_window_t m_root = XCB_WINDOW_NONE;
  xcb_window_t m_window = XCB_WINDOW_NONE;
};
