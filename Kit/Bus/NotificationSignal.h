#pragma once

#include <QDBusMessage>
#include <optional>
#include <string>

#include "Kit/Bus/NotificationAddress.h"
#include "Kit/Core/LXNotificationCenter.h"

// A broadcast notification as a D-Bus signal. The member is the name of the notification; the
// arguments are the object and the user info, if there is any.
struct NotificationSignal {
  static constexpr const char* path = notificationaddress::path;
  static constexpr const char* interface = notificationaddress::interface;

  std::string name;
  std::string object;
  std::optional<LXUserInfo> userInfo;

  // Whether a signal can have this name: letters, digits and "_", not starting with a digit.
  static bool isValidName(const std::string& name);

  // The signature is "s" or "sa{sv}". The name must be valid.
  QDBusMessage toMessage() const;
  // Nothing for any other signature. Reads integers of every type; leaves out entries of other
  // types and numbers beyond 32 bits.
  static std::optional<NotificationSignal> fromMessage(const QDBusMessage& message);
};
