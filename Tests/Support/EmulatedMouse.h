#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>

#include "VirtualMouse/VirtualMouse.h"

// One HID interface of a device on the emulated USB, and the number of its hidraw node.
struct EmulatedInterface {
  int number = 0;
  int node = 0;
  std::string port = "1-4";
  std::uint16_t vid = 0x264A;
  std::uint16_t pid = 0x1001;
};

// A mouse that hidapi and libudev take for a real one: two hidraw nodes in a umockdev testbed,
// behind which a VirtualMouse answers as the kernel would pass it on. A program that uses it links
// the library of this name and runs one test per process, because a process has one testbed.
class EmulatedMouse {
 public:
  // The testbed begins without a mouse. The destructor takes it away; whatever has nodes open must
  // be gone by then.
  explicit EmulatedMouse(std::shared_ptr<VirtualMouse> mouse = std::make_shared<VirtualMouse>());
  ~EmulatedMouse();
  EmulatedMouse(const EmulatedMouse&) = delete;
  EmulatedMouse& operator=(const EmulatedMouse&) = delete;

  VirtualMouse& mouse();

  // Interface 0 gets the node /dev/hidraw<firstNode>, interface 1 the next one.
  void plug(int firstNode = 3);
  void plugInterface(const EmulatedInterface& interface);
  // Takes away whatever is plugged in. Nodes that are open answer as those of a lost device.
  void unplug();

  // The first moment of an unplug: the nodes are gone and everyone is told, but the rest is still
  // in sysfs. The second moment is unplug().
  void loseNodes();

  // An existing file that stands for the socket of a running udevd.
  std::filesystem::path udevControl() const;
  // As without udevd: from now on nobody is told of arrivals and removals.
  void setIsSilent(bool isSilent);
  // Tells that the nodes changed, as `udevadm trigger` does.
  void announceChange();

  // From now on this user may or may not open the nodes that are plugged in. The calling thread
  // loses the privilege of passing over the rights of files.
  void setIsAccessAllowed(bool isAccessAllowed);

  // From now on every transfer fails with this errno; 0 ends it.
  void setTransferError(int error);
  // How often a node has been opened so far.
  int openCount() const;

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
