#pragma once

#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Records.h"

// The expected record and macros after writing them to a slot and reading them back. Uses the rules
// of the wire instead of the tested code, except the key table and the menus.

// `written` as it reads back from that slot, with the current macros of the catalogue.
_Nerin_PROFILE slotAsRead(int slot, const _Nerin_PROFILE& written);

// Events as {key code, kind, delay}.
using MacroEvents = std::vector<std::vector<int>>;
MacroEvents eventsAsRead(const MacroInfo& macro);

// The name of a macro that is read back from a button of a slot.
std::string macroNameAsRead(const std::string& name, int slot, int index);

// The differences between two records in words; empty if there are none.
std::string differenceOf(const _Nerin_PROFILE& actual, const _Nerin_PROFILE& expected);
