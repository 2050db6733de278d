#include "Action/Device/DeviceLink.h"

#include <algorithm>
#include <array>
#include <chrono>

#include "Kit/Core/LXPlatform.h"

using namespace std::chrono_literals;

namespace {

constexpr std::size_t commandSize = 8;
constexpr std::uint16_t featureReport = 0x0300;
constexpr std::uint8_t getReport = 0xA1;
constexpr std::uint8_t setReport = 0x21;

struct Series {
  int depth = 0;
  std::error_code ended;
  int reports = 0;
  std::uint64_t connection = 0;
};
ProcessWide<Series> series;

std::error_code sendToMouse(std::uint8_t requestType, std::uint8_t request, std::uint16_t reportId,
                            std::uint16_t interface, std::span<std::uint8_t> buffer) {
  const auto& requester = *NerinAction::sysDeviceReq;
  if (!requester) {
    return std::make_error_code(std::errc::no_such_device);
  }
  LXDeviceRequest setup{.bmRequestType = requestType,
                        .bRequest = request,
                        .wValue = static_cast<std::uint16_t>(featureReport + reportId),
                        .wIndex = interface,
                        .data = buffer};
  const bool isSent = requester->sendDeviceRequest(setup);
  if (isSent && setup.wLenDone == buffer.size()) {
    return {};
  }
  if (isSent) {
    // Never use part of an answer.
    return std::make_error_code(std::errc::message_size);
  }
  return setup.error ? setup.error : std::make_error_code(std::errc::io_error);
}

// Inside a series, what follows the first failure does not reach the mouse.
std::error_code transfer(std::uint8_t requestType, std::uint8_t request, std::uint16_t reportId,
                         std::uint16_t interface, std::span<std::uint8_t> buffer) {
  if (series->depth == 0) {
    return sendToMouse(requestType, request, reportId, interface, buffer);
  }
  const auto& requester = *NerinAction::sysDeviceReq;
  // Whether the mouse is on is asked first, since that may open another one.
  if (!series->ended && requester && requester->isDevOn() &&
      requester->connection() != series->connection) {
    series->ended = std::make_error_code(std::errc::no_such_device);
  }
  if (!series->ended) {
    series->reports += requestType == setReport ? 1 : 0;
    series->ended = sendToMouse(requestType, request, reportId, interface, buffer);
  }
  return series->ended;
}

std::error_code get(std::uint16_t reportId, std::uint16_t interface,
                    std::span<std::uint8_t> buffer) {
  return transfer(getReport, 0x01, reportId, interface, buffer);
}

std::error_code set(std::uint16_t reportId, std::uint16_t interface,
                    std::span<std::uint8_t> buffer) {
  return transfer(setReport, 0x09, reportId, interface, buffer);
}

std::error_code emptyReport() {
  return std::make_error_code(std::errc::invalid_argument);
}

}  // namespace

NerinAction::TransferSeries::TransferSeries() {
  if (series->depth++ == 0) {
    series->ended.clear();
    series->reports = 0;
    const auto& requester = *sysDeviceReq;
    // Notices a mouse that came or went before the series begins.
    series->connection = requester && requester->isDevOn() ? requester->connection() : 0;
  }
}

NerinAction::TransferSeries::~TransferSeries() {
  --series->depth;
}

int NerinAction::reportsInSeries() {
  return series->reports;
}

bool NerinAction::isMouseGone(const std::error_code& error) {
  return error == std::errc::no_such_device || error == std::errc::timed_out ||
         error == std::errc::protocol_error;
}

void NerinAction::startListenDev() {
  *sysDeviceReq = LXDeviceRequester::shareDeviceReq();
  (*sysDeviceReq)->setIsPrintMsg(true);
  (*sysDeviceReq)->listenDevWithVid(mouseVid, mousePid);
}

bool NerinAction::checkListenDev() {
  return *sysDeviceReq && (*sysDeviceReq)->isDevOn();
}

std::error_code NerinAction::GetCommand(std::span<std::uint8_t> buffer) {
  return get(0, 0, buffer);
}

std::error_code NerinAction::SetCommand(std::span<std::uint8_t> buffer) {
  return set(0, 0, buffer);
}

std::error_code NerinAction::GetCommand2(std::span<std::uint8_t> buffer) {
  return buffer.empty() ? emptyReport() : get(buffer[0], 1, buffer);
}

std::error_code NerinAction::SetCommand2(std::span<std::uint8_t> buffer) {
  return buffer.empty() ? emptyReport() : set(buffer[0], 1, buffer);
}

Outcome NerinAction::sendCommand(std::span<const std::uint8_t> bytes, SlotStep step) {
  std::array<std::uint8_t, commandSize> command{};
  std::copy_n(bytes.begin(), std::min(bytes.size(), command.size()), command.begin());
  const Outcome outcome(step, SetCommand(command));
  pauseAfterReport();
  return outcome;
}

void NerinAction::pauseAfterReport() {
  if (series->depth > 0 && series->ended) {
    return;
  }
  LXPlatform::current().sleep(30ms);
}

Outcome NerinAction::refreshDeviceData() {
  return sendCommand(std::array<std::uint8_t, 2>{0xC4, 0x00}, SlotStep::Refresh);
}

Outcome NerinAction::resetDev() {
  return sendCommand(std::array<std::uint8_t, 2>{0xC4, 0x01});
}

Outcome NerinAction::setReadyPro(std::uint8_t pro, std::uint8_t com, SlotStep step) {
  return sendCommand(std::array<std::uint8_t, 4>{0xC4, com, pro, 0}, step);
}

Outcome NerinAction::setReadyPro2(std::uint8_t pro, std::uint8_t com, SlotStep step) {
  return sendCommand(std::array<std::uint8_t, 4>{0xC4, com, pro, 1}, step);
}

Outcome NerinAction::setAdrrData(std::uint8_t value, std::uint16_t addr, SlotStep step) {
  // Here the value stands between the two bytes of the address, unlike in the read.
  return sendCommand(std::array<std::uint8_t, 4>{0xDE, static_cast<std::uint8_t>(addr), value,
                                                 static_cast<std::uint8_t>(addr >> 8U)},
                     step);
}

NerinAction::ReadResult<std::uint8_t> NerinAction::getAdrrDataWithAddr(std::uint16_t addr,
                                                                       SlotStep step) {
  std::array<std::uint8_t, commandSize> buffer{0xDF, static_cast<std::uint8_t>(addr),
                                               static_cast<std::uint8_t>(addr >> 8U)};
  Outcome outcome(step, SetCommand(buffer));
  pauseAfterReport();
  outcome += Outcome(step, GetCommand(buffer));
  return {outcome, buffer[4]};
}

std::uint16_t NerinAction::getOffsetAdrBy(std::uint32_t offset, std::uint32_t pro) {
  return static_cast<std::uint16_t>(offset + pro * 256);
}
