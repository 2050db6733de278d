#pragma once

#include <cstdint>
#include <memory>

#include "Kit/Core/LXDeviceRequester.h"
#include "VirtualMouse/VirtualMouse.h"

// The requester whose device is a virtual mouse. It shares the mouse with its creator, and finds it
// only when it listens for the ids of the mouse.
class VirtualDeviceRequester final : public LXDeviceRequester {
 public:
  explicit VirtualDeviceRequester(std::shared_ptr<VirtualMouse> mouse);

  void setIsPrintMsg(bool isPrintMsg) override;
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override;
  bool isDevOn() override;
  bool sendDeviceRequest(LXDeviceRequest& request) override;
  std::uint64_t connection() const override;
  // The lock of a mouse with a memory file lies beside that file: "mouse.lock".
  Claim claim(std::chrono::milliseconds limit, std::error_code& error) override;
  void resetCurrDevice() override;

 private:
  std::shared_ptr<VirtualMouse> m_mouse;
  bool m_isListening = false;
  bool m_isPrintMsg = false;
};
