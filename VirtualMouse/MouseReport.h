#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "Kit/Core/Hex.h"

// One kind of long report on interface 1: id, 0, slot number, checksum, then the contents.
struct MouseReport {
  static constexpr std::size_t headerSize = 4;

  std::uint8_t id = 0;
  std::size_t size = 0;
  std::size_t covered = 0;  // how many bytes after the header the checksum covers

  static std::optional<MouseReport> byId(int id);

  // The right value for byte 3 of `report`, which has `size` bytes: with it the covered bytes add
  // up to 0 modulo 256.
  std::uint8_t checksum(std::span<const std::uint8_t> report) const;
};

inline constexpr MouseReport mouseMacroReport{4, 2053, 2048};
inline constexpr MouseReport mouseImageReport{5, 154, 149};
inline constexpr MouseReport mouseNameReport{6, 70, 65};

// Four lower-case hex digits.
std::string hexText(std::uint16_t value);
