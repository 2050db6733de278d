#pragma once

#include <string>
#include <vector>

#include "Action/Edit/Descriptions.h"
#include "CommandLine/Output.h"

// What a record says, as lines for a person and as JSON for a script.

// Each fact as a line, its parts under each other.
std::vector<std::string> linesOf(const std::vector<descriptions::Fact>& facts);

Json asJson(const _Nerin_PROFILE& profile, descriptions::RecordSource source);
Json asJson(const MacroInfo& macro);
