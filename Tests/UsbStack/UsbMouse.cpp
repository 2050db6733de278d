#include "Tests/UsbStack/UsbMouse.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fstream>
#include <string>
#include <system_error>
#include <utility>

#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include "Tests/UsbStack/MouseDescriptors.h"

namespace {

constexpr const char* attachFile = "/sys/devices/platform/vhci_hcd.0/attach";
constexpr int fullSpeed = 2;

[[noreturn]] void fail(const char* what) {
  throw std::system_error(errno, std::generic_category(), what);
}

// A class request to an interface carries a report; what else has the class type only sets how
// often the mouse repeats itself and which protocol it speaks, which changes nothing here.
bool isReport(const SetupPacket& setup) {
  constexpr std::uint8_t getReport = 0x01;
  constexpr std::uint8_t setReport = 0x09;
  return (setup.requestType & 0x60U) == 0x20U &&
         (setup.request == getReport || setup.request == setReport);
}

bool isStandard(const SetupPacket& setup) {
  return (setup.requestType & 0x60U) == 0;
}

void answerStandard(int socket, const UsbIpRequest& request) {
  std::optional<std::vector<std::uint8_t>> answer = std::vector<std::uint8_t>();
  if (isStandard(request.setup)) {
    answer = standardAnswer(request.setup);
  }
  if (!answer) {
    answerUsbIp(socket, request, -EPIPE, {});
    return;
  }
  answer->resize(std::min<std::size_t>(answer->size(), request.length));
  answerUsbIp(socket, request, 0, *answer, request.length);
}

}  // namespace

UsbMouse::UsbMouse(unsigned port) : m_port(port) {}

UsbMouse::UsbMouse(unsigned port, const std::filesystem::path& memoryFile)
    : m_port(port), m_mouse(memoryFile) {}

UsbMouse::~UsbMouse() {
  unplug();
}

void UsbMouse::plug() {
  std::array<int, 2> ends{};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, ends.data()) != 0) {
    fail("no connection to the host controller");
  }
  m_socket = ends[0];
  m_wake = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
  m_isEnding = false;
  m_mouse.attach();
  m_thread = std::thread([this] { serve(); });
  // The kernel keeps the other end as its own.
  std::ofstream attach(attachFile);
  attach << m_port << ' ' << ends[1] << ' ' << (m_port + 1) << ' ' << fullSpeed << std::flush;
  const bool isAttached = attach.good();
  close(ends[1]);
  if (!isAttached) {
    fail("the host controller does not take the mouse");
  }
}

void UsbMouse::unplug() {
  if (!m_thread.joinable()) {
    return;
  }
  {
    const std::lock_guard lock(m_mutex);
    m_isEnding = true;
  }
  wake();
  m_thread.join();
  close(m_wake);
  m_wake = -1;
}

void UsbMouse::setAnswerTime(std::optional<std::chrono::milliseconds> time) {
  const std::lock_guard lock(m_mutex);
  m_answerTime = time;
}

std::optional<SetupPacket> UsbMouse::pendingTransfer() {
  const std::lock_guard lock(m_mutex);
  return m_reports.empty() ? std::nullopt : std::optional(m_reports.front().request.setup);
}

unsigned UsbMouse::takenBack() {
  const std::lock_guard lock(m_mutex);
  return m_takenBack;
}

void UsbMouse::moveEvery(std::chrono::milliseconds interval) {
  const std::lock_guard lock(m_mutex);
  m_interval = interval;
  m_nextStep = Clock::now() + interval;
  wake();
}

unsigned UsbMouse::stepsReported() {
  const std::lock_guard lock(m_mutex);
  return m_steps;
}

void UsbMouse::wake() const {
  const std::uint64_t one = 1;
  if (m_wake >= 0 && write(m_wake, &one, sizeof one) < 0) {
    fail("the thread of the mouse cannot be woken");
  }
}

