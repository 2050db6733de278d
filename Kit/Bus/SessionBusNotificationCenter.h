#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>

#include "Kit/Bus/BusThread.h"
#include "Kit/Core/LXNotificationCenter.h"

// Broadcast notifications as signals on the session bus, on a thread of its own, so that they come
// and go while the caller waits for a transfer. Posts made before the bus has answered are sent
// once it has. Without a session bus posts are silently lost.
//
// Observers are called on the thread of the center. Those of one center are never called at the
// same time, and a removed one not after its removal.
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

  // The work on the thread refers to it.
  std::shared_ptr<State> m_state;
  BusThread m_thread;

  void give(BusThread::Work work);
};
