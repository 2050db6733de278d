#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One hidraw node of a USB device at the time of the search.
struct HidNode {
  std::string path;       // below /dev; changes with every replug
  std::string sysPath;    // below /sys; the kernel never reuses it
  std::string usbDevice;  // the sysfs path of the device that the interface belongs to
  int interfaceNumber = -1;

  bool operator==(const HidNode&) const = default;
};

// The hidraw nodes of all attached USB devices with these ids, each once, sorted by device and
// interface. Empty if there are none or the system cannot be queried.
std::vector<HidNode> findHidNodes(std::uint16_t vid, std::uint16_t pid);
