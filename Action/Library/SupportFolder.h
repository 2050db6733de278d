#pragma once

#include <filesystem>
#include <string>

#include "Kit/Core/ProcessWide.h"

// The folder that holds the library and the catalogues; empty until getSysPath.
inline ProcessWide<std::string> sysPath;

namespace NerinAction {

// The support folder, made when it is missing. It is found out once; sysPath then holds it.
const std::string& getSysPath();

// The file that the background service reads as well.
std::filesystem::path preferenceFilePath();

}  // namespace NerinAction
