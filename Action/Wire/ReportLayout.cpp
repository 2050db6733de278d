#include "Action/Wire/ReportLayout.h"

#include <numeric>

std::uint8_t NerinAction::GetChecksum(std::span<const std::uint8_t> bytes) {
  const unsigned sum = std::accumulate(bytes.begin(), bytes.end(), 0U);
  return static_cast<std::uint8_t>(0U - sum);
}
