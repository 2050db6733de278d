#include "Action/Device/DeviceLink.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <numeric>

#include "Action/Wire/ProfileImage.h"
#include "Kit/Core/LXPlatform.h"

using namespace std::chrono_literals;

namespace {

constexpr std::size_t commandSize = 8;
constexpr std::uint16_t featureReport = 0x0300;

bool send(std::uint8_t requestType, std::uint8_t request, std::uint16_t reportId,
          std::uint16_t interface, std::span<std::uint8_t> buffer) {
  const auto& requester = NerinAction::sysDeviceReq;
  if (!requester) {
    return false;
  }
  LXDeviceRequest transfer{.bmRequestType = requestType,
                           .bRequest = request,
                           .wValue = static_cast<std::uint16_t>(featureReport + reportId),
                           .wIndex = interface,
                           .data = buffer};
  return requester->sendDeviceRequest(transfer);
}

bool get(std::uint16_t reportId, std::uint16_t interface, std::span<std::uint8_t> buffer) {
  return send(0xA1, 0x01, reportId, interface, buffer);
}

bool set(std::uint16_t reportId, std::uint16_t interface, std::span<std::uint8_t> buffer) {
  return send(0x21, 0x09, reportId, interface, buffer);
}

}  // namespace

void NerinAction::startListenDev() {
  sysDeviceReq = LXDeviceRequester::shareDeviceReq();
  sysDeviceReq->setIsPrintMsg(true);
  sysDeviceReq->listenDevWithVid(mouseVid, mousePid);
}

bool NerinAction::checkListenDev() {
  return sysDeviceReq && sysDeviceReq->isDevOn();
}

bool NerinAction::GetCommand(std::span<std::uint8_t> buffer) {
  return get(0, 0, buffer);
}

bool NerinAction::SetCommand(std::span<std::uint8_t> buffer) {
  return set(0, 0, buffer);
}

bool NerinAction::GetCommand2(std::span<std::uint8_t> buffer) {
  return !buffer.empty() && get(buffer[0], 1, buffer);
}

bool NerinAction::SetCommand2(std::span<std::uint8_t> buffer) {
  return !buffer.empty() && set(buffer[0], 1, buffer);
}

void NerinAction::sendCommand(std::span<const std::uint8_t> bytes) {
  std::array<std::uint8_t, commandSize> command{};
  std::copy_n(bytes.begin(), std::min(bytes.size(), command.size()), command.begin());
  SetCommand(command);
  pauseAfterReport();
}

void NerinAction::pauseAfterReport() {
  LXPlatform::current().sleep(30ms);
}

void NerinAction::refreshDeviceData() {
  sendCommand(std::array<std::uint8_t, 2>{0xC4, 0x00});
}

void NerinAction::resetDev() {
  sendCommand(std::array<std::uint8_t, 2>{0xC4, 0x01});
}

void NerinAction::resetDevPro() {
  if (!checkListenDev()) {
    return;
  }
  sysDeviceReq->resetCurrDevice();
  LXPlatform::current().sleep(500ms);
  setProfileIndexToDevice(getProfileIndexByDevice());
}

void NerinAction::setReadyPro(std::uint8_t pro, std::uint8_t com) {
  sendCommand(std::array<std::uint8_t, 4>{0xC4, com, pro, 0});
}

void NerinAction::setReadyPro2(std::uint8_t pro, std::uint8_t com) {
  sendCommand(std::array<std::uint8_t, 4>{0xC4, com, pro, 1});
}

void NerinAction::setAdrrData(std::uint8_t value, std::uint16_t addr) {
  // The value stands between the two halves of the address here, unlike in the read.
  sendCommand(std::array<std::uint8_t, 4>{0xDE, static_cast<std::uint8_t>(addr), value,
                                          static_cast<std::uint8_t>(addr >> 8U)});
}

std::uint8_t NerinAction::getAdrrDataWithAddr(std::uint16_t addr) {
  std::array<std::uint8_t, commandSize> buffer{0xDF, static_cast<std::uint8_t>(addr),
                                               static_cast<std::uint8_t>(addr >> 8U)};
  SetCommand(buffer);
  pauseAfterReport();
  GetCommand(buffer);
  return buffer[4];
}

std::uint16_t NerinAction::getOffsetAdrBy(std::uint32_t offset, std::uint32_t pro) {
  return static_cast<std::uint16_t>(offset + pro * 256);
}

std::uint8_t NerinAction::GetChecksum(std::span<const std::uint8_t> bytes) {
  const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
  return static_cast<std::uint8_t>(0U - sum);
}
