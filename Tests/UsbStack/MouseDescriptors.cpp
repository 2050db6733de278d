#include "Tests/UsbStack/MouseDescriptors.h"

#include <array>
#include <string_view>

namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::uint8_t low(std::size_t value) {
  return static_cast<std::uint8_t>(value & 0xFFU);
}
constexpr std::uint8_t high(std::size_t value) {
  return static_cast<std::uint8_t>(value >> 8U);
}

// A pointer with five buttons and a wheel, and the command of eight bytes, which has no number.
constexpr std::array<std::uint8_t, 68> pointerReports{
    0x05, 0x01, 0x09, 0x02, 0xA1, 0x01,  // a mouse
    0x09, 0x01, 0xA1, 0x00,              //   with a pointer:
    0x05, 0x09, 0x19, 0x01, 0x29, 0x05,  //   buttons 1 to 5,
    0x15, 0x00, 0x25, 0x01,              //   pressed or not,
    0x95, 0x05, 0x75, 0x01, 0x81, 0x02,  //   five bits
    0x95, 0x01, 0x75, 0x03, 0x81, 0x03,  //   and three without a meaning;
    0x05, 0x01, 0x09, 0x30, 0x09, 0x31,  //   X and Y
    0x09, 0x38,                          //   and the wheel,
    0x15, 0x81, 0x25, 0x7F,              //   -127 to 127,
    0x75, 0x08, 0x95, 0x03, 0x81, 0x06,  //   each a byte, relative
    0xC0,                                //
    0x06, 0xA0, 0xFF, 0x09, 0x01,        //   the vendor's own:
    0x15, 0x00, 0x26, 0xFF, 0x00,        //   bytes,
    0x75, 0x08, 0x95, 0x08, 0xB1, 0x02,  //   eight in a feature report
    0xC0,
};
// Declares one long report; its number is not among the counted bytes.
constexpr std::array<std::uint8_t, 9> longReport(std::uint8_t id, std::size_t size) {
  return {0x85, id, 0x09, id, 0x96, low(size - 1), high(size - 1), 0xB1, 0x02};
}

Bytes vendorReports() {
  Bytes bytes{0x06, 0xA1, 0xFF, 0x09, 0x01, 0xA1, 0x01,   // the vendor's own:
              0x15, 0x00, 0x26, 0xFF, 0x00, 0x75, 0x08};  // bytes
  for (const auto& report :
       {longReport(4, VirtualMouse::macroReportSize), longReport(5, VirtualMouse::imageReportSize),
        longReport(6, VirtualMouse::nameReportSize)}) {
    bytes.insert(bytes.end(), report.begin(), report.end());
  }
  bytes.push_back(0xC0);
  return bytes;
}

Bytes reportsOf(int interface) {
  return interface == 0 ? Bytes(pointerReports.begin(), pointerReports.end()) : vendorReports();
}

Bytes deviceDescriptor() {
  return {18,
          1,
          0x00,
          0x02,  // USB 2.0
          0,
          0,
          0,   // the class is told by each interface
          64,  // endpoint 0
          low(VirtualMouse::vendorId),
          high(VirtualMouse::vendorId),
          low(VirtualMouse::productId),
          high(VirtualMouse::productId),
          0x00,
          0x01,  // release 1.0
          1,
          2,
          0,  // texts: maker, product, no serial number
          1};
}

void append(Bytes& bytes, const Bytes& more) {
  bytes.insert(bytes.end(), more.begin(), more.end());
}

Bytes hidDescriptor(int interface) {
  const std::size_t size = reportsOf(interface).size();
  return {9, 0x21, 0x11, 0x01, 0, 1, 0x22, low(size), high(size)};
}

// An interface, its HID and its one endpoint, which is asked every `interval` milliseconds.
void appendInterface(Bytes& bytes, int number, bool isBootMouse, std::uint8_t interval) {
  const auto boot = static_cast<std::uint8_t>(isBootMouse ? 1 : 0);
  const auto mouse = static_cast<std::uint8_t>(isBootMouse ? 2 : 0);
  const auto index = static_cast<std::uint8_t>(number);
  append(bytes, {9, 4, index, 0, 1, 3, boot, mouse, 0});
  append(bytes, hidDescriptor(number));
  append(bytes,
         {7, 5, static_cast<std::uint8_t>(0x80 + motionEndpoint + index), 3, 8, 0, interval});
}

// 100 mA from the bus; can wake its host.
Bytes configurationDescriptor() {
  Bytes bytes{9, 2, 0, 0, 2, 1, 0, 0xA0, 50};
  appendInterface(bytes, 0, true, 1);
  appendInterface(bytes, 1, false, 10);
  bytes[2] = low(bytes.size());
  bytes[3] = high(bytes.size());
  return bytes;
}

std::optional<Bytes> text(int number) {
  constexpr std::uint8_t textType = 3;
  if (number == 0) {
    return Bytes{4, textType, 0x09, 0x04};  // English only
  }
  constexpr std::array<std::string_view, 2> texts{"Test bench", "Virtual mouse"};
  if (number > static_cast<int>(texts.size())) {
    return std::nullopt;
  }
  const std::string_view words = texts[static_cast<std::size_t>(number - 1)];
  Bytes bytes{static_cast<std::uint8_t>(2 + 2 * words.size()), textType};
  for (const char letter : words) {
    append(bytes, {static_cast<std::uint8_t>(letter), 0});
  }
  return bytes;
}

std::optional<Bytes> descriptor(const SetupPacket& setup) {
  const int number = setup.value & 0xFF;
  switch (setup.value >> 8U) {
    case 0x01:
      return deviceDescriptor();
    case 0x02:
      return configurationDescriptor();
    case 0x03:
      return text(number);
    case 0x21:
      return hidDescriptor(setup.index);
    case 0x22:
      return reportsOf(setup.index);
    default:
      return std::nullopt;
  }
}

}  // namespace

std::optional<std::vector<std::uint8_t>> standardAnswer(const SetupPacket& setup) {
  constexpr std::uint8_t getStatus = 0;
  constexpr std::uint8_t getDescriptor = 6;
  if ((setup.requestType & 0x80U) == 0) {
    // The configuration, and features such as the waking of the host: taken without a word.
    return Bytes{};
  }
  if (setup.request == getStatus) {
    return Bytes{0, 0};
  }
  return setup.request == getDescriptor ? descriptor(setup) : std::nullopt;
}
