#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "Kit/Core/LXNotificationCenter.h"

// Broadcast notifications as signals on the session bus. The connection is made on a separate
// thread, because a bus that accepts but never answers would block the caller. Posts made before
// that are sent once it is connected. Without a session bus posts are silently lost.
//
// Observers are called on a thread of the center. A program with its own QCoreApplication must
// create it first: the center creates one if it has to observe and finds none.
class SessionBusNotificationCenter final : public LXNotificationCenter {
 public:
  SessionBusNotificationCenter();
  // Waits until the last post is on the bus, but no longer than flush() does.
  ~SessionBusNotificationCenter() override;
  SessionBusNotificationCenter(const SessionBusNotificationCenter&) = delete;
  SessionBusNotificationCenter& operator=(const SessionBusNotificationCenter&) = delete;

  void postNotificationName(const std::string& name, const std::string& object,
                            const std::optional<LXUserInfo>& userInfo) override;
  void addObserver(const std::string& name, Observer observer) override;
  void removeObserver(const std::string& name) override;

  // Returns when everything posted so far is on the bus and every observer added so far is
  // subscribed, or after `limit`. True in the first case. Does not wait if there is no bus.
  bool flush(std::chrono::milliseconds limit = std::chrono::milliseconds(1000));

 private:
  struct State;
  class Worker;

  // Shared with the worker, which is detached if it does not end in time.
  std::shared_ptr<State> m_state;
  std::thread m_worker;
};
