#pragma once

#include <cstddef>
#include <cstdint>

// The limits of the mouse and of the program. Each number is defined only here.
namespace limits {

inline constexpr int slotCount = 10;

// A sensitivity is stored in steps of 50 DPI.
inline constexpr std::uint32_t dpiStep = 50;
inline constexpr std::uint32_t minimumSensitivity = 2;
inline constexpr std::uint32_t maximumSensitivity = 164;
inline constexpr std::uint32_t minimumDpi = minimumSensitivity * dpiStep;
inline constexpr std::uint32_t maximumDpi = maximumSensitivity * dpiStep;

// The mouse stores the lift-off height in five bits.
inline constexpr std::uint32_t maximumLift = 31;

// The mouse keeps this many characters of a profile's name.
inline constexpr std::size_t nameCharacters = 65;

// macroBytes is the mouse's limit for one macro; the other two are the program's.
inline constexpr std::uint32_t macroBytes = 2000;
inline constexpr std::size_t macroEvents = 40;
inline constexpr std::size_t macros = 100;

inline constexpr std::size_t profiles = 50;

static_assert(minimumDpi == 100 && maximumDpi == 8200);

}  // namespace limits
