#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

// The payload of a broadcast notification. Receivers distinguish a flag from a number, so the types
// are kept apart.
using LXUserInfo = std::map<std::string, std::variant<bool, std::int32_t>>;

// The port to the broadcast notifications that the program and the background service exchange.
class LXNotificationCenter {
 public:
  using Observer = std::function<void(const std::string& object, const LXUserInfo& userInfo)>;

  virtual ~LXNotificationCenter() = default;

  // Broadcasts a notification without waiting. It is lost if nothing can carry it. Missing user
  // info is not the same as empty user info.
  virtual void postNotificationName(const std::string& name, const std::string& object,
                                    const std::optional<LXUserInfo>& userInfo) = 0;

  // Calls `observer` for every notification of that name, on the thread on which it arrives, until
  // removeObserver is called with the name. Each name has one observer. It must hand its work over
  // and return: it must not wait for the thread that calls removeObserver.
  virtual void addObserver(const std::string& name, Observer observer) = 0;
  virtual void removeObserver(const std::string& name) = 0;
};
