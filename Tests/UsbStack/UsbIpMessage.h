#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "VirtualMouse/VirtualMouse.h"

// The messages of USB/IP, by which the kernel's virtual host controller talks to a device: a header
// of 48 bytes, numbers with the highest byte first, and behind it the data that travel its way.

// What the kernel asks of the device.
struct UsbIpRequest {
  bool isUnlink = false;     // take back the request with the number `unlinked`
  std::uint32_t number = 0;  // names this request in its answer
  std::uint32_t unlinked = 0;
  std::uint32_t endpoint = 0;
  bool isToHost = false;
  std::uint32_t length = 0;        // of the data stage
  SetupPacket setup;               // on endpoint 0
  std::vector<std::uint8_t> data;  // sent to the device
};

// Waits for a whole message. No value if the kernel closed the connection or sent what is none.
std::optional<UsbIpRequest> receiveUsbIp(int socket);

// Ends a request: `status` is 0 or a negative errno; `data` goes to the host, and `taken` is how
// many bytes the device took from it.
void answerUsbIp(int socket, const UsbIpRequest& request, int status,
                 std::span<const std::uint8_t> data, std::uint32_t taken = 0);
// Ends an unlink: -ECONNRESET if the request was taken back, 0 if it had been answered before.
void answerUnlink(int socket, const UsbIpRequest& unlink, int status);
