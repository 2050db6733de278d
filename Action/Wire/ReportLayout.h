#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

// The long reports of the mouse and the positions of their bytes.
namespace reportlayout {

// The report ids: the first byte of each long report.
inline constexpr std::uint8_t macro = 4;
inline constexpr std::uint8_t image = 5;
inline constexpr std::uint8_t name = 6;

inline constexpr std::size_t macroSize = 2053;
inline constexpr std::size_t imageSize = 154;
inline constexpr std::size_t nameSize = 70;

// The common header: the id, 0, the slot, and the checksum of the bytes that follow.
inline constexpr std::size_t atSlot = 2;
inline constexpr std::size_t atChecksum = 3;
inline constexpr std::size_t headerSize = 4;

}  // namespace reportlayout

// The positions of a profile's settings in its image.
namespace imagelayout {

inline constexpr std::size_t atRate = 4;
inline constexpr std::size_t atLift = 5;
inline constexpr std::size_t atLevels = 6;
inline constexpr std::size_t atDpi = 7;  // five levels: Y, X and the color that the mouse shows
inline constexpr std::size_t levelSize = 5;
inline constexpr std::size_t atZones = 42;  // four zones: mode, red, green, blue
inline constexpr std::size_t zoneSize = 4;
inline constexpr std::size_t atButtons = 58;
inline constexpr std::size_t buttonSize = 5;

inline constexpr std::uint8_t liftMask = 0x1F;
inline constexpr std::uint8_t liftFlag = 0x20;

}  // namespace imagelayout

namespace NerinAction {

// The value that makes the 8-bit sum of the bytes and itself 0.
std::uint8_t GetChecksum(std::span<const std::uint8_t> bytes);
// The checksum of a long report: of all but its header and its last byte.
std::uint8_t checksumOfReport(std::span<const std::uint8_t> report);
// Whether an answer is the report `id` of that slot, with the right checksum.
bool isWholeAnswer(std::span<const std::uint8_t> report, std::uint8_t id, std::uint8_t slot);

}  // namespace NerinAction
