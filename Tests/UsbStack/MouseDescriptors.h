#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "VirtualMouse/VirtualMouse.h"

// What the mouse tells a host about itself when it is plugged in: a full-speed device with a boot
// mouse as interface 0 and a vendor's HID as interface 1. From these descriptors the host's drivers
// learn which nodes to make, and how to read a motion.

// Buttons, X, Y and wheel, a byte each: what interface 0 reports of a motion.
inline constexpr std::size_t motionReportSize = 4;
// The endpoint, seen from the host an input, on which interface 0 reports motions.
inline constexpr std::uint32_t motionEndpoint = 1;

// The answer to a standard request; no value where the mouse stalls, as it does for descriptors
// that it does not have.
std::optional<std::vector<std::uint8_t>> standardAnswer(const SetupPacket& setup);
