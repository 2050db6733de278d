#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "Kit/Core/UserFolders.h"

// What this system says about the user and the program.
namespace hostenvironment {

// The user's home folder; "/" if unknown.
std::filesystem::path homeFolder();
// Where the user's files of the program of this identifier lie: below "Library" in the home folder
// if its support folder is there, else in the base folders that the desktop names ($XDG_DATA_HOME,
// $XDG_CONFIG_HOME and $XDG_STATE_HOME).
UserFolders userFolders(const std::string& name);
// The files that came with the program: beside the build, or where it was installed.
std::filesystem::path resourceFolder();
// A folder for what lasts as long as the user's session, made if missing: the program's own in
// $XDG_RUNTIME_DIR, else one in /tmp. Only the user can enter it; empty if that cannot be had.
std::filesystem::path runtimeFolder();
// The desktop's permission for this start to come to the front; empty if it gave none.
std::string activationToken();
// The language of the user's messages, as the locale names it.
std::optional<std::string> preferredLanguage();

}  // namespace hostenvironment
