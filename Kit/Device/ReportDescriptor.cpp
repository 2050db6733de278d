#include "Kit/Device/ReportDescriptor.h"

#include <cstddef>
#include <vector>

namespace {

constexpr std::uint8_t longItem = 0xFE;
constexpr std::uint32_t firstVendorPage = 0xFF00;
// A descriptor may save its state no deeper than this; a real one does so once or never.
constexpr std::size_t deepestStack = 16;

// The tag and the type of a short item, without its size.
enum Item : std::uint8_t {
  Input = 0x80,
  UsagePage = 0x04,
  ReportId = 0x84,
  Push = 0xA4,
  Pop = 0xB4,
  Usage = 0x08,
};

struct Globals {
  std::uint32_t page = 0;
  std::uint8_t reportId = 0;
};

bool isVendorPage(std::uint32_t page) {
  return page >= firstVendorPage && page <= 0xFFFF;
}

}  // namespace

VendorInputs vendorInputsOf(std::span<const std::uint8_t> descriptor) {
  VendorInputs result;
  Globals globals;
  std::vector<Globals> saved;
  bool hasVendorUsage = false;
  while (!descriptor.empty()) {
    const std::uint8_t prefix = descriptor[0];
    if (prefix == longItem) {
      const std::size_t size = descriptor.size() >= 2 ? descriptor[1] + std::size_t{3} : 3;
      if (size > descriptor.size()) {
        break;
      }
      descriptor = descriptor.subspan(size);
      continue;
    }
    const std::size_t size = (prefix & 3U) == 3 ? 4 : prefix & 3U;
    if (size + 1 > descriptor.size()) {
      break;
    }
    std::uint32_t value = 0;
    for (std::size_t index = 0; index < size; ++index) {
      value |= std::uint32_t{descriptor[1 + index]} << (8 * index);
    }
    descriptor = descriptor.subspan(size + 1);
    const auto kind = static_cast<std::uint8_t>(prefix & 0xFCU);
    if (kind == UsagePage) {
      globals.page = value;
    } else if (kind == ReportId) {
      globals.reportId = static_cast<std::uint8_t>(value);
      result.isNumbered = true;
    } else if (kind == Push && saved.size() < deepestStack) {
      saved.push_back(globals);
    } else if (kind == Pop && !saved.empty()) {
      globals = saved.back();
      saved.pop_back();
    } else if (kind == Usage && size == 4) {
      // A usage of four bytes carries its page.
      hasVendorUsage = hasVendorUsage || isVendorPage(value >> 16U);
    } else if (kind == Input && (hasVendorUsage || isVendorPage(globals.page))) {
      result.reportIds.insert(globals.reportId);
    }
    // A main item ends what was said for it alone.
    if ((prefix & 0x0CU) == 0) {
      hasVendorUsage = false;
    }
  }
  return result;
}
