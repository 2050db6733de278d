#include "Kit/Bus/BusNotification.h"

#include <cstdint>
#include <utility>
#include <variant>

#include <systemd/sd-bus.h>

namespace {

template <typename Number>
std::optional<std::int64_t> readAs(sd_bus_message* message, char type) {
  Number number = 0;
  if (sd_bus_message_read_basic(message, type, &number) <= 0 ||
      !std::in_range<std::int64_t>(number)) {
    return std::nullopt;
  }
  return static_cast<std::int64_t>(number);
}

std::optional<std::int64_t> readInteger(sd_bus_message* message, char type) {
  switch (type) {
    case 'y':
      return readAs<std::uint8_t>(message, type);
    case 'n':
      return readAs<std::int16_t>(message, type);
    case 'q':
      return readAs<std::uint16_t>(message, type);
    case 'i':
      return readAs<std::int32_t>(message, type);
    case 'u':
      return readAs<std::uint32_t>(message, type);
    case 'x':
      return readAs<std::int64_t>(message, type);
    case 't':
      return readAs<std::uint64_t>(message, type);
    default:
      return std::nullopt;
  }
}

// Reads the variant that stands next. Nothing for other types and numbers beyond 32 bits.
std::optional<std::variant<bool, std::int32_t>> readValue(sd_bus_message* message) {
  const char* contents = nullptr;
  if (sd_bus_message_peek_type(message, nullptr, &contents) <= 0 || contents == nullptr) {
    return std::nullopt;
  }
  const std::string type = contents;
  if (type.size() != 1 || sd_bus_message_enter_container(message, 'v', contents) <= 0) {
    sd_bus_message_skip(message, "v");
    return std::nullopt;
  }
  std::optional<std::variant<bool, std::int32_t>> value;
  if (type == "b") {
    int flag = 0;
    if (sd_bus_message_read_basic(message, 'b', &flag) > 0) {
      value = flag != 0;
    }
  } else if (const auto number = readInteger(message, type.front());
             number && std::in_range<std::int32_t>(*number)) {
    value = static_cast<std::int32_t>(*number);
  }
  if (sd_bus_message_at_end(message, 0) == 0) {
    sd_bus_message_skip(message, type.c_str());
  }
  sd_bus_message_exit_container(message);
  return value;
}

LXUserInfo readUserInfo(sd_bus_message* message) {
  LXUserInfo userInfo;
  if (sd_bus_message_enter_container(message, 'a', "{sv}") <= 0) {
    return userInfo;
  }
  while (sd_bus_message_enter_container(message, 'e', "sv") > 0) {
    const char* key = nullptr;
    if (sd_bus_message_read_basic(message, 's', &key) > 0) {
      const std::string name = key;
      if (const auto value = readValue(message)) {
        userInfo.emplace(name, *value);
      }
    }
    sd_bus_message_exit_container(message);
  }
  sd_bus_message_exit_container(message);
  return userInfo;
}

}  // namespace

std::optional<busnotification::Notification> busnotification::read(sd_bus_message* signal) {
  const std::string signature = sd_bus_message_get_signature(signal, 1);
  const char* object = nullptr;
  if ((signature != "s" && signature != "sa{sv}") ||
      sd_bus_message_read_basic(signal, 's', &object) <= 0) {
    return std::nullopt;
  }
  Notification notification{object, {}};
  if (signature != "s") {
    notification.userInfo = readUserInfo(signal);
  }
  return notification;
}
