#pragma once

#include <string>
#include <vector>

#include "Action/Edit/Descriptions.h"
#include "CommandLine/Output.h"

// Prints a record, as lines for a person or as JSON for a script.

// One line per fact, with aligned parts.
std::vector<std::string> linesOf(const std::vector<descriptions::Fact>& facts);

Json asJson(const _Nerin_PROFILE& profile, descriptions::RecordSource source);
Json asJson(const MacroInfo& macro);
