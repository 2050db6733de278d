#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Records.h"

// Describes a record in words. The words are English; names come from files and from the mouse and
// may hold any bytes.
namespace descriptions {

// One fact: its subject and its value.
struct Fact {
  std::string about;
  std::string value;
};

// The mouse does not store whether its LED zones are on, so its records omit that.
enum class RecordSource { Library, Mouse };
// Facts in this order: rate, lift height, LED mode, zones, levels in use, buttons.
std::vector<Fact> describe(const _Nerin_PROFILE& profile, RecordSource source);
// One fact for each event: the event, and the pause after it ("40 ms", or empty).
std::vector<Fact> describe(const MacroInfo& macro);

// The name of a button (0..15) by its place on the mouse: "left click".
const char* buttonName(std::size_t index);
// The kind of assignment: "plain", "macro", "single", "dpi", "launch", "disabled" or "none".
std::string typeName(std::uint32_t btnType);
// The function of the button with that index (0..15).
std::string functionText(const _BTN_INFO& button, int index);
// How a macro button repeats.
std::string repeatText(const _BTN_INFO& button);
std::string eventText(const MacroKeyInfo& event);
// "battle" or "normal".
std::string modeText(std::uint32_t modeType);

// The rate in Hz for an index 0..3.
std::optional<int> rateInHz(std::uint32_t poRate);
// "#rrggbb".
std::string colorText(const _LightColorInfo& color);
// A macro's name; "(no name)" for one that the program made.
std::string macroTitle(const MacroInfo& macro);
// How many levels the profile uses, 1..5.
std::size_t levelsInUse(const _Nerin_PROFILE& profile);

}  // namespace descriptions
