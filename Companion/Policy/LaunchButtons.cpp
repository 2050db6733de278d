#include "Companion/Policy/LaunchButtons.h"

#include <algorithm>

std::optional<LaunchButtons::Press> LaunchButtons::heard(int interface,
                                                         std::span<const std::uint8_t> report,
                                                         Time now) {
  const auto known = std::find_if(m_patterns.begin(), m_patterns.end(), [&](const auto& entry) {
    return entry.second.fits(interface, report);
  });
  if (known == m_patterns.end()) {
    return std::nullopt;
  }
  const int button = known->first;
  const auto last = m_lastReports.find(button);
  const bool isHeld = last != m_lastReports.end() && now - last->second < holding;
  m_lastReports[button] = now;
  return Press{button, !isHeld};
}
