#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <thread>

#include "Kit/Core/LXNotificationCenter.h"

// Broadcast notifications as signals on the session bus. The connection is made on a thread of its
// own, because a bus that accepts and never answers would hold the caller; posts made before it
// stands are sent when it does. Without a session bus posts are lost silently.
//
// Observers are called on a thread of the centre. A program with a QCoreApplication of its own
// makes that one first: the centre makes one when it has to observe and finds none.
class SessionBusNotificationCenter final : public LXNotificationCenter {
 public:
  SessionBusNotificationCenter();
  // Waits for the last post to be on the bus, at most as flush() does.
  ~SessionBusNotificationCenter() override;
  SessionBusNotificationCenter(const SessionBusNotificationCenter&) = delete;
  SessionBusNotificationCenter& operator=(const SessionBusNotificationCenter&) = delete;

  void postNotificationName(const std::string& name, const std::string& object,
                            const std::optional<LXUserInfo>& userInfo) override;
  void addObserver(const std::string& name, Observer observer) override;
  void removeObserver(const std::string& name) override;

  // Returns when everything posted so far is on the bus and every observer added so far hears it,
  // or after `limit`; true when it is so. Does not wait when there is no bus.
  bool flush(std::chrono::milliseconds limit = std::chrono::milliseconds(1000));

 private:
  struct State;
  class Worker;

  // Shared with the worker, which is left alone when it cannot end in time.
  std::shared_ptr<State> m_state;
  std::thread m_worker;
};
