#include "Tests/UsbStack/Guest.h"

#include <cerrno>
#include <fstream>
#include <thread>

#include <fcntl.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

constexpr const char* controller = "/sys/devices/platform/vhci_hcd.0";
constexpr std::uint8_t setReportType = 0x21;
constexpr std::uint8_t getReportType = 0xA1;

// The controller has two buses; this is the one for full speed.
fs::path bus() {
  for (const auto& entry : fs::directory_iterator(controller)) {
    if (entry.path().filename().string().starts_with("usb") &&
        lineOf(entry.path() / "speed") == "480") {
      return entry;
    }
  }
  return {};
}

// The first entry below `folder` whose name begins so; empty without one.
fs::path firstIn(const fs::path& folder, const std::string& begin) {
  std::error_code error;
  for (const auto& entry : fs::directory_iterator(folder, error)) {
    if (entry.path().filename().string().starts_with(begin)) {
      return entry;
    }
  }
  return {};
}

// Below the interface lies the HID device, "0003:264A:1001.0001".
fs::path hidDevice(const fs::path& interface) {
  return firstIn(interface, "0003:");
}

}  // namespace

bool eventually(const std::function<bool()>& condition, std::chrono::milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!condition()) {
    if (std::chrono::steady_clock::now() >= end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
  }
  return true;
}

std::string lineOf(const fs::path& file) {
  std::ifstream stream(file);
  std::string line;
  std::getline(stream, line);
  return line;
}

int writeLine(const fs::path& file, const std::string& text) {
  const int descriptor = open(file.c_str(), O_WRONLY | O_CLOEXEC);
  if (descriptor < 0) {
    return errno;
  }
  const int error = write(descriptor, text.data(), text.size()) < 0 ? errno : 0;
  close(descriptor);
  return error;
}

PluggedMouse::PluggedMouse(unsigned port) {
  const fs::path root = bus();
  const std::string number = root.filename().string().substr(3);
  m_folder = root / (number + "-" + std::to_string(port + 1));
}

fs::path PluggedMouse::interface(int number) const {
  return m_folder / (m_folder.filename().string() + ":1." + std::to_string(number));
}

std::string PluggedMouse::driver(int interface) const {
  std::error_code error;
  return fs::read_symlink(this->interface(interface) / "driver", error).filename();
}

fs::path PluggedMouse::hidraw(int interface) const {
  const fs::path node = firstIn(hidDevice(this->interface(interface)) / "hidraw", "hidraw");
  return node.empty() ? node : "/dev" / node.filename();
}

fs::path PluggedMouse::events() const {
  const fs::path input = firstIn(hidDevice(interface(0)) / "input", "input");
  const fs::path node = firstIn(input, "event");
  return node.empty() ? node : "/dev/input" / node.filename();
}

std::string PluggedMouse::power(const std::string& file) const {
  return lineOf(m_folder / "power" / file);
}

void PluggedMouse::setPower(const std::string& file, const std::string& text) const {
  EXPECT_EQ(writeLine(m_folder / "power" / file, text), 0) << file;
}

bool PluggedMouse::isReady() const {
  const auto isThere = [](const fs::path& node) { return !node.empty() && fs::exists(node); };
  return isThere(hidraw(0)) && isThere(hidraw(1)) && isThere(events());
}

bool PluggedMouse::isGone() const {
  return !fs::exists(m_folder);
}

Host::Host() {
  m_requester.listenDevWithVid(VirtualMouse::vendorId, VirtualMouse::productId);
}

bool Host::set(std::uint16_t value, std::uint16_t interface, Bytes data) {
  LXDeviceRequest request{.bmRequestType = setReportType,
                          .bRequest = 0x09,
                          .wValue = value,
                          .wIndex = interface,
                          .data = data};
  const bool isDone = m_requester.sendDeviceRequest(request);
  m_error = request.error;
  return isDone && request.wLenDone == data.size();
}

Bytes Host::get(std::uint16_t value, std::uint16_t interface, std::size_t size) {
  Bytes data(size, 0xEE);
  LXDeviceRequest request{.bmRequestType = getReportType,
                          .bRequest = 0x01,
                          .wValue = value,
                          .wIndex = interface,
                          .data = data};
  const bool isDone = m_requester.sendDeviceRequest(request);
  m_error = request.error;
  data.resize(isDone ? request.wLenDone : 0);
  return data;
}

bool Host::command(Bytes bytes) {
  bytes.resize(8);
  return set(0x0300, 0, std::move(bytes));
}

bool Host::writeReport(const Bytes& report) {
  return set(static_cast<std::uint16_t>(0x0300 + report[0]), 1, report);
}

bool Host::writeMacro(const Bytes& report) {
  return command({0xC4, 0x0B, report[2], 1}) && writeReport(report);
}

UsbStackTest::UsbStackTest() {
  plug();
}

UsbStackTest::~UsbStackTest() {
  unplug();
}

void UsbStackTest::plug() {
  m_mouse.plug();
  EXPECT_TRUE(eventually([this] { return m_plugged.isReady(); })) << "the mouse has no nodes";
}

void UsbStackTest::unplug() {
  m_mouse.unplug();
  EXPECT_TRUE(eventually([this] { return m_plugged.isGone(); })) << "the kernel keeps the mouse";
}