void UsbMouse::serve() {
  for (bool isConnected = true; isConnected;) {
    std::array<pollfd, 2> entries{pollfd{m_socket, POLLIN, 0}, pollfd{m_wake, POLLIN, 0}};
    poll(entries.data(), entries.size(), waitingTime());
    std::uint64_t wakes = 0;
    if (entries[1].revents != 0 && read(m_wake, &wakes, sizeof wakes) < 0) {
      fail("the thread of the mouse cannot be told");
    }
    const std::lock_guard lock(m_mutex);
    isConnected = !m_isEnding && (entries[0].revents == 0 || takeMessage());
    if (isConnected) {
      finishWhatIsDue();
    }
  }
  const std::lock_guard lock(m_mutex);
  failWhatIsPending();
  shutdown(m_socket, SHUT_RDWR);
  close(m_socket);
  m_mouse.detach();
}

// Until the next thing is due, in the form of poll().
int UsbMouse::waitingTime() {
  const std::lock_guard lock(m_mutex);
  std::optional<Clock::time_point> next;
  if (m_interval.count() > 0) {
    next = m_nextStep;
  }
  for (const Pending& pending : m_reports) {
    if (pending.due && (!next || *pending.due < *next)) {
      next = pending.due;
    }
  }
  if (!next) {
    return -1;
  }
  const auto rest = std::chrono::ceil<std::chrono::milliseconds>(*next - Clock::now());
  return static_cast<int>(std::max<std::chrono::milliseconds::rep>(rest.count(), 0));
}

bool UsbMouse::takeMessage() {
  std::optional<UsbIpRequest> request = receiveUsbIp(m_socket);
  if (!request) {
    return false;
  }
  if (request->isUnlink) {
    takeBack(*request);
  } else {
    takeRequest(std::move(*request));
  }
  return true;
}

void UsbMouse::takeRequest(UsbIpRequest request) {
  if (request.endpoint != 0) {
    m_inputs.push_back(std::move(request));
  } else if (isReport(request.setup)) {
    Pending pending{std::move(request), std::nullopt};
    if (m_answerTime) {
      pending.due = Clock::now() + *m_answerTime;
    }
    m_reports.push_back(std::move(pending));
  } else {
    answerStandard(m_socket, request);
  }
}

void UsbMouse::takeBack(const UsbIpRequest& unlink) {
  const auto reports = std::erase_if(
      m_reports, [&](const Pending& pending) { return pending.request.number == unlink.unlinked; });
  const auto inputs = std::erase_if(
      m_inputs, [&](const UsbIpRequest& request) { return request.number == unlink.unlinked; });
  m_takenBack += static_cast<unsigned>(reports);
  answerUnlink(m_socket, unlink, reports + inputs > 0 ? -ECONNRESET : 0);
}

void UsbMouse::finishWhatIsDue() {
  const auto now = Clock::now();
  while (!m_reports.empty() && m_reports.front().due && *m_reports.front().due <= now) {
    const UsbIpRequest request = std::move(m_reports.front().request);
    m_reports.erase(m_reports.begin());
    transfer(request);
  }
  if (m_interval.count() > 0 && m_nextStep <= now) {
    m_nextStep = now + m_interval;
    move();
  }
}

void UsbMouse::move() {
  constexpr std::array<std::uint8_t, motionReportSize> stepToTheRight{0, 1, 0, 0};
  const auto waiting =
      std::find_if(m_inputs.begin(), m_inputs.end(),
                   [](const UsbIpRequest& request) { return request.endpoint == motionEndpoint; });
  if (waiting != m_inputs.end()) {
    answerUsbIp(m_socket, *waiting, 0, stepToTheRight);
    m_inputs.erase(waiting);
    ++m_steps;
  }
}

void UsbMouse::transfer(const UsbIpRequest& request) {
  std::vector<std::uint8_t> data = request.data;
  data.resize(request.length);
  const TransferResult result = m_mouse.controlTransfer(request.setup, data);
  if (result.status != TransferStatus::Done) {
    answerUsbIp(m_socket, request, -EPIPE, {});
    return;
  }
  data.resize(result.bytes);
  answerUsbIp(m_socket, request, 0, data, result.bytes);
}

void UsbMouse::failWhatIsPending() {
  for (const Pending& pending : m_reports) {
    answerUsbIp(m_socket, pending.request, -EPROTO, {});
  }
  for (const UsbIpRequest& request : m_inputs) {
    answerUsbIp(m_socket, request, -EPROTO, {});
  }
  m_reports.clear();
  m_inputs.clear();
}
