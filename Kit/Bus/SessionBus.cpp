#include "Kit/Bus/SessionBus.h"

#include <cerrno>
#include <cstdlib>

#include <systemd/sd-bus.h>

namespace {

// Every byte in its escaped form, which is one of each.
std::string escaped(std::string_view text) {
  constexpr std::string_view digits = "0123456789abcdef";
  std::string result;
  for (const char character : text) {
    const auto byte = static_cast<unsigned char>(character);
    result += '%';
    result += digits[byte >> 4];
    result += digits[byte & 0x0F];
  }
  return result;
}

}  // namespace

std::string sessionbus::socketsOf(std::string_view addresses) {
  std::string sockets;
  while (!addresses.empty()) {
    const std::size_t end = addresses.find(';');
    const std::string_view one = addresses.substr(0, end);
    addresses.remove_prefix(end == std::string_view::npos ? addresses.size() : end + 1);
    if (one.starts_with("unix:")) {
      sockets += sockets.empty() ? "" : ";";
      sockets += one;
    }
  }
  return sockets;
}

std::string sessionbus::address() {
  const char* addresses = std::getenv("DBUS_SESSION_BUS_ADDRESS");
  if (addresses != nullptr && *addresses != '\0') {
    return socketsOf(addresses);
  }
  const char* runtimeFolder = std::getenv("XDG_RUNTIME_DIR");
  if (runtimeFolder != nullptr && *runtimeFolder != '\0') {
    return "unix:path=" + escaped(std::string(runtimeFolder) + "/bus");
  }
  return {};
}

int sessionbus::open(sd_bus*& opened) {
  const std::string sockets = address();
  if (sockets.empty()) {
    return -ENOENT;
  }
  sd_bus* bus = nullptr;
  int result = sd_bus_new(&bus);
  if (result < 0) {
    return result;
  }
  result = sd_bus_set_address(bus, sockets.c_str());
  if (result >= 0) {
    result = sd_bus_set_bus_client(bus, 1);
  }
  if (result >= 0) {
    // The other programs of the session are the same user's.
    result = sd_bus_set_trusted(bus, 1);
  }
  if (result >= 0) {
    result = sd_bus_start(bus);
  }
  if (result < 0) {
    sd_bus_close_unref(bus);
    return result;
  }
  opened = bus;
  return 0;
}
