#include "Action/Library/LibraryFolder.h"

#include <algorithm>
#include <optional>

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

ConfigBytes withoutName(const ConfigBytes& bytes) {
  _Nerin_CONFIG config = configOf(bytes);
  setText(config.profileName, "");
  return bytesOf(config);
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

void LibraryFolder::forget(const Profile& profile) {
  std::erase_if(m_known, [&](const auto& entry) { return entry.second.profile == profile; });
}

void LibraryFolder::remember(const fs::path& file, const Profile& profile) {
  if (const auto bytes = bytesIn(file)) {
    remember(file.filename().string(), profile, *bytes);
  }
}

void LibraryFolder::remember(const std::string& fileName, const Profile& profile,
                             const ConfigBytes& bytes) {
  m_known[fileName] = {profile, bytes, profile->fileBytes(), false};
}

bool LibraryFolder::isUnchanged(const Known& known) {
  return !known.isChanged && known.profile->fileBytes() == known.own;
}

bool LibraryFolder::isUnchanged(const Profile& profile) const {
  return std::any_of(m_known.begin(), m_known.end(), [&](const auto& entry) {
    return entry.second.profile == profile && isUnchanged(entry.second);
  });
}

void LibraryFolder::rememberAsUnchanged(const Profile& profile) {
  for (auto& [name, known] : m_known) {
    if (known.profile == profile) {
      known.own = profile->fileBytes();
      known.isChanged = false;
    }
  }
}

void LibraryFolder::rememberAsChanged(const Profile& profile) {
  for (auto& [name, known] : m_known) {
    known.isChanged = known.isChanged || known.profile == profile;
  }
}

LibraryFolder::Changes LibraryFolder::changes() const {
  Changes changes;
  std::map<std::string, Known> gone = m_known;
  std::error_code error;
  for (fs::directory_iterator entry(m_folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const auto known = gone.find(entry->path().filename().string());
    if (known == gone.end()) {
      (hasProfileExtension(entry->path()) ? changes.appeared : changes.foreign)
          .push_back(entry->path());
      continue;
    }
    const auto bytes = bytesIn(entry->path());
    if (bytes != known->second.bytes) {
      if (bytes && isUnchanged(known->second)) {
        changes.changed.push_back({entry->path(), known->second.profile});
      } else {
        changes.conflicting.push_back(entry->path());
      }
    }
    gone.erase(known);
  }
  if (error) {
    // A folder that is gone, or cannot be listed, says nothing of what was deleted.
    return {};
  }
  std::sort(changes.appeared.begin(), changes.appeared.end());
  std::erase_if(gone, [](const auto& entry) { return !isUnchanged(entry.second); });
  findRenamed(changes, std::move(gone));
  return changes;
}

// A profile of another name and otherwise the same bytes, the id too, is the one that is gone. Its
// slots stay linked to it.
void LibraryFolder::findRenamed(Changes& changes, std::map<std::string, Known> gone) const {
  std::erase_if(changes.appeared, [&](const fs::path& file) {
    const auto bytes = bytesIn(file);
    const auto from = std::find_if(gone.begin(), gone.end(), [&](const auto& entry) {
      return bytes && withoutName(*bytes) == withoutName(entry.second.bytes);
    });
    if (from == gone.end()) {
      return false;
    }
    changes.changed.push_back({file, from->second.profile});
    gone.erase(from);
    return true;
  });
  for (const auto& [name, known] : gone) {
    changes.deleted.push_back(known.profile);
  }
}

fs::path LibraryFolder::asideFolder() const {
  return m_folder.parent_path() / "Set aside";
}

// Where the file can go; where it is already, if it is there.
fs::path LibraryFolder::freePlace(const fs::path& file) const {
  std::error_code error;
  fs::path place = asideFolder() / file.filename();
  for (int n = 2; fs::exists(fs::symlink_status(place, error)); ++n) {
    if (fs::equivalent(file, place, error) && !error) {
      return place;
    }
    std::string name = file.stem().string();
    name.append("~").append(std::to_string(n)).append(file.extension().string());
    place = asideFolder() / name;
  }
  return place;
}

std::error_code LibraryFolder::keepAside(const fs::path& file) const {
  if (!LXAction::creatDirectoryPro(asideFolder())) {
    return std::make_error_code(std::errc::io_error);
  }
  std::error_code error;
  const fs::path place = freePlace(file);
  if (fs::exists(place, error)) {
    return {};
  }
  if (fs::is_regular_file(fs::symlink_status(file, error))) {
    fs::create_hard_link(file, place, error);
    if (!error) {
      LXLogger::warning(file.string() + " is kept as " + place.string());
      return {};
    }
  }
  return setAside(file);
}

std::error_code LibraryFolder::setAside(const fs::path& file) const {
  if (!LXAction::creatDirectoryPro(asideFolder())) {
    return std::make_error_code(std::errc::io_error);
  }
  std::error_code error;
  const fs::path target = freePlace(file);
  fs::rename(file, target, error);
  if (error) {
    LXLogger::error(file.string() + " cannot be set aside: " + error.message());
  } else {
    LXLogger::warning(file.string() + " is no profile of the library: it is now " +
                      target.string());
  }
  return error;
}
