#pragma once

#include <string>
#include <string_view>

struct sd_bus;

// The bus of the user's session.
namespace sessionbus {

// The Unix sockets of a list of addresses, "unix:path=...;tcp:host=...", as a list: other
// transports start programs or wait for a network, and a session bus needs neither.
std::string socketsOf(std::string_view addresses);

// The addresses of the session from the environment, sockets only; empty without a session.
std::string address();

// Begins to connect, without waiting for anything. 0 or a negative error number: -EAGAIN if too
// many programs wait for the bus already. On success the caller owns `opened`.
int open(sd_bus*& opened);

}  // namespace sessionbus
