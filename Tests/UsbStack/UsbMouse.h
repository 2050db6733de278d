#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "Tests/UsbStack/UsbIpMessage.h"
#include "VirtualMouse/VirtualMouse.h"

// A VirtualMouse on a port of the kernel's virtual host controller, so that the kernel's own USB
// and HID drivers talk to it. Its device side runs on a thread of its own; every function may be
// called while that thread works.
class UsbMouse {
 public:
  // Not yet plugged in. With a file, the memory of the mouse is kept there.
  explicit UsbMouse(unsigned port);
  UsbMouse(unsigned port, const std::filesystem::path& memoryFile);
  // Unplugs it.
  ~UsbMouse();
  UsbMouse(const UsbMouse&) = delete;
  UsbMouse& operator=(const UsbMouse&) = delete;

  // Throws std::system_error if the kernel does not take it.
  void plug();
  // Ends the requests in flight as a bus does that lost the device, then the connection.
  void unplug();

  // Does something with the mouse itself while no transfer is at it.
  template <typename Act>
  auto atTheMouse(const Act& act) {
    const std::lock_guard lock(m_mutex);
    return act(m_mouse);
  }

  // How long a transfer of a report takes from now on; no value: it is never answered.
  void setAnswerTime(std::optional<std::chrono::milliseconds> time);
  // The report, or the request for one, that is at the mouse and not yet answered.
  std::optional<SetupPacket> pendingTransfer();
  // How many requests for reports the host took back.
  unsigned takenBack();

  // From now on the mouse moves one step to the right every `interval`, in each request for motions
  // that the host has waiting; zero: it lies still.
  void moveEvery(std::chrono::milliseconds interval);
  // How many steps were reported.
  unsigned stepsReported();

 private:
  using Clock = std::chrono::steady_clock;
  struct Pending {
    UsbIpRequest request;
    std::optional<Clock::time_point> due;  // no value: never
  };

  void serve();
  int waitingTime();
  bool takeMessage();
  void takeRequest(UsbIpRequest request);
  void takeBack(const UsbIpRequest& unlink);
  void finishWhatIsDue();
  void move();
  void transfer(const UsbIpRequest& request);
  void failWhatIsPending();
  void wake() const;

  const unsigned m_port;
  std::mutex m_mutex;
  VirtualMouse m_mouse;
  int m_socket = -1;
  int m_wake = -1;
  bool m_isEnding = false;
  std::optional<std::chrono::milliseconds> m_answerTime{0};
  std::vector<Pending> m_reports;      // on endpoint 0, oldest first
  std::vector<UsbIpRequest> m_inputs;  // requests for motions and other input
  unsigned m_takenBack = 0;
  std::chrono::milliseconds m_interval{0};
  Clock::time_point m_nextStep;
  unsigned m_steps = 0;
  std::thread m_thread;
};
