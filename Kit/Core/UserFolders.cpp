#include "Kit/Core/UserFolders.h"

#include <system_error>

#include <sys/stat.h>

namespace fs = std::filesystem;

UserFolders UserFolders::inLibrary(const fs::path& home, const std::string& name) {
  const fs::path library = home / "Library";
  const fs::path support = library / "Application Support" / name;
  return {Layout::Library, support, library / "Preferences" / (name + ".plist"), support / "Drafts",
          library / "Logs" / (name + ".log")};
}

UserFolders UserFolders::inXdg(const fs::path& data, const fs::path& config, const fs::path& state,
                               const std::string& name) {
  return {Layout::Xdg, data / name, config / (name + ".plist"), state / name / "Drafts",
          state / name / (name + ".log")};
}

bool UserFolders::make(const fs::path& folder) {
  std::error_code error;
  if (fs::is_directory(folder, error)) {
    return true;
  }
  if (folder.has_relative_path()) {
    make(folder.parent_path());
  }
  ::mkdir(folder.c_str(), S_IRWXU);
  // Another program can have made it meanwhile.
  return fs::is_directory(folder, error);
}
