#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

#include "Action/Library/ProfileValue.h"

// What this program knows of the files in the library's folder, so that it notices what another
// program, or the user, did there since.
class LibraryFolder {
 public:
  using Profile = std::shared_ptr<ProfileValue>;

  // The folder need not exist.
  explicit LibraryFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {}

  const std::filesystem::path& path() const { return m_folder; }

  // The profile files, sorted by byte order. An `error` means that the list may be incomplete.
  std::vector<std::filesystem::path> profileFiles(std::error_code& error) const;

  // Forgets every file.
  void forget() { m_known.clear(); }
  // The profile was read from the file, or was written to it in these bytes.
  void remember(const std::filesystem::path& file, const Profile& profile);
  void remember(const std::string& fileName, const Profile& profile, const ConfigBytes& bytes);

  // What happened to the files since they were remembered.
  struct Changes {
    std::vector<Profile> deleted;                    // and not changed here
    std::map<std::string, Profile> changed;          // by file name, and not changed here
    std::vector<std::filesystem::path> appeared;     // profile files that are not known
    std::vector<std::filesystem::path> conflicting;  // changed there and here
    std::vector<std::filesystem::path> foreign;      // anything that is no profile file
  };
  // Nothing if the folder cannot be listed.
  Changes changes() const;

  // Moves a file or folder out of the library, to a place beside it where no save reaches it.
  std::error_code setAside(const std::filesystem::path& file) const;
  // Where setAside moves to.
  std::filesystem::path asideFolder() const;

 private:
  struct Known {
    Profile profile;
    ConfigBytes bytes{};
  };

  std::filesystem::path m_folder;
  std::map<std::string, Known> m_known;
};
