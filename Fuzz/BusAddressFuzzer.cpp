#include "Fuzz/FuzzInput.h"
#include "Kit/Bus/SessionBus.h"

// Any text as the address of the session bus.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string sockets = sessionbus::socketsOf(fuzz::textOf(data, size));
  fuzz::require(sockets.empty() || sockets.starts_with("unix:"));
  fuzz::require(sockets.find(";;") == std::string::npos);
  fuzz::require(sessionbus::socketsOf(sockets) == sockets);
  return 0;
}
