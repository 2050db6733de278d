#include "VirtualMouse/VirtualDeviceRequester.h"

#include <limits>
#include <string>
#include <utility>

#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/TransferLog.h"
#include "VirtualMouse/MouseReport.h"

namespace {

void logTransfer(const SetupPacket& setup, const TransferResult& result,
                 std::span<const std::uint8_t> data) {
  const bool isToHost = (setup.requestType & 0x80U) != 0;
  std::string line = isToHost ? "GET " : "SET ";
  line += hexText(setup.value) + ' ' + std::to_string(setup.index) + ' ';
  switch (result.status) {
    case TransferStatus::Done:
      line += transferlog::textOf(data.first(result.bytes));
      break;
    case TransferStatus::Stalled:
      line += "stalled";
      break;
    case TransferStatus::Gone:
      line += "no mouse";
      break;
  }
  LXLogger::debug(line);
}

}  // namespace

VirtualDeviceRequester::VirtualDeviceRequester(std::shared_ptr<VirtualMouse> mouse)
    : m_mouse(std::move(mouse)) {}

void VirtualDeviceRequester::setIsPrintMsg(bool isPrintMsg) {
  m_isPrintMsg = isPrintMsg;
}

void VirtualDeviceRequester::listenDevWithVid(std::uint16_t vid, std::uint16_t pid) {
  m_isListening = vid == VirtualMouse::vendorId && pid == VirtualMouse::productId;
}

bool VirtualDeviceRequester::isDevOn() {
  return m_isListening && m_mouse->isAttached();
}

bool VirtualDeviceRequester::sendDeviceRequest(LXDeviceRequest& request) {
  request.wLenDone = 0;
  if (!isDevOn() || request.data.size() > std::numeric_limits<std::uint16_t>::max()) {
    request.error = std::make_error_code(std::errc::no_such_device);
    return false;
  }
  const SetupPacket setup{request.bmRequestType, request.bRequest, request.wValue, request.wIndex,
                          static_cast<std::uint16_t>(request.data.size())};
  const TransferResult result = m_mouse->controlTransfer(setup, request.data);
  if (m_isPrintMsg) {
    logTransfer(setup, result, request.data);
  }
  request.wLenDone = result.bytes;
  if (result.status != TransferStatus::Done) {
    request.error = std::make_error_code(
        result.status == TransferStatus::Gone ? std::errc::no_such_device : std::errc::broken_pipe);
  }
  return result.status == TransferStatus::Done;
}

std::uint64_t VirtualDeviceRequester::connection() const {
  return m_mouse->attachments();
}

LXDeviceRequester::Claim VirtualDeviceRequester::claim(std::chrono::milliseconds limit,
                                                       std::error_code& error) {
  error.clear();
  std::filesystem::path file = m_mouse->memoryFile();
  if (file.empty() || !isDevOn()) {
    return nullptr;
  }
  Claim held = FileLock::acquire(file += ".lock", limit);
  if (!held) {
    error = std::make_error_code(std::errc::device_or_resource_busy);
  }
  return held;
}

void VirtualDeviceRequester::resetCurrDevice() {
  // Nothing is held open, so the next transfer reaches the mouse like the last one.
}
