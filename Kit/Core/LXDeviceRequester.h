#pragma once

#include <chrono>
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
  // The data stage, which is sent or filled from its start. Its size is wLength. Not owned.
  std::span<std::uint8_t> data;
  // How many bytes of the data stage were transferred; 0 before the call.
  std::uint32_t wLenDone = 0;
  // Why the transfer failed, as far as the requester knows.
  std::error_code error = {};
};

// Why a device cannot be used.
enum class LXDeviceAbsence : std::uint8_t {
  None,           // it can be used
  NotFound,       // none is plugged in
  NoPermission,   // this user may not open it, and no rule of this product is installed
  NeedsReplug,    // it cannot be opened as it is plugged in now
  DoesNotAnswer,  // it is open, but a transfer timed out
  InUse,          // another program has it
};

// The port to the mouse. The program knows nothing of USB beyond this class; the real requester
// uses hidapi, the other one the virtual mouse. All operations run on the calling thread.
class LXDeviceRequester {
 public:
  virtual ~LXDeviceRequester() = default;

  // The one requester of this process, provided by the platform; never null.
  static std::shared_ptr<LXDeviceRequester> shareDeviceReq();

  // Switches the logging of every transfer on or off.
  virtual void setIsPrintMsg(bool isPrintMsg) = 0;

  // Starts watching for the device with these ids and opens it at once if it is there. Another call
  // with the same ids only looks again if the device is not open.
  virtual void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) = 0;

  // Whether the device is there and open right now: the call notices arrival and removal.
  virtual bool isDevOn() = 0;

  // Why the device is not on; None if it is.
  virtual LXDeviceAbsence absence() {
    return isDevOn() ? LXDeviceAbsence::None : LXDeviceAbsence::NotFound;
  }

  // Performs the transfer and returns when it is done. If it fails or no device is open, returns
  // false and leaves the data stage unchanged.
  virtual bool sendDeviceRequest(LXDeviceRequest& request) = 0;

  // A number that changes whenever the device is opened, so that a caller can tell the mouse that
  // it began with from one that was plugged in since. 0 for a requester that does not know.
  virtual std::uint64_t connection() const { return 0; }

  // What holds the device for one program while it exists. Null if there is nothing to hold.
  using Claim = std::shared_ptr<void>;

  // Holds the device for this program and waits for another one that holds it, up to `limit`.
  // `error` is device_or_resource_busy if that one keeps it longer, else it is cleared. Holds
  // nothing without a device, and where this system cannot tell its programs apart. Asking twice in
  // one program is asking two programs: keep one claim.
  virtual Claim claim(std::chrono::milliseconds /*limit*/, std::error_code& error) {
    error.clear();
    return nullptr;
  }

  // Closes the device and opens it again.
  virtual void resetCurrDevice() = 0;
};
