#include "Kit/Device/HidDeviceRequester.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <optional>
#include <span>
#include <system_error>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <hidapi.h>
#include <unistd.h>

#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/TransferLog.h"
#include "Kit/Device/HidNodes.h"
#include "Kit/Device/HidPresenceMonitor.h"

namespace {

constexpr std::size_t interfaceCount = 2;
constexpr std::uint8_t setReportType = 0x21;
constexpr std::uint8_t setReport = 0x09;
constexpr std::uint8_t getReportType = 0xA1;
constexpr std::uint8_t getReport = 0x01;
constexpr unsigned featureReport = 3;
// The hidraw call encodes the size in 14 bits.
constexpr std::size_t maximumReportSize = 0x3FFF;
constexpr auto lookInterval = std::chrono::milliseconds(500);
constexpr const char* ruleFile = "/etc/udev/rules.d/60-nerin.rules";
constexpr const char* ruleName = "60-nerin.rules";

struct CloseHid {
  void operator()(hid_device* device) const { hid_close(device); }
};
using OpenNode = std::unique_ptr<hid_device, CloseHid>;

std::string hex(unsigned value, std::size_t digits) {
  constexpr std::string_view symbols = "0123456789abcdef";
  std::string text(digits, '0');
  for (auto digit = text.rbegin(); digit != text.rend(); ++digit, value >>= 4U) {
    *digit = symbols[value & 0xFU];
  }
  return text;
}

std::string errorText(int error) {
  return std::generic_category().message(error);
}

// What the kernel reports after the mouse is unplugged: at once, while the bus still tries to reach
// it, and after the transfer's timeout of five seconds.
bool isGone(int error) {
  return error == ENODEV || error == EPROTO || error == ETIMEDOUT;
}

bool isDenied(int error) {
  return error == EACCES || error == EPERM;
}

bool isSet(const LXDeviceRequest& request) {
  return request.bmRequestType == setReportType && request.bRequest == setReport;
}

bool isGet(const LXDeviceRequest& request) {
  return request.bmRequestType == getReportType && request.bRequest == getReport;
}

std::uint8_t reportIdOf(const LXDeviceRequest& request) {
  return static_cast<std::uint8_t>(request.wValue & 0xFFU);
}

// A report without a number is sent without an id byte, but hidraw expects one in front.
std::size_t shiftOf(const LXDeviceRequest& request) {
  return reportIdOf(request) == 0 ? 1 : 0;
}

// Whether hidraw can do the transfer: it knows feature reports and nothing else.
bool isFeatureRequest(const LXDeviceRequest& request) {
  if ((!isSet(request) && !isGet(request)) ||
      static_cast<unsigned>(request.wValue >> 8U) != featureReport ||
      request.wIndex >= interfaceCount || request.data.empty() ||
      request.data.size() + shiftOf(request) > maximumReportSize) {
    return false;
  }
  // The kernel takes the report number only from the first byte.
  return isGet(request) || shiftOf(request) == 1 || request.data[0] == reportIdOf(request);
}

// Returns the errno of the failure, or 0.
int transfer(hid_device* device, LXDeviceRequest& request) {
  const std::size_t shift = shiftOf(request);
  const auto offset = static_cast<std::ptrdiff_t>(shift);
  std::vector<std::uint8_t> buffer(request.data.size() + shift);
  buffer[0] = reportIdOf(request);
  if (isSet(request)) {
    std::copy(request.data.begin(), request.data.end(), buffer.begin() + offset);
  }
  errno = 0;
  const int result = isSet(request) ? hid_send_feature_report(device, buffer.data(), buffer.size())
                                    : hid_get_feature_report(device, buffer.data(), buffer.size());
  if (result < 0) {
    return errno != 0 ? errno : EIO;
  }
  const auto count = static_cast<std::size_t>(result);
  const std::size_t done = std::min(count - std::min(count, shift), request.data.size());
  if (isGet(request)) {
    std::copy_n(buffer.begin() + offset, done, request.data.begin());
  }
  request.wLenDone = static_cast<std::uint32_t>(done);
  return 0;
}

void logTransfer(const LXDeviceRequest& request) {
  const std::string name = (isSet(request) ? "SET " : "GET ") + hex(request.wValue, 4) + " " +
                           std::to_string(request.wIndex) + " ";
  const std::span<const std::uint8_t> bytes(request.data);
  LXLogger::debug(
      request.error
          ? name + "failed: " + errorText(request.error.value())
          : name + transferlog::textOf(isSet(request) ? bytes : bytes.first(request.wLenDone)));
}

}  // namespace

