#include "Action/Wire/ReportLayout.h"

#include <numeric>

std::uint8_t NerinAction::GetChecksum(std::span<const std::uint8_t> bytes) {
  const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
  return static_cast<std::uint8_t>(0U - sum);
}

std::uint8_t NerinAction::checksumOfReport(std::span<const std::uint8_t> report) {
  return GetChecksum(
      report.subspan(reportlayout::headerSize, report.size() - reportlayout::headerSize - 1));
}

bool NerinAction::isWholeAnswer(std::span<const std::uint8_t> report, std::uint8_t id,
                                std::uint8_t slot) {
  return report.size() > reportlayout::headerSize && report[0] == id &&
         report[reportlayout::atSlot] == slot &&
         report[reportlayout::atChecksum] == checksumOfReport(report);
}
