#pragma once

#include <filesystem>
#include <string>

namespace desktopservices {

// Opens a web address, the file at a path, or a place in a web page on disk
// ("file:///a/help.html#keys") with its default application. False if there is no such application
// or the file is missing.
bool open(const std::string& address);

// Where the user keeps documents, as the desktop's settings name it. If that folder does not exist,
// "Documents" in the home folder, and if there is none, the home folder itself.
std::filesystem::path documentsFolder();

}  // namespace desktopservices
