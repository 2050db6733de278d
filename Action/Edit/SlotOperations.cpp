#include "Action/Edit/SlotOperations.h"

#include "Action/Device/SlotTransfer.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Action/Service/DaemonMessages.h"

namespace {

constexpr int lastResetSlot = 4;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

// The mouse stores its active slot in four bits, so it can name slots that do not exist.
bool isSlot(int slot) {
  return slot >= 0 && slot < limits::slotCount;
}

Outcome noSuchSlot(SlotStep step) {
  return {step, std::make_error_code(std::errc::invalid_argument)};
}

// Gives the slot's profile a unique name, since a read finds the slot's profile by its name.
void settleName() {
  const auto& name = library().currFWProfileName();
  if (!name || name->empty()) {
    library().setCurrFWProfileName(library().getNewProfileName());
  } else if (const auto owner = library().getProfileByName(name);
             owner && owner != library().getProfileByFWProIndex(library().currFWProfileIndex())) {
    library().setCurrFWProfileName(library().getNewProfileNameByData(*owner));
  }
}

Outcome saveSlotToLibrary() {
  return {SlotStep::SaveLibrary, library().saveCurrFWProfileToList()};
}

// The steps that Apply and Reset share.
Outcome commit() {
  Outcome outcome = NerinAction::writeSlot(library().currFWProfileIndex());
  outcome += saveSlotToLibrary();
  NerinAction::sendMessageToDaemon(NerinAction::MessageProfileApplied);
  if (outcome.isDone()) {
    editState->settle();
  } else {
    // There is something to apply until all of it arrived.
    editState->raiseNeedSave();
  }
  return outcome;
}

}  // namespace

NerinAction::ReadResult<bool> NerinAction::loadSlot(int slot) {
  if (!isSlot(slot)) {
    return {noSuchSlot(SlotStep::ReadName), false};
  }
  const auto read = readSlot(slot);
  if (read.value) {
    editState->load(editState->currFWProfile());
    // Only a profile that is linked to the slot may stay selected.
    library().setCurrProfile(library().getProfileByFWProIndex(slot));
    library().saveSelProfileToData();
  } else {
    editState->forgetBase();
    // What is shown stays. An Apply makes a new profile of it: the one that the slot was linked to
    // before may be another than the one that is shown.
    library().fwProfileID()[static_cast<std::size_t>(slot)] = ProfieController::notLinked;
  }
  beginSlot(slot);
  return read;
}

NerinAction::ReadResult<bool> NerinAction::readSlot(int slot) {
  if (!isSlot(slot)) {
    return {noSuchSlot(SlotStep::ReadName), false};
  }
  library().setCurrFWProfileIndex(slot);
  editState->setIsHaveNewName(false);
  return getFWProfileData(static_cast<std::uint8_t>(slot));
}

void NerinAction::beginSlot(int slot) {
  library().setCurrFWProfileIndex(slot);
  bool isActive = false;
  library().setCurrActivePath(library().getLinkAppPath(slot, isActive));
  library().setCurrIsActive(isActive);
}

Outcome NerinAction::changeSlot(int slot, const std::function<Outcome()>& whenSelected) {
  if (!isSlot(slot)) {
    return noSuchSlot(SlotStep::SelectSlot);
  }
  const MouseHold hold;
  Outcome outcome = setProfileIndexToDevice(static_cast<std::uint8_t>(slot));
  const bool isSelected = outcome.isDone();
  if (whenSelected) {
    outcome += whenSelected();
  }
  if (isSelected) {
    sendProfileChangeToDaemon(slot);
  }
  return outcome;
}

void NerinAction::bindSlot(std::uint64_t profileId) {
  library().fwProfileID()[static_cast<std::size_t>(library().currFWProfileIndex())] = profileId;
  library().setSelectById(profileId);
  library().refreshSelProfileFromData();
}

Outcome NerinAction::beginProfile(const std::string& name) {
  library().setFwProfileId(-1, library().currFWProfileIndex());
  library().setCurrFWProfileName(name);
  library().setCurrProfile(nullptr);
  editState->raiseNeedSave();
  return {SlotStep::SaveLibrary, library().saveToSys()};
}

Outcome NerinAction::deleteSelectedProfile() {
  library().delProfile(library().currProfile());
  library().setFwProfileId(-1, library().currFWProfileIndex());
  return {SlotStep::SaveLibrary, library().saveToSys()};
}

Outcome NerinAction::saveLinkApp() {
  if (const auto& profile = library().currProfile()) {
    profile->setIsActiveApp(library().currIsActive());
    profile->setActiveAppPath(library().currActivePath());
  }
  return Outcome::of(
      SlotStep::SavePreferences,
      library().setLinkAppPath(library().currActivePath(), library().currFWProfileIndex(),
                               library().currIsActive()));
}

Outcome NerinAction::writeSlot(int slot) {
  if (!isSlot(slot)) {
    return noSuchSlot(SlotStep::WriteImage);
  }
  editState->currFWProfile() = editState->selProfile();
  return setFWProfileData(static_cast<std::uint8_t>(slot));
}

Outcome NerinAction::applySlot() {
  settleName();
  const Outcome link = saveLinkApp();
  Outcome outcome = commit();
  outcome += link;
  return outcome;
}

bool NerinAction::canResetSlot(int slot) {
  return isSlot(slot) && slot <= lastResetSlot;
}

Outcome NerinAction::resetSlot() {
  const auto factory = library().currDefProfile();
  if (!factory || !canResetSlot(library().currFWProfileIndex())) {
    return {};
  }
  library().setCurrFWProfileName(factory->name());
  editState->bind(factory->profileData());
  settleName();
  return commit();
}

Outcome NerinAction::renameSlot(const std::string& name) {
  library().setCurrFWProfileName(name);
  settleName();
  Outcome outcome = setFWProfileName(static_cast<std::uint8_t>(library().currFWProfileIndex()),
                                     library().currFWProfileName());
  outcome += saveSlotToLibrary();
  return outcome;
}
