#include "Action/Device/DeviceLink.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <memory>

#include "Kit/Core/BusyScope.h"
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
  std::chrono::steady_clock::time_point silentUntil{};
  // The last transfer timed out, on this connection (0 until it is known).
  bool isSilent = false;
  std::uint64_t silentConnection = 0;
  bool wasRefused = false;  // another program had the mouse
};
ProcessWide<Series> series;

// A deed of the user may be several series. It waits only once for another program, and only once
// for a mouse that does not answer, which takes five seconds. Without a new transfer the rest of it
// is over at once, so that this is longer than the rest and shorter than the way to another deed.
constexpr auto deedLimit = 1s;

struct Hold {
  int depth = 0;
  std::chrono::steady_clock::time_point refusedUntil{};
  LXDeviceRequester::Claim claim;
  std::error_code error;
  std::unique_ptr<BusyScope> busy;
};
ProcessWide<Hold> hold;

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

// What follows the first failure of a series does not reach the mouse.
std::error_code transfer(std::uint8_t requestType, std::uint8_t request, std::uint16_t reportId,
                         std::uint16_t interface, std::span<std::uint8_t> buffer) {
  // A single transfer is a series, too: it must not fall between two transfers of another program.
  const NerinAction::TransferSeries own;
  const auto& requester = *NerinAction::sysDeviceReq;
  // Whether the mouse is on is asked first, since that may open another one.
  if (!series->ended && requester && requester->isDevOn() &&
      requester->connection() != series->connection) {
    series->ended = std::make_error_code(std::errc::no_such_device);
  }
  if (!series->ended) {
    series->reports += requestType == setReport ? 1 : 0;
    series->ended = sendToMouse(requestType, request, reportId, interface, buffer);
    series->isSilent = series->ended == std::errc::timed_out;
    if (series->isSilent) {
      series->silentUntil = LXPlatform::current().now() + deedLimit;
      series->silentConnection = 0;
    }
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

NerinAction::MouseHold::MouseHold() {
  if (hold->depth++ == 0 && *sysDeviceReq) {
    const LXPlatform& platform = LXPlatform::current();
    const bool hasWaited = platform.now() < hold->refusedUntil;
    hold->busy = std::make_unique<BusyScope>();
    hold->claim = (*sysDeviceReq)->claim(hasWaited ? 0ms : platform.mouseWait, hold->error);
    if (hold->error && !hasWaited) {
      hold->refusedUntil = platform.now() + deedLimit;
    }
  }
}

NerinAction::MouseHold::~MouseHold() {
  if (--hold->depth == 0) {
    hold->claim.reset();
    hold->busy.reset();
    hold->error.clear();
  }
}

std::error_code NerinAction::MouseHold::error() {
  return hold->error;
}

NerinAction::TransferSeries::TransferSeries() {
  if (series->depth++ == 0) {
    series->reports = 0;
    series->ended = MouseHold::error();
    series->wasRefused = static_cast<bool>(series->ended);
    if (!series->ended && LXPlatform::current().now() < series->silentUntil) {
      series->ended = std::make_error_code(std::errc::timed_out);
    }
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
         error == std::errc::protocol_error || error == std::errc::device_or_resource_busy;
}

void NerinAction::startListenDev() {
  series->silentUntil = {};
  *sysDeviceReq = LXDeviceRequester::shareDeviceReq();
  (*sysDeviceReq)->setIsPrintMsg(true);
  (*sysDeviceReq)->listenDevWithVid(mouseVid, mousePid);
}

bool NerinAction::checkListenDev() {
  return *sysDeviceReq && (*sysDeviceReq)->isDevOn();
}

LXDeviceAbsence NerinAction::mouseAbsence() {
  if (!checkListenDev()) {
    series->isSilent = false;
    return *sysDeviceReq ? (*sysDeviceReq)->absence() : LXDeviceAbsence::NotFound;
  }
  if (series->isSilent) {
    // Being opened anew after the timeout is not being plugged in.
    const std::uint64_t connection = (*sysDeviceReq)->connection();
    if (series->silentConnection == 0) {
      series->silentConnection = connection;
    }
    if (series->silentConnection == connection) {
      return LXDeviceAbsence::DoesNotAnswer;
    }
    series->isSilent = false;
  }
  if (series->wasRefused && hold->depth == 0) {
    std::error_code error;
    const auto probe = (*sysDeviceReq)->claim(0ms, error);
    series->wasRefused = static_cast<bool>(error);
  }
  return series->wasRefused ? LXDeviceAbsence::InUse : LXDeviceAbsence::None;
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
  // The pause belongs to the command, also where the command failed.
  const MouseHold hold;
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
  const TransferSeries series;
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
