#include "Action/Library/ProfieController.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "Action/Library/LibraryLock.h"
#include "Action/Library/ProfileFileNames.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ProcessWide.h"
#include "Kit/Core/Utf8.h"

namespace fs = std::filesystem;

namespace {

ProcessWide<std::unique_ptr<ProfieController>> sharedController;

}  // namespace

ProfieController& ProfieController::getShareProCon() {
  auto& controller = *sharedController;
  if (!controller) {
    controller = std::make_unique<ProfieController>();
  }
  return *controller;
}

void ProfieController::releaseShareProCon() {
  sharedController->reset();
}

ProfieController::ProfieController()
    : m_sysProPath(fs::path(NerinAction::getSysPath()) / libraryFolder), m_files(m_sysProPath) {
  // Recover before making the folder: an interrupted save may have left it missing.
  durable::recoverFolder(m_sysProPath);
  if (!LXAction::creatDirectoryPro(m_sysProPath)) {
    LXLogger::error("the folder cannot be made: " + m_sysProPath.string());
  }
  loadDefaults();
  refreshProfile();
}

void ProfieController::loadDefaults() {
  for (int n = 1; n <= slotCount; ++n) {
    m_defaultProfileArrs.push_back(ProfileValue::initWithPath(
        LXPlatform::current().resourceFolder /
        ("Profile#" + std::to_string(n) + "." + ProfileFileNames::extension)));
  }
}

void ProfieController::refreshProfile() {
  // Not while another program replaces it. One that takes long leaves a library that is whole.
  const auto lock = librarylock::acquire();
  m_currProfile = nullptr;
  m_profileArr.clear();
  m_loadError.clear();
  m_files = LibraryFolder(m_sysProPath);
  for (const fs::path& file : m_files.profileFiles(m_loadError)) {
    if (addByPath(file) == Added) {
      m_files.remember(file, m_profileArr.back());
    }
  }
  if (m_loadError) {
    LXLogger::error("the library cannot be read: " + m_loadError.message());
  }
  sortProfile();
  // The records are stored under 1 to 10 but read under 0 to 9, so slot 0 never has one.
  for (int slot = 0; slot < slotCount; ++slot) {
    m_fwProfileID[static_cast<std::size_t>(slot)] =
        static_cast<std::uint64_t>(getFWProfileIdByIndex(slot));
  }
}

void ProfieController::sortProfile() {
  std::stable_sort(
      m_profileArr.begin(), m_profileArr.end(),
      [](const Profile& a, const Profile& b) { return a->profileId() < b->profileId(); });
}

ProfieController::Profile ProfieController::addProfile() {
  return addProfileByName(getNewProfileName(), nullptr);
}

ProfieController::Profile ProfieController::addProfileByName(const std::optional<std::string>& name,
                                                             const Profile& pro) {
  const Profile source = pro ? pro : defaultProfile();
  auto profile = std::make_shared<ProfileValue>();
  profile->setName(name);
  profile->setProfileId(getNewProfileId());
  if (source) {
    profile->setProfileData(source->profileData());
  }
  return m_profileArr.emplace_back(std::move(profile));
}

std::uint64_t ProfieController::getNewProfileId() const {
  std::uint64_t largest = 0;
  for (const Profile& profile : m_profileArr) {
    largest = std::max(largest, profile->profileId());
  }
  if (largest + 1 != notLinked) {
    return largest + 1;
  }
  // Only a damaged file has the maximum id. Then the first free id serves.
  std::uint64_t id = 1;
  while (!checkProfileId(id, nullptr)) {
    ++id;
  }
  return id;
}

std::string ProfieController::freeName(const std::string& stem) const {
  for (int n = 1;; ++n) {
    const std::string suffix = "_" + std::to_string(n);
    // Leave room for the suffix in the name field of the file.
    std::string name(utf8::prefixOfBytes(stem, textSize - 1 - suffix.size()));
    name += suffix;
    if (checkProfileName(name, nullptr)) {
      return name;
    }
  }
}

std::string ProfieController::getNewProfileName() const {
  return freeName("NewPF");
}

std::string ProfieController::getNewProfileNameByData(const ProfileValue& profile) const {
  return freeName(profile.name().value_or(""));
}

bool ProfieController::checkProfileName(const std::optional<std::string>& name,
                                        const Profile& pro) const {
  return !name ||
         std::none_of(m_profileArr.begin(), m_profileArr.end(), [&](const Profile& profile) {
           return profile != pro && profile->name() == name;
         });
}

bool ProfieController::checkProfileId(std::uint64_t id, const Profile& pro) const {
  return std::none_of(m_profileArr.begin(), m_profileArr.end(), [&](const Profile& profile) {
    return profile != pro && profile->profileId() == id;
  });
}

ProfieController::AddResult ProfieController::addByPath(const fs::path& path) {
  return addByPath(path, false);
}

