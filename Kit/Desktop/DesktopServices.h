#pragma once

#include <string>

namespace desktopservices {

// Opens a web address or the file at a path with its default application. False if there is no such
// application or the file is missing.
bool open(const std::string& address);

}  // namespace desktopservices
