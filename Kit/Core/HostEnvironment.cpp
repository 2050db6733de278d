#include "Kit/Core/HostEnvironment.h"

#include <cstdlib>
#include <string>
#include <system_error>

#include <pwd.h>
#include <sys/stat.h>
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

fs::path hostenvironment::runtimeFolder() {
  constexpr const char* program = "com.corvex.NerinOption";
  const char* session = std::getenv("XDG_RUNTIME_DIR");
  const bool hasSession = session != nullptr && *session == '/';
  const fs::path folder =
      hasSession ? fs::path(session) / program
                 : fs::path("/tmp") / (std::string(program) + "-" + std::to_string(::getuid()));
  ::mkdir(folder.c_str(), S_IRWXU);
  struct stat status {};
  // Anybody can make a folder or a link of this name in /tmp.
  const bool isOurs = ::lstat(folder.c_str(), &status) == 0 && S_ISDIR(status.st_mode) &&
                      status.st_uid == ::getuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
  return isOurs ? folder : fs::path();
}

std::string hostenvironment::activationToken() {
  for (const char* variable : {"XDG_ACTIVATION_TOKEN", "DESKTOP_STARTUP_ID"}) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return {};
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