ProfieController::AddResult ProfieController::addByPath(const fs::path& path, bool isCreate) {
  Profile profile =
      isCreate ? ProfileValue::initWithWholeFile(path) : ProfileValue::initWithPath(path);
  if (!profile) {
    return NoFile;
  }
  if (isCreate && getProfileCount() >= limits::profiles) {
    return Full;
  }
  if (!checkProfileName(profile->name(), nullptr)) {
    if (!isCreate) {
      LXLogger::warning(path.string() + " is passed over: its name is taken");
      return NameTaken;
    }
    profile->setName(getNewProfileNameByData(*profile));
  }
  if (profile->profileId() == notLinked || !checkProfileId(profile->profileId(), nullptr)) {
    profile->setProfileId(getNewProfileId());
  }
  m_profileArr.push_back(std::move(profile));
  return Added;
}

void ProfieController::setSelectByName(const std::optional<std::string>& name) {
  m_currProfile = getProfileByName(name);
}

void ProfieController::setSelectByIndex(std::ptrdiff_t index) {
  if (index >= 0 && index < std::ssize(m_profileArr)) {
    m_currProfile = m_profileArr[static_cast<std::size_t>(index)];
  }
}

void ProfieController::setSelectById(std::uint64_t id) {
  m_currProfile = getProValueByProid(id);
  refreshFWCurrName();
}

ProfieController::Profile ProfieController::getProfileByName(
    const std::optional<std::string>& name) const {
  const auto found =
      std::find_if(m_profileArr.begin(), m_profileArr.end(),
                   [&](const Profile& profile) { return name && profile->name() == name; });
  return found != m_profileArr.end() ? *found : nullptr;
}

ProfieController::Profile ProfieController::getProValueByProid(std::uint64_t id) const {
  const auto found =
      std::find_if(m_profileArr.begin(), m_profileArr.end(),
                   [&](const Profile& profile) { return profile->profileId() == id; });
  return found != m_profileArr.end() ? *found : nullptr;
}

std::ptrdiff_t ProfieController::positionOf(const Profile& profile) const {
  const auto found = std::find(m_profileArr.begin(), m_profileArr.end(), profile);
  return found != m_profileArr.end() ? found - m_profileArr.begin() : -1;
}

std::size_t ProfieController::getCurrProfileIndex() const {
  const std::ptrdiff_t position = m_currProfile ? positionOf(m_currProfile) : -1;
  return position >= 0 ? static_cast<std::size_t>(position) : notFound;
}

void ProfieController::delProfile(const Profile& profile) {
  // First of all, since the caller may hand over the selection itself.
  const std::ptrdiff_t position = positionOf(profile);
  if (m_currProfile == profile) {
    m_currProfile = nullptr;
  }
  if (position >= 0) {
    m_profileArr.erase(m_profileArr.begin() + position);
  }
}

void ProfieController::delProByName(const std::optional<std::string>& name) {
  if (const Profile profile = getProfileByName(name)) {
    delProfile(profile);
  }
}

void ProfieController::restoreProfile(const Profile& profile) {
  if (!checkProfileName(profile->name(), nullptr)) {
    profile->setName(getNewProfileNameByData(*profile));
  }
  if (!checkProfileId(profile->profileId(), nullptr)) {
    profile->setProfileId(getNewProfileId());
  }
  m_profileArr.push_back(profile);
}

ProfieController::Profile ProfieController::getNextProfie(const Profile& profile) const {
  const std::ptrdiff_t position = positionOf(profile);
  if (m_profileArr.size() < 2 || position < 0) {
    return nullptr;
  }
  const auto at = static_cast<std::size_t>(position);
  return at + 1 < m_profileArr.size() ? m_profileArr[at + 1] : m_profileArr[at - 1];
}

ProfieController::Profile ProfieController::getNextProfieWithNodef(const Profile& profile) const {
  const std::ptrdiff_t count = std::ssize(m_profileArr);
  if (count < 7) {
    return nullptr;
  }
  std::ptrdiff_t next = positionOf(profile) + 1;
  if (next >= count) {
    next -= 2;
  }
  if (next + 1 >= count) {
    return nullptr;
  }
  const Profile& candidate = m_profileArr[static_cast<std::size_t>(next + 1)];
  if (candidate == profile) {
    return nullptr;
  }
  return candidate->isDefault() ? getNextProfieWithNodef(candidate) : candidate;
}

void ProfieController::removeAllNoDefault() {
  std::erase_if(m_profileArr, [](const Profile& profile) { return !profile->isDefault(); });
  if (getCurrProfileIndex() == notFound) {
    m_currProfile = nullptr;
  }
}

void ProfieController::getNoDefaultProArr(Profiles& list) const {
  std::copy_if(m_profileArr.begin(), m_profileArr.end(), std::back_inserter(list),
               [](const Profile& profile) { return !profile->isDefault(); });
}

void ProfieController::setNoDefaultProArr(const Profiles& list) {
  removeAllNoDefault();
  m_profileArr.insert(m_profileArr.end(), list.begin(), list.end());
}

void ProfieController::des() const {
  for (const Profile& profile : m_profileArr) {
    LXLogger::debug(profile->name().value_or("") + "=" + std::to_string(profile->profileId()));
  }
}
