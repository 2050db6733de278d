#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <variant>

// The payload of a broadcast notification. A flag and a number are different things to the
// receiver, so both are kept apart.
using LXUserInfo = std::map<std::string, std::variant<bool, std::int32_t>>;

// The port to the broadcast notifications that the program and the background service exchange.
class LXNotificationCenter {
 public:
  using Observer = std::function<void(const std::string& object, const LXUserInfo& userInfo)>;

  virtual ~LXNotificationCenter() = default;

  // Broadcasts a notification and awaits nothing; with nobody to carry it, it is lost. An absent
  // user info is not the same as an empty one.
  virtual void postNotificationName(const std::string& name, const std::string& object,
                                    const std::optional<LXUserInfo>& userInfo) = 0;

  // Calls `observer` for every notification of that name, on whatever thread it arrives, until
  // removeObserver of the name. One observer for each name. It
  // hands its work over and returns: it must not wait for the thread that calls removeObserver.
  virtual void addObserver(const std::string& name, Observer observer) = 0;
  virtual void removeObserver(const std::string& name) = 0;
};