struct HidDeviceRequester::State {
  using Clock = std::chrono::steady_clock;

  // The nodes of one mouse by interface number.
  using Nodes = std::array<std::optional<HidNode>, interfaceCount>;

  struct Absence {
    enum class Reason { NotListening, NothingFound, HalfFound, CannotOpen, None };
    Reason reason = Reason::NotListening;
    Nodes found;
    std::string node;  // that cannot be opened
    int error = 0;     // the errno of the failure

    bool operator==(const Absence&) const = default;
  };

  State(std::filesystem::path udevControl, std::vector<std::filesystem::path> folders,
        const std::filesystem::path& nodeFolder)
      : monitor(std::move(udevControl), nodeFolder), ruleFolders(std::move(folders)) {}

  bool isOn() const { return absence.reason == Absence::Reason::None; }
  void refresh();
  void look();
  void close();
  Absence findAndOpen();
  Absence openAll(const Nodes& nodes);
  std::string foundNames() const;
  std::string explanation() const;
  bool hasRule() const;
  std::string idText() const { return hex(vid, 4) + ":" + hex(pid, 4); }

  HidPresenceMonitor monitor;
  std::vector<std::filesystem::path> ruleFolders;
  bool isPrintMsg = false;
  std::uint16_t vid = 0;
  std::uint16_t pid = 0;
  bool isLookDue = false;
  std::uint64_t connection = 0;  // counts the openings
  Clock::time_point lastLook;
  std::array<OpenNode, interfaceCount> devices;
  Absence absence;
  Absence logged;  // already in the log, so that each change appears once
};

void HidDeviceRequester::State::close() {
  for (OpenNode& device : devices) {
    device.reset();
  }
  if (isOn()) {
    absence = Absence();
    absence.reason = Absence::Reason::NothingFound;
  }
}

// Updates the open nodes; cheap if nothing happened.
void HidDeviceRequester::State::refresh() {
  if (absence.reason == Absence::Reason::NotListening) {
    return;
  }
  const HidPresenceMonitor::News news = monitor.takeNews();
  const auto hasGone = [&](const std::optional<HidNode>& node) {
    return node && std::find(news.goneSysPaths.begin(), news.goneSysPaths.end(), node->sysPath) !=
                       news.goneSysPaths.end();
  };
  if (isOn() && std::any_of(absence.found.begin(), absence.found.end(), hasGone)) {
    close();
  }
  // A mouse that is there but unusable may become usable without an event, for example when the
  // permissions of its nodes change.
  const bool mayChangeSilently =
      !monitor.isReliable() || (!isOn() && absence.reason != Absence::Reason::NothingFound);
  const bool isTime = Clock::now() - lastLook >= lookInterval;
  if (isLookDue || news.isAny || (mayChangeSilently && isTime)) {
    look();
  }
}

void HidDeviceRequester::State::look() {
  isLookDue = false;
  lastLook = Clock::now();
  absence = findAndOpen();
  if (absence == logged) {
    return;
  }
  logged = absence;
  if (isOn()) {
    LXLogger::debug("The mouse " + idText() + " is there: " + foundNames());
    return;
  }
  std::string line = explanation();
  std::replace(line.begin(), line.end(), '\n', ' ');
  // Other failures come and go while a mouse is plugged in or unplugged.
  if (absence.reason == Absence::Reason::CannotOpen && isDenied(absence.error)) {
    LXLogger::warning(line);
  } else {
    LXLogger::debug(line);
  }
}

