#include "Companion/Service/MouseWatch.h"

#include <utility>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

using namespace std::chrono_literals;

namespace {

constexpr int slotCount = 10;
constexpr auto retryTime = 250ms;
constexpr int failureLimit = 5;
constexpr auto failurePause = 1s;
// Where neither udevd nor the folder of the nodes tells of them, they are looked for.
constexpr auto lookInterval = 2s;
// In the memory of a slot: the low half is the active level.
constexpr std::uint32_t levelAddress = 258;

EventLoop::Time now() {
  return std::chrono::steady_clock::now();
}

// Nothing in `value` unless the outcome is done.
struct Read {
  std::error_code error;
  MouseReading value;
};

Read readMouse() {
  const NerinAction::TransferSeries series;
  const auto slot = NerinAction::getProfileIndexByDevice();
  if (!slot.outcome.isDone()) {
    return {slot.outcome.failure()->error, {}};
  }
  const auto level =
      NerinAction::getAdrrDataWithAddr(NerinAction::getOffsetAdrBy(levelAddress, slot.value));
  if (!level.outcome.isDone()) {
    return {level.outcome.failure()->error, {}};
  }
  return {{}, {slot.value, level.value & 0x0F}};
}

bool isBusy(const std::error_code& error) {
  return error == std::errc::device_or_resource_busy;
}

}  // namespace

MouseWatch::MouseWatch(EventLoop& loop, const std::filesystem::path& udevControl, Listener listener)
    : m_loop(loop),
      m_listener(std::move(listener)),
      m_monitor(udevControl),
      m_readTimer(loop, [this] { read(); }) {
  if (udevControl.empty()) {
    return;
  }
  if (m_monitor.descriptor() >= 0) {
    m_presenceWatch = loop.watch(m_monitor.descriptor(), [this] {
      if (m_monitor.takeNews().isAny) {
        look();
      }
    });
  }
  if (!m_monitor.isReliable() || !m_presenceWatch) {
    m_lookTimer = std::make_unique<EventLoop::Timer>(loop, [this] {
      look();
      m_lookTimer->startIn(lookInterval);
    });
    m_lookTimer->startIn(lookInterval);
  }
}

MouseWatch::~MouseWatch() = default;

void MouseWatch::look() {
  const MousePresence before = std::exchange(m_presence, {});
  m_presence.isThere = NerinAction::checkListenDev();
  m_presence.connection = (*NerinAction::sysDeviceReq)->connection();
  for (const DeviceReport& report : changesOf(before, m_presence)) {
    if (report.type == DeviceReport::Removed) {
      m_reportWatches.clear();
      m_reports.reset();
      m_reading.reset();
      m_readTimer.stop();
      m_listener.reported(report);
    } else {
      m_doorbell = {};
      m_failures = 0;
      listen();
      m_listener.reported(report);
      read();
    }
  }
}

void MouseWatch::lookAnew() {
  if (m_presence.isThere) {
    m_presence = {};
    m_reportWatches.clear();
    m_reports.reset();
    m_reading.reset();
  }
  look();
}

void MouseWatch::listen() {
  m_reportWatches.clear();
  m_reports = std::make_unique<HidInputReports>(NerinAction::mouseVid, NerinAction::mousePid);
  for (const int descriptor : m_reports->descriptors()) {
    if (auto watch = m_loop.watch(descriptor, [this] { hear(); })) {
      m_reportWatches.push_back(std::move(watch));
    }
  }
  if (!m_reports->hasAny()) {
    LXLogger::debug("The mouse has no report that would tell of its own buttons");
  }
}

void MouseWatch::hear() {
  const std::size_t heard = m_reports->descriptors().size();
  for (const HidInputReport& report : m_reports->take()) {
    if (!m_listener.heard(report)) {
      m_doorbell.heard(report.id, now());
    }
  }
  if (m_reports->descriptors().size() != heard) {
    // A mouse that goes makes its nodes readable until they are left alone.
    m_reportWatches.clear();
  }
  if (const auto due = m_doorbell.due()) {
    m_readTimer.startAt(*due);
  }
}

void MouseWatch::ring() {
  if (m_presence.isThere) {
    m_readTimer.startIn(Doorbell::quiet);
  }
}

void MouseWatch::ringByFile() {
  if (!m_doorbell.isEcho(now())) {
    ring();
  }
}

void MouseWatch::note(int slot) {
  if (m_reading && m_reading->slot != slot) {
    // The level of that slot is not known yet.
    m_reading = MouseReading{slot, -1};
    ring();
  }
}

void MouseWatch::read() {
  const Read result = readMouse();
  m_doorbell.transferred(now());
  if (isBusy(result.error)) {
    m_readTimer.startIn(retryTime);
    return;
  }
  if (result.error || result.value.slot >= slotCount) {
    m_doorbell.answered(false, now());
    // A mouse that was just plugged in may need a moment; one that never answers is left alone.
    if (!m_reading && m_presence.isThere && ++m_failures < failureLimit) {
      m_readTimer.startIn(failurePause * m_failures);
    }
    return;
  }
  const bool isLevelNew = m_reading && m_reading->dpiLevel < 0;
  const std::optional<MouseReading> before = std::exchange(m_reading, result.value);
  if (!before) {
    m_listener.came(*m_reading);
    return;
  }
  const auto changes = changesOf(before, *m_reading);
  m_doorbell.answered(!changes.empty(), now());
  for (const DeviceReport& report : changes) {
    const bool isNoNews = report.type == DeviceReport::DpiChanged && (isLevelNew || m_isTrial);
    if (!isNoNews) {
      m_listener.reported(report);
    }
  }
}

MouseWatch::Written MouseWatch::writeSlot(
    const std::function<std::optional<int>(int slot)>& found) {
  const NerinAction::MouseHold hold;
  if (NerinAction::MouseHold::error()) {
    return Written::Busy;
  }
  const auto active = NerinAction::getProfileIndexByDevice();
  if (!active.outcome.isDone()) {
    m_doorbell.transferred(now());
    return Written::Failed;
  }
  const std::optional<int> wanted = found(active.value);
  bool isDone = true;
  if (wanted) {
    isDone = NerinAction::setProfileIndexToDevice(static_cast<std::uint8_t>(*wanted)).isDone();
  }
  m_doorbell.transferred(now());
  if (!wanted) {
    return Written::Unchanged;
  }
  if (!isDone) {
    return Written::Failed;
  }
  note(*wanted);
  return Written::Done;
}
