#pragma once

#include <cstddef>
#include <cstdint>

// The bounds of what the mouse keeps and of what the program lets a user make. Each number stands
// here once; views, files and reports take it from here.
namespace limits {

inline constexpr int slotCount = 10;

// A sensitivity is stored in steps of 50 DPI.
inline constexpr std::uint32_t dpiStep = 50;
inline constexpr std::uint32_t minimumSensitivity = 2;
inline constexpr std::uint32_t maximumSensitivity = 164;
inline constexpr std::uint32_t minimumDpi = minimumSensitivity * dpiStep;
inline constexpr std::uint32_t maximumDpi = maximumSensitivity * dpiStep;

// The mouse has five bits for the lift-off height.
inline constexpr std::uint32_t maximumLift = 31;

// The characters of a profile's name that the mouse keeps.
inline constexpr std::size_t nameCharacters = 65;

// What one macro of the mouse holds, and what the editor lets a user record.
inline constexpr std::uint32_t macroBytes = 2000;
inline constexpr std::size_t macroEvents = 40;
inline constexpr std::size_t macros = 100;

inline constexpr std::size_t profiles = 50;

static_assert(minimumDpi == 100 && maximumDpi == 8200);

}  // namespace limits