HidDeviceRequester::State::Absence HidDeviceRequester::State::findAndOpen() {
  // Sorted by device, so both interfaces of a mouse are adjacent even if there are two mice.
  const std::vector<HidNode> nodes = findHidNodes(vid, pid);
  if (isOn()) {
    const bool areStillThere = std::all_of(
        absence.found.begin(), absence.found.end(), [&](const std::optional<HidNode>& node) {
          return std::find(nodes.begin(), nodes.end(), *node) != nodes.end();
        });
    if (areStillThere) {
      return absence;
    }
  }
  close();

  Absence best;
  best.reason = Absence::Reason::NothingFound;
  for (auto first = nodes.begin(); first != nodes.end();) {
    const auto last = std::find_if(first, nodes.end(), [&](const HidNode& node) {
      return node.usbDevice != first->usbDevice;
    });
    Nodes found;
    for (; first != last; ++first) {
      if (first->interfaceNumber >= 0 &&
          static_cast<std::size_t>(first->interfaceNumber) < interfaceCount) {
        found[static_cast<std::size_t>(first->interfaceNumber)] = *first;
      }
    }
    Absence absenceOfThis = openAll(found);
    if (absenceOfThis.reason == Absence::Reason::None) {
      return absenceOfThis;
    }
    // A mouse that only lacks permissions is more informative than half a mouse.
    if (best.reason < absenceOfThis.reason) {
      best = std::move(absenceOfThis);
    }
  }
  return best;
}

HidDeviceRequester::State::Absence HidDeviceRequester::State::openAll(const Nodes& nodes) {
  Absence result;
  result.reason = Absence::Reason::HalfFound;
  result.found = nodes;
  if (!std::all_of(nodes.begin(), nodes.end(),
                   [](const std::optional<HidNode>& node) { return node.has_value(); })) {
    return result;
  }
  std::array<OpenNode, interfaceCount> opened;
  for (std::size_t index = 0; index < interfaceCount; ++index) {
    const std::string& path = nodes[index]->path;
    opened[index].reset(hid_open_path(path.c_str()));
    if (!opened[index]) {
      // hidapi gives only a text in the user's language, so the kernel is asked for the error
      // number.
      const int descriptor = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
      result.error = descriptor < 0 ? errno : EIO;
      if (descriptor >= 0) {
        ::close(descriptor);
      }
      result.reason = Absence::Reason::CannotOpen;
      result.node = path;
      return result;
    }
  }
  devices = std::move(opened);
  ++connection;
  result.reason = Absence::Reason::None;
  return result;
}

bool HidDeviceRequester::State::hasRule() const {
  return std::any_of(ruleFolders.begin(), ruleFolders.end(),
                     [](const std::filesystem::path& folder) {
                       std::error_code ignored;
                       return std::filesystem::exists(folder / ruleName, ignored);
                     });
}

std::string HidDeviceRequester::State::foundNames() const {
  std::string names;
  for (const std::optional<HidNode>& node : absence.found) {
    if (node) {
      names += (names.empty() ? "interface " : ", interface ") +
               std::to_string(node->interfaceNumber) + " (" + node->path + ")";
    }
  }
  return names.empty() ? "no interface" : names;
}

std::string HidDeviceRequester::State::explanation() const {
  const std::string lookedFor = "Looked for a USB mouse " + idText();
  switch (absence.reason) {
    case Absence::Reason::None:
      return {};
    case Absence::Reason::NotListening:
      return "Not looking for a mouse yet.";
    case Absence::Reason::NothingFound:
      return lookedFor + " and found none. Plug the mouse in.";
    case Absence::Reason::HalfFound:
      return lookedFor + " and found only a part of it: " + foundNames() +
             ", but interfaces 0 and 1 are both needed. Unplug the mouse and plug it in again.";
    case Absence::Reason::CannotOpen:
      break;
  }
  const std::string found = lookedFor + " and found " + foundNames() + ", but " + absence.node;
  if (!isDenied(absence.error)) {
    return found + " cannot be opened: " + errorText(absence.error) +
           ". Unplug the mouse and plug it in again.";
  }
  if (hasRule()) {
    return found + " may not be opened by this user, although the rule " + ruleName +
           " is installed. Unplug the mouse and plug it in again.";
  }
  return found + " may not be opened by this user. Write this line into " + ruleFile + ":\n" +
         udevRule(vid, pid) +
         "\nand then run: sudo udevadm control --reload-rules && sudo udevadm trigger "
         "--subsystem-match=hidraw";
}

