#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "Action/Library/ProfileValue.h"

// What this program knows of the files in the library's folder, so that it notices what another
// program, or the user, did there since, and what the user changed here.
class LibraryFolder {
 public:
  using Profile = std::shared_ptr<ProfileValue>;

  // The folder need not exist.
  explicit LibraryFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {}

  const std::filesystem::path& path() const { return m_folder; }

  // The profile files, sorted by byte order. An `error` means that the list may be incomplete.
  std::vector<std::filesystem::path> profileFiles(std::error_code& error) const;

  // Forgets every file, or those of the profile.
  void forget() { m_known.clear(); }
  void forget(const Profile& profile);
  // The profile was read from the file, or was written to it in these bytes.
  void remember(const std::filesystem::path& file, const Profile& profile);
  void remember(const std::string& fileName, const Profile& profile, const ConfigBytes& bytes);

  // Whether the profile is as it was remembered.
  bool isUnchanged(const Profile& profile) const;
  // What the profile holds now is not the user's doing, such as what was read from the mouse.
  void rememberAsUnchanged(const Profile& profile);
  // The profile counts as changed here until it is remembered again: the user wants it so.
  void rememberAsChanged(const Profile& profile);

  // What happened to the files since they were remembered.
  struct Change {
    std::filesystem::path file;
    Profile profile;
  };
  struct Changes {
    std::vector<Profile> deleted;  // and not changed here
    std::vector<Change> changed;   // in content, or in name and thus in file; and not changed here
    std::vector<std::filesystem::path> appeared;     // profile files that are not known
    std::vector<std::filesystem::path> conflicting;  // changed there and here, or unreadable now
    std::vector<std::filesystem::path> foreign;      // anything that is no profile file
  };
  // Nothing if the folder cannot be listed.
  Changes changes() const;

  // Keeps a file beside the library, before a save removes it. The file itself stays where it can.
  [[nodiscard]] std::error_code keepAside(const std::filesystem::path& file) const;
  // Moves a file or folder out of the library, to a place beside it where no save reaches it.
  [[nodiscard]] std::error_code setAside(const std::filesystem::path& file) const;
  // Where both put it.
  std::filesystem::path asideFolder() const;

 private:
  struct Known {
    Profile profile;
    ConfigBytes bytes{};  // on disk
    ConfigBytes own{};    // in memory, without what the user changed
    bool isChanged = false;
  };

  static bool isUnchanged(const Known& known);
  void findRenamed(Changes& changes, std::map<std::string, Known> gone) const;
  std::filesystem::path freePlace(const std::filesystem::path& file) const;

  std::filesystem::path m_folder;
  std::map<std::string, Known> m_known;
};
