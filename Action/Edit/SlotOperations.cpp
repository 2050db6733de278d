#include "Action/Edit/SlotOperations.h"

#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Service/DaemonMessages.h"
#include "Action/Wire/ProfileImage.h"

namespace {

ProfieController& library() {
  return ProfieController::getShareProCon();
}

// The mouse has four bits for its active slot and can name slots that it does not have.
bool isSlot(int slot) {
  return slot >= 0 && slot < ProfieController::slotCount;
}

}  // namespace

bool NerinAction::loadSlot(int slot) {
  if (!isSlot(slot)) {
    return false;
  }
  library().setCurrFWProfileIndex(slot);
  const bool hasProfile = loadSlotProfile(slot);
  loadSlotLink(slot);
  return hasProfile;
}

bool NerinAction::loadSlotProfile(int slot) {
  isHaveNewName = false;
  if (!isSlot(slot) || !getFWProfileData(static_cast<std::uint8_t>(slot))) {
    return false;
  }
  selProfile = currFWProfile;
  if (const auto profile = library().getProfileByFWProIndex(slot)) {
    library().setCurrProfile(profile);
    library().saveSelProfileToData();
  }
  return true;
}

void NerinAction::loadSlotLink(int slot) {
  bool isActive = false;
  library().setCurrActivePath(library().getLinkAppPath(slot, isActive));
  library().setCurrIsActive(isActive);
}

void NerinAction::bindSlot(std::uint64_t profileId) {
  library().fwProfileID()[static_cast<std::size_t>(library().currFWProfileIndex())] = profileId;
  library().setSelectById(profileId);
  library().refreshSelProfileFromData();
}

void NerinAction::saveLinkApp() {
  if (const auto& profile = library().currProfile()) {
    profile->setIsActiveApp(library().currIsActive());
    profile->setActiveAppPath(library().currActivePath());
  }
  library().setLinkAppPath(library().currActivePath(), library().currFWProfileIndex(),
                           library().currIsActive());
}

void NerinAction::writeSlot(int slot) {
  if (!isSlot(slot)) {
    return;
  }
  currFWProfile = selProfile;
  setFWProfileData(static_cast<std::uint8_t>(slot));
}

std::error_code NerinAction::applySlot() {
  saveLinkApp();
  writeSlot(library().currFWProfileIndex());
  const auto error = library().saveCurrFWProfileToList();
  sendMessageToDaemon(MessageProfileApplied);
  return error;
}
