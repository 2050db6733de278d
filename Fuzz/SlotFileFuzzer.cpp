#include <algorithm>
#include <cstdint>
#include <span>
#include <string>

#include "Action/Wire/ProfileName.h"
#include "Action/Wire/ReportLayout.h"
#include "Action/Wire/SlotReports.h"
#include "Fuzz/FuzzInput.h"

namespace {

constexpr std::size_t markSize = 4;

// Makes every sum right, which a fuzzer does not hit: of the reports, and of the whole.
void mend(std::string& bytes) {
  auto* const first = reinterpret_cast<std::uint8_t*>(bytes.data());
  std::size_t at = markSize;
  for (std::size_t size = reportlayout::nameSize; at + size < bytes.size();) {
    const std::span report(first + at, size);
    report[reportlayout::atChecksum] = NerinAction::checksumOfReport(report);
    at += size;
    size = size == reportlayout::nameSize ? reportlayout::imageSize : reportlayout::macroSize;
  }
  bytes.back() = 0;
  bytes.back() = static_cast<char>(NerinAction::GetChecksum(std::span(first, bytes.size())));
}

}  // namespace

// Any bytes as the file of a slot in a backup: once as they are, and once with right sums.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  std::string bytes(fuzz::textOf(data, size));
  for (const bool isMended : {false, true}) {
    if (isMended && bytes.size() > markSize) {
      mend(bytes);
    }
    for (int slot = 0; slot < 10; ++slot) {
      const auto reports = NerinAction::decodeSlotFile(bytes, static_cast<std::uint8_t>(slot));
      if (!reports) {
        continue;
      }
      static_cast<void>(NerinAction::decodeNameReport(reports->name));
      // The macros of a written file stand in the order of their buttons.
      const auto again = NerinAction::decodeSlotFile(NerinAction::encodeSlotFile(*reports),
                                                     static_cast<std::uint8_t>(slot));
      fuzz::require(again == reports);
    }
  }
  return 0;
}
