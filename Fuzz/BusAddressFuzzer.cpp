#include <sys/socket.h>
#include <sys/un.h>

#include "Fuzz/FuzzInput.h"
#include "Kit/Bus/SessionBusAddress.h"

// Any text as the address of the session bus.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  for (const auto& address : SessionBusAddress::parse(fuzz::textOf(data, size))) {
    fuzz::require(address.text.starts_with("unix:"));
    fuzz::require(!address.socketName.empty());
    fuzz::require(address.socketName.size() <= sizeof(sockaddr_un::sun_path));
  }
  return 0;
}
