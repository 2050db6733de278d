#pragma once

#include <optional>
#include <string>

#include "Kit/Core/LXNotificationCenter.h"

struct sd_bus_message;

// What a broadcast carries, read from the bus without Qt.
namespace busnotification {

struct Notification {
  std::string object;
  LXUserInfo userInfo;  // without what is neither a flag nor a number of 32 bits
};

// Nothing for a signal of another shape. The message must stand at its first argument.
std::optional<Notification> read(sd_bus_message* signal);

}  // namespace busnotification
