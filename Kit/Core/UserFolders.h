#pragma once

#include <filesystem>
#include <string>

// Where the files of one user lie. All paths are absolute once the platform is installed; the
// folders need not be there.
struct UserFolders {
  enum class Layout {
    Library,  // below "Library" in the home folder, as on every system
    Xdg,      // where Linux desktops keep things
  };

  Layout layout = Layout::Library;
  std::filesystem::path support;      // the folder of the library and the catalogues
  std::filesystem::path preferences;  // a file
  std::filesystem::path drafts;       // a folder
  std::filesystem::path log;          // a file

  // The same on every system; `name` is the identifier of the program.
  static UserFolders inLibrary(const std::filesystem::path& home, const std::string& name);
  // In the three base folders of a Linux desktop.
  static UserFolders inXdg(const std::filesystem::path& data, const std::filesystem::path& config,
                           const std::filesystem::path& state, const std::string& name);
  // Makes the folder and its missing parents, each for the user alone. Returns whether it is there.
  static bool make(const std::filesystem::path& folder);
};
