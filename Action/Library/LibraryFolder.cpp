#include "Action/Library/LibraryFolder.h"

#include <algorithm>
#include <optional>
#include <set>

#include "Action/Library/ProfileFileNames.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/Utf8.h"

namespace fs = std::filesystem;

namespace {

bool hasProfileExtension(const fs::path& path) {
  return utf8::lowercased(path.extension().string()) ==
         std::string(".") + ProfileFileNames::extension;
}

// The bytes of a profile file, zero where the file gives none; nothing if it cannot be read.
std::optional<ConfigBytes> bytesIn(const fs::path& file) {
  const auto content = durable::readFile(file);
  if (!content) {
    return std::nullopt;
  }
  ConfigBytes bytes{};
  std::copy_n(content->begin(), std::min(content->size(), bytes.size()), bytes.begin());
  return bytes;
}

}  // namespace

std::vector<fs::path> LibraryFolder::profileFiles(std::error_code& error) const {
  std::vector<fs::path> files;
  for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (hasProfileExtension(entry->path())) {
      files.push_back(entry->path());
    }
  }
  if (error == std::errc::no_such_file_or_directory) {
    error.clear();
  }
  std::sort(files.begin(), files.end());
  return files;
}

void LibraryFolder::remember(const fs::path& file, const Profile& profile) {
  if (const auto bytes = bytesIn(file)) {
    m_known[file.filename().string()] = {profile, *bytes};
  }
}

void LibraryFolder::remember(const std::string& fileName, const Profile& profile,
                             const ConfigBytes& bytes) {
  m_known[fileName] = {profile, bytes};
}

LibraryFolder::Changes LibraryFolder::changes() const {
  Changes changes;
  std::set<std::string> present;
  std::error_code error;
  for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    present.insert(name);
    const auto known = m_known.find(name);
    if (known == m_known.end()) {
      (hasProfileExtension(entry->path()) ? changes.appeared : changes.foreign)
          .push_back(entry->path());
      continue;
    }
    const auto bytes = bytesIn(entry->path());
    if (!bytes || *bytes == known->second.bytes) {
      continue;
    }
    if (known->second.profile->fileBytes() == known->second.bytes) {
      changes.changed[name] = known->second.profile;
    } else {
      changes.conflicting.push_back(entry->path());
    }
  }
  if (error) {
    // A folder that is gone, or cannot be listed, says nothing of what was deleted.
    return {};
  }
  for (const auto& [name, known] : m_known) {
    if (!present.contains(name) && known.profile->fileBytes() == known.bytes) {
      changes.deleted.push_back(known.profile);
    }
  }
  std::sort(changes.appeared.begin(), changes.appeared.end());
  return changes;
}

fs::path LibraryFolder::asideFolder() const {
  return m_folder.parent_path() / "Set aside";
}

std::error_code LibraryFolder::setAside(const fs::path& file) const {
  if (!LXAction::creatDirectoryPro(asideFolder())) {
    return std::make_error_code(std::errc::io_error);
  }
  const std::string stem = file.stem().string();
  const std::string extension = file.extension().string();
  std::error_code error;
  fs::path target = asideFolder() / file.filename();
  for (int n = 2; fs::exists(fs::symlink_status(target, error)); ++n) {
    std::string name = stem;
    name.append("~").append(std::to_string(n)).append(extension);
    target = asideFolder() / name;
  }
  fs::rename(file, target, error);
  if (error) {
    LXLogger::error(file.string() + " cannot be set aside: " + error.message());
  } else {
    LXLogger::warning(file.string() + " is no profile of the library: it is now " +
                      target.string());
  }
  return error;
}
