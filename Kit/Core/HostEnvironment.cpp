#include "Kit/Core/HostEnvironment.h"

#include <cstdlib>
#include <string>
#include <system_error>

#include <pwd.h>
#include <sys/stat.h>
#include <unistd.h>

namespace fs = std::filesystem;

namespace {

// A folder that cannot be looked at counts as there: to begin an empty library elsewhere would look
// like the loss of the user's own.
bool mayBeThere(const fs::path& folder) {
  std::error_code error;
  const fs::file_status status = fs::symlink_status(folder, error);
  return status.type() != fs::file_type::not_found;
}

// The folder that the variable names. One that is empty or relative counts as not set.
fs::path baseFolder(const char* variable, const fs::path& standard) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value == '/' ? fs::path(value) : standard;
}

}  // namespace

fs::path hostenvironment::homeFolder() {
  if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0') {
    return home;
  }
  const passwd* user = ::getpwuid(::getuid());
  return user != nullptr ? user->pw_dir : "/";
}

UserFolders hostenvironment::userFolders(const std::string& name) {
  const fs::path home = homeFolder();
  UserFolders library = UserFolders::inLibrary(home, name);
  if (mayBeThere(library.support)) {
    return library;
  }
  return UserFolders::inXdg(baseFolder("XDG_DATA_HOME", home / ".local" / "share"),
                            baseFolder("XDG_CONFIG_HOME", home / ".config"),
                            baseFolder("XDG_STATE_HOME", home / ".local" / "state"), name);
}

fs::path hostenvironment::resourceFolder() {
  std::error_code error;
  const fs::path program = fs::read_symlink("/proc/self/exe", error);
  const fs::path beside = program.parent_path().parent_path() / "resources";
  return fs::is_directory(beside, error)
             ? beside
             : (program.parent_path() / NERIN_DATA_FROM_PROGRAMS).lexically_normal();
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
