// The library on disk: saving it, and taking in what others did there.

#include <algorithm>
#include <chrono>
#include <utility>

#include "Action/Library/LibraryHistory.h"
#include "Action/Library/LibraryLock.h"
#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileFileNames.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"

namespace fs = std::filesystem;

namespace {

using Clock = std::chrono::steady_clock;

// What is left of the time that a window may wait.
std::chrono::milliseconds leftSince(Clock::time_point begin) {
  const auto left = librarylock::windowLimit - (Clock::now() - begin);
  return std::max(std::chrono::duration_cast<std::chrono::milliseconds>(left),
                  std::chrono::milliseconds(0));
}

std::error_code notSaved(const std::error_code& error) {
  LXLogger::error("the library was not saved: " + error.message());
  return error;
}

}  // namespace

std::error_code ProfieController::saveToPath(const fs::path& folder) {
  std::error_code first;
  ProfileFileNames names;
  for (const Profile& profile : m_profileArr) {
    const auto error = profile->saveToPath(folder / names.next(profile->name()));
    if (error && !first) {
      first = error;
    }
  }
  return first;
}

std::error_code ProfieController::saveToSys() {
  if (m_loadError) {
    // Saving would delete the files that could not be listed.
    LXLogger::error("the library is not saved, since it was not read: " + m_loadError.message());
    return m_loadError;
  }
  const auto begin = Clock::now();
  const auto lock = librarylock::acquire();
  if (!lock) {
    return notSaved(std::make_error_code(std::errc::device_or_resource_busy));
  }
  const auto wait = leftSince(begin);
  if (const auto error = keepAside(takeInChanges())) {
    return notSaved(error);
  }
  const LibraryHistory history(m_sysProPath);
  // Also what was never saved here, such as a library of before there was a history.
  history.add();
  std::vector<durable::FolderEntry> entries;
  std::vector<ConfigBytes> contents;
  entries.reserve(m_profileArr.size());
  contents.reserve(m_profileArr.size());
  ProfileFileNames names;
  for (const Profile& profile : m_profileArr) {
    const ConfigBytes& bytes = contents.emplace_back(profile->fileBytes());
    entries.push_back({names.next(profile->name()), {bytes.data(), bytes.size()}});
  }
  if (const auto error = durable::replaceFolder(m_sysProPath, entries, wait)) {
    return notSaved(error);
  }
  m_files.forget();
  for (std::size_t i = 0; i < entries.size(); ++i) {
    m_files.remember(entries[i].name, m_profileArr[i], contents[i]);
  }
  history.add();
  return {};
}

void ProfieController::replaceProfiles(const Profiles& profiles) {
  m_profileArr.clear();
  for (const Profile& profile : profiles) {
    const Profile copy = std::make_shared<ProfileValue>(*profile);
    if (checkProfileName(copy->name(), nullptr)) {
      if (copy->profileId() == notLinked || !checkProfileId(copy->profileId(), nullptr)) {
        copy->setProfileId(getNewProfileId());
      }
      m_profileArr.push_back(copy);
    }
  }
  sortProfile();
  m_currProfile = m_currProfile ? getProfileByName(m_currProfile->name()) : nullptr;
  for (std::uint64_t& link : m_fwProfileID) {
    if (!getProValueByProid(link)) {
      link = notLinked;
    }
  }
}

ProfieController::FolderNews ProfieController::takeInFromDisk() {
  const auto lock = librarylock::acquire(std::chrono::milliseconds(0));
  if (!lock) {
    return FolderNews::Busy;
  }
  std::vector<std::optional<std::string>> before;
  before.reserve(m_profileArr.size());
  for (const Profile& profile : m_profileArr) {
    before.push_back(profile->name());
  }
  const auto changes = takeInChanges();
  const bool isSame =
      changes.changed.empty() &&
      std::equal(m_profileArr.begin(), m_profileArr.end(), before.begin(), before.end(),
                 [](const Profile& profile, const auto& name) { return profile->name() == name; });
  return isSame ? FolderNews::None : FolderNews::Taken;
}

