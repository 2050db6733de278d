#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Records.h"
#include "CommandLine/Output.h"

// What a record says, in words and as JSON.

// The mouse keeps no on-flags of its LED zones, so that nothing is said of them for its records.
enum class RecordSource { Library, Mouse };
std::vector<std::string> describe(const _Nerin_PROFILE& profile, RecordSource source);
Json asJson(const _Nerin_PROFILE& profile, RecordSource source);

std::vector<std::string> describe(const MacroInfo& macro);
Json asJson(const MacroInfo& macro);

// The rate in Hz for an index 0..3; nothing for another.
std::optional<int> rateInHz(std::uint32_t poRate);
// "#rrggbb".
std::string colourText(const _LightColorInfo& colour);
// A macro's name for the user; what the program generates is not one.
std::string macroTitle(const MacroInfo& macro);
