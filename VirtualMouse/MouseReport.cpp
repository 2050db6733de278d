#include "VirtualMouse/MouseReport.h"

#include <array>

std::optional<MouseReport> MouseReport::byId(int id) {
  for (const MouseReport& report : {mouseMacroReport, mouseImageReport, mouseNameReport}) {
    if (report.id == id) {
      return report;
    }
  }
  return std::nullopt;
}

std::uint8_t MouseReport::checksum(std::span<const std::uint8_t> report) const {
  unsigned sum = 0;
  for (const std::uint8_t byte : report.subspan(headerSize, covered)) {
    sum += byte;
  }
  return static_cast<std::uint8_t>(0U - sum);
}

std::string hexText(std::uint16_t value) {
  const std::array<std::uint8_t, 2> bytes{static_cast<std::uint8_t>(value >> 8U),
                                          static_cast<std::uint8_t>(value & 0xFFU)};
  return hexText(bytes);
}
