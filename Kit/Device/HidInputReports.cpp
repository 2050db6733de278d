#include "Kit/Device/HidInputReports.h"

#include <array>
#include <cerrno>
#include <cstddef>
#include <fstream>
#include <iterator>
#include <span>
#include <string>
#include <utility>

#include <fcntl.h>
#include <unistd.h>

#include "Kit/Core/LXLogger.h"
#include "Kit/Device/HidNodes.h"
#include "Kit/Device/ReportDescriptor.h"

namespace {

// What the kernel keeps for a reader; a longer report does not exist on this bus.
constexpr std::size_t longestReport = 4096;

std::vector<std::uint8_t> reportDescriptorOf(const HidNode& node) {
  std::ifstream file(node.sysPath + "/device/report_descriptor", std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace

struct HidInputReports::Ear {
  Ear(int openDescriptor, int number, VendorInputs vendorInputs)
      : descriptor(openDescriptor), interfaceNumber(number), inputs(std::move(vendorInputs)) {}
  ~Ear() { ::close(descriptor); }
  Ear(const Ear&) = delete;
  Ear& operator=(const Ear&) = delete;

  void take(std::vector<HidInputReport>& reports);

  int descriptor;
  int interfaceNumber;
  VendorInputs inputs;
  // The descriptor stays open for whoever still waits for it.
  bool isGone = false;
};

void HidInputReports::Ear::take(std::vector<HidInputReport>& reports) {
  std::array<std::uint8_t, longestReport> buffer;
  while (!isGone) {
    const ssize_t count = ::read(descriptor, buffer.data(), buffer.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      // Anything but "nothing yet" means that the mouse has gone.
      isGone = count == 0 || errno != EAGAIN;
      return;
    }
    const std::span<const std::uint8_t> bytes(buffer.data(), static_cast<std::size_t>(count));
    const std::uint8_t id = inputs.isNumbered ? bytes[0] : std::uint8_t{0};
    if (inputs.reportIds.contains(id)) {
      reports.push_back({interfaceNumber, id, {bytes.begin(), bytes.end()}});
    }
  }
}

HidInputReports::HidInputReports(std::uint16_t vid, std::uint16_t pid) {
  for (const HidNode& node : findHidNodes(vid, pid)) {
    const VendorInputs inputs = vendorInputsOf(reportDescriptorOf(node));
    if (inputs.reportIds.empty()) {
      continue;
    }
    m_hasAny = true;
    const int descriptor = ::open(node.path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor >= 0) {
      m_ears.push_back(std::make_unique<Ear>(descriptor, node.interfaceNumber, inputs));
    } else {
      LXLogger::debug("The reports of " + node.path + " cannot be heard");
    }
  }
}

HidInputReports::~HidInputReports() = default;

bool HidInputReports::hasAny() const {
  return m_hasAny;
}

std::vector<int> HidInputReports::descriptors() const {
  std::vector<int> result;
  result.reserve(m_ears.size());
  for (const auto& ear : m_ears) {
    if (!ear->isGone) {
      result.push_back(ear->descriptor);
    }
  }
  return result;
}

std::vector<HidInputReport> HidInputReports::take() {
  std::vector<HidInputReport> reports;
  for (const auto& ear : m_ears) {
    ear->take(reports);
  }
  return reports;
}
