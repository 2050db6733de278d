#include "Kit/Core/HostEnvironment.h"

#include <cstdlib>
#include <system_error>

#include <pwd.h>
#include <unistd.h>

namespace fs = std::filesystem;

fs::path hostenvironment::homeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    return home;
  }
  const passwd* user = ::getpwuid(::getuid());
  return user != nullptr ? user->pw_dir : "/";
}

fs::path hostenvironment::resourceFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  const fs::path prefix = program.parent_path().parent_path();
  const fs::path beside = prefix / "resources";
  return fs::is_directory(beside, error) ? beside : prefix / "share" / "NerinOption";
}

std::optional<std::string> hostenvironment::preferredLanguage() {
  for (const char* variable : {"LANGUAGE", "LC_ALL", "LC_MESSAGES", "LANG"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
      const std::string languages = value;
      return languages.substr(0, languages.find(':'));
    }
  }
  return std::nullopt;
}
