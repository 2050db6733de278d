#pragma once

#include <filesystem>
#include <string>

#include "Kit/Core/ProcessWide.h"

// The folder of the library and the catalogues; empty until getSysPath.
inline ProcessWide<std::string> sysPath;

namespace NerinAction {

// Creates the support folder if it is missing and stores it in sysPath.
const std::string& getSysPath();

// The background service reads this file, too.
std::filesystem::path preferenceFilePath();

}  // namespace NerinAction
