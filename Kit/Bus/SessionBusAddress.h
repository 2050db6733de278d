#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One address at which a session bus may listen.
struct SessionBusAddress {
  std::string text;        // as the bus library reads it: "unix:path=/run/user/1000/bus"
  std::string socketName;  // for a socket address; starts with NUL for an abstract name

  // Reads a list of addresses, "unix:path=...;unix:abstract=...", and keeps only Unix sockets:
  // other transports start programs or wait for a network, and a session bus needs neither.
  static std::vector<SessionBusAddress> parse(std::string_view list);
  // The addresses of the user's session from the environment; empty without a session.
  static std::vector<SessionBusAddress> ofThisSession();
};

// The first address at which a bus answers; nothing if there is none. Waits for a bus that accepts
// a connection but stays silent until `isStopping`, called every few milliseconds, is true.
//
// The bus library connects without a timeout, which would keep the process from ending. Give it
// only an address that has answered here.
std::optional<SessionBusAddress> findAnsweringBus(const std::vector<SessionBusAddress>& addresses,
                                                  const std::function<bool()>& isStopping);
