#pragma once

#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Records.h"

// What is left of a record and of its macros after they were written into a slot of the mouse and
// read back. Told by the rules of the wire, not by the code that is under test; only the key table
// and the menus are asked.

// `written` as it reads back from that slot, given the macros that the catalogue has by then.
_Nerin_PROFILE slotAsRead(int slot, const _Nerin_PROFILE& written);

// Events as {key code, kind, delay}.
using MacroEvents = std::vector<std::vector<int>>;
MacroEvents eventsAsRead(const MacroInfo& macro);

// The name under which a macro reads back from a button of a slot.
std::string macroNameAsRead(const std::string& name, int slot, int index);

// Where two records differ, in words; empty when they are the same.
std::string differenceOf(const _Nerin_PROFILE& actual, const _Nerin_PROFILE& expected);
