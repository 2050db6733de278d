#pragma once

#include <functional>
#include <memory>

#include "Kit/Bus/BusConnection.h"

// Whether the person is at this session, as the login manager says. Where there is none, the
// session counts as open.
class SessionState {
 public:
  // `changed` is called after every change, `resumed` when the computer wakes up.
  SessionState(sd_event* loop, std::function<void()> changed, std::function<void()> resumed);
  ~SessionState();
  SessionState(const SessionState&) = delete;
  SessionState& operator=(const SessionState&) = delete;

  // Locked, or another session has the seat.
  bool isClosed() const { return m_isLocked || !m_isActive; }

 private:
  void ask();
  void askFor(const char* property, bool SessionState::*value);

  std::function<void()> m_changed;
  std::unique_ptr<BusConnection> m_bus;
  bool m_isLocked = false;
  bool m_isActive = true;
};
