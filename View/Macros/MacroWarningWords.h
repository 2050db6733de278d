#pragma once

#include <QString>
#include <vector>

#include "Action/Catalogue/MacroWarnings.h"

namespace macrowarnings {

// The warning about these commands in the user's language. Lines count from 1.
QString wordsOf(const MacroWarning& warning, const MacroInfo::Events& commands);
// One line: the first warning, and how many there are beside it. Empty without any.
QString summaryOf(const std::vector<MacroWarning>& warnings, const MacroInfo::Events& commands);

}  // namespace macrowarnings
