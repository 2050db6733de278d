// The links between the mouse's slots and the library, and the preferences of the slots.

#include "Action/Library/PreferenceKeys.h"
#include "Action/Library/ProfieController.h"
#include "Action/Library/SupportFolder.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/PreferenceFile.h"

namespace {

PreferenceFile preferences() {
  return PreferenceFile(NerinAction::preferenceFilePath());
}

bool isSlot(int index) {
  return index >= 0 && index < ProfieController::slotCount;
}

}  // namespace

void ProfieController::setCurrFWProfileIndex(int index) {
  if (isSlot(index)) {
    m_currFWProfileIndex = index;
    m_currDefProfile = m_defaultProfileArrs[static_cast<std::size_t>(index)];
  }
}

void ProfieController::setFwProfileId(std::int32_t id, int byIndex) {
  if (isSlot(byIndex)) {
    m_fwProfileID[static_cast<std::size_t>(byIndex)] =
        static_cast<std::uint64_t>(static_cast<std::int64_t>(id));
  }
}

ProfieController::Profile ProfieController::getProfileByFWProIndex(int index) const {
  if (!isSlot(index) || m_fwProfileID[static_cast<std::size_t>(index)] == notLinked) {
    return nullptr;
  }
  return getProValueByProid(m_fwProfileID[static_cast<std::size_t>(index)]);
}

void ProfieController::refreshFWCurrName() {
  if (m_currProfile) {
    m_currFWProfileName = m_currProfile->name();
  }
}

std::error_code ProfieController::saveCurrFWProfileToList() {
  if (!isSlot(m_currFWProfileIndex)) {
    return {};
  }
  std::uint64_t& link = m_fwProfileID[static_cast<std::size_t>(m_currFWProfileIndex)];
  // Another program may have deleted the profile that the slot is linked to.
  const bool isLinkStale = !m_currProfile && !getProValueByProid(link);
  if (link == notLinked || isLinkStale) {
    m_currProfile = addProfileByName(m_currFWProfileName, nullptr);
    saveSelProfileToData();
    link = m_currProfile->profileId();
  } else if (m_currProfile) {
    m_currProfile->setName(m_currFWProfileName);
  }
  if (!saveFWProfileIdByIndex(m_currFWProfileIndex)) {
    // Not an error: the mouse itself knows which profile a slot holds.
    LXLogger::warning("the slot's link could not be stored in the preferences");
  }
  // saveToSys also writes the selected profile. A kill between two writes would lose the library.
  saveSelProfileToData();
  if (m_currProfile) {
    // The user wants it as it is now, whatever others did to it.
    m_files.rememberAsChanged(m_currProfile);
  }
  return saveToSys();
}

void ProfieController::setFWProfileByIndex(int index) {
  static_cast<void>(index);
}

ProfieController::Profile ProfieController::defaultProfile() const {
  if (m_defaultProfileArrs.empty()) {
    return nullptr;
  }
  const auto index = static_cast<std::size_t>(m_currFWProfileIndex);
  const bool isInside = m_currFWProfileIndex >= 0 && index < m_defaultProfileArrs.size();
  return m_defaultProfileArrs[isInside ? index : 0];
}

_BTN_INFO ProfieController::getDefBtnInfoByIndex(int index) const {
  if (!m_currDefProfile || index < 0 || index >= static_cast<int>(buttonCount)) {
    return {};
  }
  return m_currDefProfile->profileData().btnInfo[index];
}

bool ProfieController::saveFWProfileIdByIndex(int k) {
  if (k < 1 || k > slotCount) {
    return true;
  }
  constexpr std::uint64_t lowByte = 0xFF;
  const std::uint64_t id = m_fwProfileID[static_cast<std::size_t>(k - 1)];
  return preferences().setValue(preferencekeys::profile(k), (id & lowByte) != 0);
}

std::int64_t ProfieController::getFWProfileIdByIndex(int k) const {
  if (k < 1 || k > slotCount) {
    return -1;
  }
  return preferences().integerFor(preferencekeys::profile(k)).value_or(-1);
}

bool ProfieController::setLaunchPath(const std::string& path, int pIndex, int bIndex) {
  return preferences().setValue(preferencekeys::launchPath(pIndex, bIndex), path);
}

std::optional<std::string> ProfieController::getLaunchPath(int pIndex, int bIndex) const {
  return preferences().stringFor(preferencekeys::launchPath(pIndex, bIndex));
}

bool ProfieController::setLinkAppPath(const std::optional<std::string>& path, int pIndex,
                                      bool isActive) {
  bool isStoredActive = false;
  if (getLinkAppPath(pIndex, isStoredActive) == path.value_or("") && isStoredActive == isActive) {
    // Skip the write, which would fail on a full disk.
    return true;
  }
  return preferences().setValues(preferencekeys::linkApp,
                                 {{preferencekeys::profile(pIndex), path.value_or("")},
                                  {preferencekeys::linkIsActive(pIndex), isActive}});
}

std::optional<std::string> ProfieController::getLinkAppPath(int pIndex, bool& isActive) const {
  const PreferenceFile file = preferences();
  isActive =
      file.boolFor(preferencekeys::linkApp, preferencekeys::linkIsActive(pIndex)).value_or(false);
  return file.stringFor(preferencekeys::linkApp, preferencekeys::profile(pIndex));
}

bool ProfieController::setIsOSD(bool isOSD) {
  m_isOSD = isOSD;
  return preferences().setValue(preferencekeys::osd, isOSD);
}

bool ProfieController::isOSD() {
  const auto stored = preferences().boolFor(preferencekeys::osd);
  if (stored) {
    m_isOSD = *stored;
  } else if (!setIsOSD(true)) {
    LXLogger::warning("the display stays on, and the preferences do not say so");
  }
  return m_isOSD;
}

bool ProfieController::setSwitchesSlots(bool switchesSlots) {
  return preferences().setValue(preferencekeys::switchSlots, switchesSlots);
}

bool ProfieController::switchesSlots() const {
  return preferences().boolFor(preferencekeys::switchSlots).value_or(true);
}
