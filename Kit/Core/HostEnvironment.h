#pragma once

#include <filesystem>
#include <optional>
#include <string>

// What this system says about the user and the program.
namespace hostenvironment {

// The user's home folder; "/" if unknown.
std::filesystem::path homeFolder();
// The files that came with the program: beside the build, or where it was installed.
std::filesystem::path resourceFolder();
// The language of the user's messages, as the locale names it.
std::optional<std::string> preferredLanguage();

}  // namespace hostenvironment