HidDeviceRequester::HidDeviceRequester(std::filesystem::path udevControl,
                                       std::vector<std::filesystem::path> ruleFolders,
                                       const std::filesystem::path& nodeFolder)
    : m_state(std::make_unique<State>(std::move(udevControl), std::move(ruleFolders), nodeFolder)) {
}

HidDeviceRequester::~HidDeviceRequester() = default;

void HidDeviceRequester::setIsPrintMsg(bool isPrintMsg) {
  m_state->isPrintMsg = isPrintMsg;
}

void HidDeviceRequester::listenDevWithVid(std::uint16_t vid, std::uint16_t pid) {
  State& state = *m_state;
  if (state.absence.reason != State::Absence::Reason::NotListening) {
    if (state.vid == vid && state.pid == pid) {
      if (!state.isOn()) {
        state.look();
      }
      return;
    }
    state.close();
  }
  state.vid = vid;
  state.pid = pid;
  state.logged = {};
  state.look();
}

bool HidDeviceRequester::isDevOn() {
  m_state->refresh();
  return m_state->isOn();
}

LXDeviceAbsence HidDeviceRequester::absence() {
  m_state->refresh();
  switch (m_state->absence.reason) {
    case State::Absence::Reason::None:
      return LXDeviceAbsence::None;
    case State::Absence::Reason::NotListening:
    case State::Absence::Reason::NothingFound:
      return LXDeviceAbsence::NotFound;
    case State::Absence::Reason::HalfFound:
      return LXDeviceAbsence::NeedsReplug;
    case State::Absence::Reason::CannotOpen:
      break;
  }
  if (m_state->absence.error == EBUSY) {
    return LXDeviceAbsence::InUse;
  }
  // A rule acts on what is plugged in after it was installed.
  return isDenied(m_state->absence.error) && !m_state->hasRule() ? LXDeviceAbsence::NoPermission
                                                                 : LXDeviceAbsence::NeedsReplug;
}

void HidDeviceRequester::resetCurrDevice() {
  if (m_state->absence.reason == State::Absence::Reason::NotListening) {
    return;
  }
  m_state->close();
  m_state->look();
}

std::uint64_t HidDeviceRequester::connection() const {
  return m_state->connection;
}

LXDeviceRequester::Claim HidDeviceRequester::claim(std::chrono::milliseconds limit,
                                                   std::error_code& error) {
  error.clear();
  const std::filesystem::path& folder = LXPlatform::current().runtimeFolder;
  if (folder.empty() || !isDevOn()) {
    return nullptr;
  }
  // The kernel names a device by the port that it is plugged into: "1-4.2".
  const std::filesystem::path device(m_state->absence.found[0]->usbDevice);
  Claim held = FileLock::acquire(folder / ("mouse-" + device.filename().string() + ".lock"), limit);
  if (!held) {
    error = std::make_error_code(std::errc::device_or_resource_busy);
  }
  return held;
}

bool HidDeviceRequester::sendDeviceRequest(LXDeviceRequest& request) {
  request.wLenDone = 0;
  if (!isFeatureRequest(request)) {
    request.error = std::make_error_code(std::errc::invalid_argument);
    return false;
  }
  if (!isDevOn()) {
    request.error = std::make_error_code(std::errc::no_such_device);
    return false;
  }
  const int error = transfer(m_state->devices[request.wIndex].get(), request);
  request.error = {error, std::generic_category()};
  if (m_state->isPrintMsg) {
    logTransfer(request);
  }
  if (isGone(error)) {
    LXLogger::debug("The mouse " + m_state->idText() + " has gone: " + errorText(error));
    m_state->close();
    m_state->isLookDue = true;
  }
  return error == 0;
}

std::string HidDeviceRequester::explainAbsence() {
  m_state->refresh();
  return m_state->explanation();
}

std::string HidDeviceRequester::udevRule(std::uint16_t vid, std::uint16_t pid) {
  return R"(KERNEL=="hidraw*", SUBSYSTEM=="hidraw", ATTRS{idVendor}==")" + hex(vid, 4) +
         R"(", ATTRS{idProduct}==")" + hex(pid, 4) + R"(", TAG+="uaccess")";
}
