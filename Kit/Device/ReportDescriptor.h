#pragma once

#include <cstdint>
#include <set>
#include <span>

// The input reports of an HID interface that carry the vendor's own usages: neither pointer nor
// keys, but what only this product understands.
struct VendorInputs {
  // Whether reports begin with their number. Without numbers, the set holds 0 at most.
  bool isNumbered = false;
  std::set<std::uint8_t> reportIds;
};

// Reads a report descriptor as the interface sends it. What follows a broken item is ignored.
VendorInputs vendorInputsOf(std::span<const std::uint8_t> descriptor);
