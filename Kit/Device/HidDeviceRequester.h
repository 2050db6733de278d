#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include "Kit/Core/LXDeviceRequester.h"

// The requester that reaches a USB mouse through the kernel's hidraw nodes. The kernel's own driver
// stays bound, so the pointer keeps moving while the program talks to the mouse.
//
// The mouse is on when the nodes of its interfaces 0 and 1 are both open. Only class requests that
// set or get a feature report can pass through these nodes; any other transfer fails.
class HidDeviceRequester final : public LXDeviceRequester {
 public:
  // udevd reports arrivals and removals; it listens on `udevControl` while it runs. Without udevd
  // the folder of the nodes does. Without both the requester looks for itself, no more than every
  // half second.
  // `ruleFolders` are where udev reads its rules.
  explicit HidDeviceRequester(std::filesystem::path udevControl = "/run/udev/control",
                              std::vector<std::filesystem::path> ruleFolders =
                                  {"/etc/udev/rules.d", "/run/udev/rules.d",
                                   "/usr/local/lib/udev/rules.d", "/usr/lib/udev/rules.d",
                                   "/lib/udev/rules.d"},
                              const std::filesystem::path& nodeFolder = "/dev");
  ~HidDeviceRequester() override;
  HidDeviceRequester(const HidDeviceRequester&) = delete;
  HidDeviceRequester& operator=(const HidDeviceRequester&) = delete;

  void setIsPrintMsg(bool isPrintMsg) override;
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override;
  bool isDevOn() override;
  LXDeviceAbsence absence() override;
  bool sendDeviceRequest(LXDeviceRequest& request) override;
  std::uint64_t connection() const override;
  // Each USB device has its own lock in the runtime folder.
  Claim claim(std::chrono::milliseconds limit, std::error_code& error) override;
  void resetCurrDevice() override;

  // An explanation for the user in plain sentences: what was looked for, what was found, and what
  // helps. Empty if the mouse is there and open.
  std::string explainAbsence();

  // The udev rule that lets the user at the seat open the mouse: one line without a line break.
  static std::string udevRule(std::uint16_t vid, std::uint16_t pid);

 private:
  struct State;
  std::unique_ptr<State> m_state;
};
