#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// One place where a session bus may listen.
struct SessionBusAddress {
  std::string text;        // as the bus library reads it: "unix:path=/run/user/1000/bus"
  std::string socketName;  // what a socket address holds; begins with NUL for an abstract name

  // Reads a list of addresses, "unix:path=...;unix:abstract=...". Left out is everything but Unix
  // sockets: other transports start programs or wait for a network, and a session bus needs none.
  static std::vector<SessionBusAddress> parse(std::string_view list);
  // The addresses of the user's session as the environment tells them; none without a session.
  static std::vector<SessionBusAddress> ofThisSession();
};

// The first address at which a bus answers. A bus that accepts and then keeps silent is waited for
// until `isStopping`, which is asked every few milliseconds; nothing when no bus is there.
//
// The bus library itself connects without a limit and would keep the process from ending, so it
// must be given no address that has not answered here.
std::optional<SessionBusAddress> findAnsweringBus(const std::vector<SessionBusAddress>& addresses,
                                                  const std::function<bool()>& isStopping);
