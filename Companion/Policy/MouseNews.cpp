#include "Companion/Policy/MouseNews.h"

std::vector<DeviceReport> changesOf(const std::optional<MouseReading>& before,
                                    const MouseReading& now) {
  if (!before || *before == now) {
    return {};
  }
  if (before->slot != now.slot) {
    return {{DeviceReport::SlotChanged, now.slot}};
  }
  return {{DeviceReport::DpiChanged, now.dpiLevel}};
}

std::vector<DeviceReport> changesOf(const MousePresence& before, const MousePresence& now) {
  const bool isSame = before.isThere && now.isThere && before.connection == now.connection;
  std::vector<DeviceReport> reports;
  if (before.isThere && !isSame) {
    reports.push_back({DeviceReport::Removed, 0});
  }
  if (now.isThere && !isSame) {
    reports.push_back({DeviceReport::Attached, 0});
  }
  return reports;
}
