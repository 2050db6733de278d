#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <system_error>

// One USB control transfer on endpoint 0: the setup packet and its data stage.
struct LXDeviceRequest {
  std::uint8_t bmRequestType = 0;
  std::uint8_t bRequest = 0;
  std::uint16_t wValue = 0;
  std::uint16_t wIndex = 0;
  // The data stage; wLength is its size. Sent from here, or filled from the start. Not owned.
  std::span<std::uint8_t> data;
  // How many bytes of the data stage were transferred; 0 before the call.
  std::uint32_t wLenDone = 0;
  // Why the transfer failed, as far as the requester knows.
  std::error_code error = {};
};

// The port to the mouse. The program knows nothing of USB beyond this class; the real one stands
// on hidapi, the other on the virtual mouse. All operations run on the calling thread.
class LXDeviceRequester {
 public:
  virtual ~LXDeviceRequester() = default;

  // The one requester of this process, as the platform gives it; never null.
  static std::shared_ptr<LXDeviceRequester> shareDeviceReq();

  // Switches the logging of every transfer on or off.
  virtual void setIsPrintMsg(bool isPrintMsg) = 0;

  // Begins to watch for the device with these ids and opens it at once when it is there. Calling
  // it again with the same ids only looks again, when the device is not open.
  virtual void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) = 0;

  // Whether the device is there and open, as of now: a call notices arrival and removal.
  virtual bool isDevOn() = 0;

  // Performs the transfer and returns when it is done. On failure, and when no device is open, the
  // answer is false and the data stage is unchanged.
  virtual bool sendDeviceRequest(LXDeviceRequest& request) = 0;

  // Closes the device and opens it again.
  virtual void resetCurrDevice() = 0;
};
