#pragma once

#include <cstdint>
#include <span>
#include <string>

// The bytes as lower-case hexadecimal digits, two for each.
std::string hexText(std::span<const std::uint8_t> bytes);
