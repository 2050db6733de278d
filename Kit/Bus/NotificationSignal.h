#pragma once

#include <QDBusMessage>
#include <optional>
#include <string>

#include "Kit/Core/LXNotificationCenter.h"

// A broadcast notification as a signal: its member is the notification's name, its arguments are
// the object and, when there is one, the user info.
struct NotificationSignal {
  static constexpr const char* path = "/com/corvex/NerinOption";
  static constexpr const char* interface = "com.corvex.NerinOption.Notification";

  std::string name;
  std::string object;
  std::optional<LXUserInfo> userInfo;

  // Whether a signal can have this name: letters, digits and "_", no digit first.
  static bool isValidName(const std::string& name);

  // Signature "s" or "sa{sv}". The name must be a valid one.
  QDBusMessage toMessage() const;
  // Nothing for any other signature. Numbers of every integer type are read; entries of other
  // types, and numbers beyond 32 bits, are left out.
  static std::optional<NotificationSignal> fromMessage(const QDBusMessage& message);
};
