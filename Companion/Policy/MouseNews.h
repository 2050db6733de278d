#pragma once

#include <cstdint>
#include <optional>
#include <vector>

// What the mouse says about itself.
struct MouseReading {
  int slot = 0;      // 0..9
  int dpiLevel = 0;  // from 0, of that slot

  bool operator==(const MouseReading&) const = default;
};

// One report to the other programs: "type" and "value" of "NerinDevStatus".
struct DeviceReport {
  enum Type : std::int32_t { SlotChanged = 1, DpiChanged = 2, Removed = 100, Attached = 101 };
  Type type = Removed;
  std::int32_t value = 0;

  bool operator==(const DeviceReport&) const = default;
};

// What to tell when the mouse was read. Another slot has a level of its own: that is no change of
// the level. Nothing is told about the first reading, since nobody knows what was before.
std::vector<DeviceReport> changesOf(const std::optional<MouseReading>& before,
                                    const MouseReading& now);

// What to tell when the mouse can be used or cannot. Nothing while it stays as it was; a mouse that
// was exchanged without a gap has gone and come.
struct MousePresence {
  bool isThere = false;
  std::uint64_t connection = 0;  // which opening of the mouse this is
};
std::vector<DeviceReport> changesOf(const MousePresence& before, const MousePresence& now);
