#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One hidraw node of a USB device, as it stands at the moment of the look.
struct HidNode {
  std::string path;       // below /dev; another one after every replug
  std::string sysPath;    // below /sys; the kernel never gives the same one twice
  std::string usbDevice;  // the sysfs path of the device that the interface belongs to
  int interfaceNumber = -1;

  bool operator==(const HidNode&) const = default;
};

// The hidraw nodes of all attached USB devices with these ids, each once, sorted by device and
// interface. Empty when there are none or when the system cannot be asked.
std::vector<HidNode> findHidNodes(std::uint16_t vid, std::uint16_t pid);