// A save makes the folder hold exactly the list, so that what others did there comes first. Answers
// the changes with what the list could not take.
LibraryFolder::Changes ProfieController::takeInChanges() {
  LibraryFolder::Changes changes = m_files.changes();
  for (const Profile& profile : changes.deleted) {
    LXLogger::warning("deleted by another program: " + profile->name().value_or(""));
    relink(profile->profileId(), notLinked);
    delProfile(profile);
    m_files.forget(profile);
  }
  std::erase_if(changes.changed, [&](const LibraryFolder::Change& change) {
    if (takeOver(change)) {
      return false;
    }
    changes.conflicting.push_back(change.file);
    return true;
  });
  std::erase_if(changes.appeared, [this](const fs::path& file) {
    if (addByPath(file) != Added) {
      return false;
    }
    m_files.remember(file, m_profileArr.back());
    return true;
  });
  return changes;
}

bool ProfieController::takeOver(const LibraryFolder::Change& change) {
  const Profile& profile = change.profile;
  const Profile stored = ProfileValue::initWithPath(change.file);
  // A profile that is not in the list was deleted here.
  if (!stored || positionOf(profile) < 0 || !checkProfileName(stored->name(), profile) ||
      stored->profileId() == notLinked || !checkProfileId(stored->profileId(), profile)) {
    return false;
  }
  relink(profile->profileId(), stored->profileId());
  if (profile == m_currProfile && m_currFWProfileName == profile->name()) {
    // The name was not edited here either.
    m_currFWProfileName = stored->name();
  }
  *profile = *stored;
  m_files.forget(profile);
  m_files.remember(change.file, profile);
  return true;
}

void ProfieController::relink(std::uint64_t from, std::uint64_t to) {
  std::replace(m_fwProfileID.begin(), m_fwProfileID.end(), from, to);
}

// Nothing that the list could not take is lost in the save.
std::error_code ProfieController::keepAside(const LibraryFolder::Changes& changes) const {
  for (const auto* files : {&changes.appeared, &changes.conflicting}) {
    for (const fs::path& file : *files) {
      if (const auto error = m_files.keepAside(file)) {
        return error;
      }
    }
  }
  for (const fs::path& file : changes.foreign) {
    if (const auto error = m_files.setAside(file)) {
      return error;
    }
  }
  return {};
}

void ProfieController::clearAllProfile() {
  const fs::path support = NerinAction::getSysPath();
  if (support.empty() || m_sysProPath != support / libraryFolder) {
    LXLogger::error("not emptied, since it is not the library: " + m_sysProPath.string());
    return;
  }
  std::error_code error;
  fs::remove_all(m_sysProPath, error);
  m_files.forget();
  if (error || !LXAction::creatDirectoryPro(m_sysProPath)) {
    LXLogger::error("the folder cannot be emptied: " + m_sysProPath.string());
  }
}

std::error_code ProfieController::saveSeltoPath(const fs::path& folder) {
  if (!m_currProfile) {
    return {};
  }
  saveSelProfileToData();
  ProfileFileNames names;
  for (const Profile& profile : m_profileArr) {
    const std::string name = names.next(profile->name());
    if (profile == m_currProfile) {
      const auto error = profile->saveToPath(folder / name);
      if (!error && folder == m_sysProPath) {
        m_files.remember(folder / name, profile);
      }
      return error;
    }
  }
  return m_currProfile->saveToPath(folder / names.next(m_currProfile->name()));
}

std::error_code ProfieController::saveSelProfile() {
  const auto lock = librarylock::acquire();
  return lock ? saveSeltoPath(m_sysProPath)
              : notSaved(std::make_error_code(std::errc::device_or_resource_busy));
}

void ProfieController::saveSelProfileToData() {
  if (m_currProfile) {
    m_currProfile->setProfileData(editState->selProfile());
  }
}

void ProfieController::takeSelProfileFromMouse() {
  const bool wasUnchanged = m_currProfile && m_files.isUnchanged(m_currProfile);
  saveSelProfileToData();
  if (wasUnchanged) {
    m_files.rememberAsUnchanged(m_currProfile);
  }
}

void ProfieController::refreshSelProfileFromData() {
  if (m_currProfile) {
    editState->bind(m_currProfile->profileData());
  }
}
