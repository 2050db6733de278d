#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "VirtualMouse/VirtualMouse.h"

// An HID interface of the emulated device and the number of its hidraw node.
struct EmulatedInterface {
  int number = 0;
  int node = 0;
  std::string port = "1-4";
  std::uint16_t vid = 0x264A;
  std::uint16_t pid = 0x1001;
  // Interface 1 only: it has an input report of the vendor's own, number 7 with eight bytes, and
  // its node can be sent reports.
  bool hasVendorInput = false;
};

// A mouse that looks real to hidapi and libudev: two hidraw nodes in a umockdev testbed, with a
// VirtualMouse that answers. Programs must link this library and run one test per process, because
// a process can have only one testbed.
class EmulatedMouse {
 public:
  // Starts without a plugged mouse. All open nodes must be closed before the destructor, which
  // removes the testbed.
  explicit EmulatedMouse(std::shared_ptr<VirtualMouse> mouse = std::make_shared<VirtualMouse>());
  ~EmulatedMouse();
  EmulatedMouse(const EmulatedMouse&) = delete;
  EmulatedMouse& operator=(const EmulatedMouse&) = delete;

  VirtualMouse& mouse();

  // Interface 0 gets the node /dev/hidraw<firstNode>, interface 1 the next one.
  void plug(int firstNode = 3);
  void plugInterface(const EmulatedInterface& interface);
  // The same as plug, with a vendor input report on interface 1.
  void plugWithVendorInput(int firstNode = 3);
  // The mouse sends an input report by itself. The first reader gets it, unlike at a real node.
  void sendInput(int interfaceNumber, const std::vector<std::uint8_t>& report);
  // Removes the device. Open nodes behave like those of a lost device.
  void unplug();

  // The first half of an unplug: removes the nodes and announces it, but leaves sysfs. unplug() is
  // the second half.
  void loseNodes();

  // A file in place of the socket of a running udevd.
  std::filesystem::path udevControl() const;
  // Stops the announcements, as without udevd.
  void setIsSilent(bool isSilent);
  // Announces a change of the nodes, like `udevadm trigger`.
  void announceChange();

  // Allows or forbids this user to open the current nodes. The calling thread loses the privilege
  // to ignore permissions.
  void setIsAccessAllowed(bool isAccessAllowed);

  // Makes every transfer fail with this errno; 0 ends that.
  void setTransferError(int error);
  // How often nodes were opened.
  int openCount() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
