#pragma once

#include <string>

namespace desktopservices {

// Opens a web address, or the file of that path, with its default application. False when there is
// none, or when the file is missing.
bool open(const std::string& address);

}  // namespace desktopservices
