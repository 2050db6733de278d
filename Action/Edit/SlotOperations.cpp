#include "Action/Edit/SlotOperations.h"

#include <bitset>
#include <utility>

#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/EditHistory.h"
#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileNames.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Action/Service/DaemonMessages.h"
#include "Kit/Core/ProcessWide.h"

namespace {

constexpr int lastResetSlot = 4;

struct DeletedProfile {
  ProfieController::Profile profile;
  std::bitset<ProfieController::slotCount> slots;  // that were linked to it
};
ProcessWide<DeletedProfile> lastDeleted;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

std::bitset<ProfieController::slotCount> linkedSlots(std::uint64_t id) {
  std::bitset<ProfieController::slotCount> slots;
  for (std::size_t slot = 0; slot < slots.size(); ++slot) {
    slots[slot] = library().fwProfileID()[slot] == id;
  }
  return slots;
}

// The mouse stores its active slot in four bits, so it can name slots that do not exist.
bool isSlot(int slot) {
  return slot >= 0 && slot < limits::slotCount;
}

Outcome noSuchSlot(SlotStep step) {
  return {step, std::make_error_code(std::errc::invalid_argument)};
}

bool isFreeForSlot(const std::string& name) {
  const auto owner = library().getProfileByName(name);
  return !owner || owner == library().getProfileByFWProIndex(library().currFWProfileIndex());
}

// The name with the first free number, short enough for the mouse.
std::string numbered(const std::string& name) {
  for (int n = 1;; ++n) {
    const std::string suffix = "_" + std::to_string(n);
    std::string candidate = name.substr(0, limits::nameCharacters - suffix.size()) + suffix;
    if (isFreeForSlot(candidate)) {
      return candidate;
    }
  }
}

// Gives the slot's profile a unique name that the mouse can hold, since a read finds the slot's
// profile by its name.
void settleName() {
  const std::string name = profilenames::forMouse(library().currFWProfileName().value_or(""));
  if (name.empty()) {
    library().setCurrFWProfileName(library().getNewProfileName());
  } else {
    library().setCurrFWProfileName(isFreeForSlot(name) ? name : numbered(name));
  }
}

Outcome libraryIsFull() {
  return {SlotStep::MakeProfile, std::make_error_code(std::errc::value_too_large)};
}

void unlink(int slot) {
  library().fwProfileID()[static_cast<std::size_t>(slot)] = ProfieController::notLinked;
}

// Whether the mouse was not there, silent or not free before the first report.
bool isNothingSent(const Outcome& outcome) {
  const std::error_code error = outcome.failure()->error;
  const int reports = NerinAction::reportsInSeries();
  return reports == 0 || (reports == 1 && (error == std::errc::no_such_device ||
                                           error == std::errc::device_or_resource_busy));
}

Outcome saveSlotToLibrary() {
  return {SlotStep::SaveLibrary, library().saveCurrFWProfileToList()};
}

// The steps that Apply and Reset share.
Outcome commit() {
  Outcome outcome = NerinAction::writeSlot(library().currFWProfileIndex());
  // The library keeps the edit, whatever becomes of the mouse.
  outcome += saveSlotToLibrary();
  NerinAction::sendMessageToDaemon(NerinAction::MessageProfileApplied);
  if (outcome.isDone()) {
    editState->settle();
  } else {
    // There is something to apply until all of it arrived.
    editState->raiseNeedSave();
    NerinAction::keepDraft();
  }
  NerinAction::recordWrite(outcome.isDone());
  return outcome;
}

}  // namespace

NerinAction::ReadResult<bool> NerinAction::loadSlot(int slot) {
  if (!isSlot(slot)) {
    return {noSuchSlot(SlotStep::ReadName), false};
  }
  // The slot may have been left by a press on the mouse itself.
  keepDraft();
  const auto read = readSlot(slot);
  if (read.value) {
    editState->load(editState->currFWProfile());
  } else {
    // What is shown stays. An Apply makes a new profile of it: the one that the slot was linked to
    // before may be another than the one that is shown.
    editState->forgetBase();
  }
  if (!read.value || isApplyUnfinished(slot)) {
    // A mixture of two profiles must not become the content of either.
    unlink(slot);
  }
  if (read.value) {
    // Only a profile that is linked to the slot may stay selected.
    library().setCurrProfile(library().getProfileByFWProIndex(slot));
    library().takeSelProfileFromMouse();
  }
  beginSlot(slot);
  beginHistory(read.value && !isApplyUnfinished(slot));
  restoreDraft(slot);
  recordEdit();
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
  const auto profile = library().currProfile();
  const auto slot = static_cast<std::size_t>(library().currFWProfileIndex());
  if (profile) {
    *lastDeleted = {profile, linkedSlots(profile->profileId())};
    lastDeleted->slots.set(slot);
    library().relink(profile->profileId(), ProfieController::notLinked);
  }
  library().delProfile(profile);
  library().fwProfileID()[slot] = ProfieController::notLinked;
  return {SlotStep::SaveLibrary, library().saveToSys()};
}

bool NerinAction::canUndoDelete() {
  return lastDeleted->profile != nullptr && library().getProfileCount() < limits::profiles;
}

Outcome NerinAction::undoDelete() {
  if (!canUndoDelete()) {
    return {};
  }
  const DeletedProfile deleted = std::exchange(*lastDeleted, {});
  library().restoreProfile(deleted.profile);
  auto& links = library().fwProfileID();
  for (std::size_t slot = 0; slot < links.size(); ++slot) {
    if (deleted.slots[slot] && links[slot] == ProfieController::notLinked) {
      links[slot] = deleted.profile->profileId();
      if (static_cast<int>(slot) == library().currFWProfileIndex()) {
        library().setCurrProfile(deleted.profile);
      }
    }
  }
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
  // One series, so that no other program finds the slot half written.
  const TransferSeries series;
  const bool wasUnfinished = isApplyUnfinished(slot);
  beginApply(currentDraft(slot));
  Outcome outcome = setFWProfileData(static_cast<std::uint8_t>(slot));
  if (outcome.isDone()) {
    endApply(slot);
    editState->forgetEdited();
  } else if (!wasUnfinished && isNothingSent(outcome)) {
    forgetApply(slot);
  }
  return outcome;
}

NerinAction::Import NerinAction::importProfile(const std::filesystem::path& file) {
  Import import;
  import.result = library().addByPath(file, true);
  if (import.result != ProfieController::Added) {
    return import;
  }
  const auto profile = library().profileArr().back();
  import.wanted = profile->name().value_or("");
  import.name = import.wanted;
  if (!import.wanted.empty() && !profilenames::isHeldByMouse(import.wanted)) {
    const std::string spelled = profilenames::forMouse(import.wanted);
    import.name = spelled.empty()                                ? library().getNewProfileName()
                  : library().checkProfileName(spelled, profile) ? spelled
                                                                 : numbered(spelled);
    profile->setName(import.name);
  }
  return import;
}

bool NerinAction::hasRoomForSlot() {
  return library().getProfileByFWProIndex(library().currFWProfileIndex()) != nullptr ||
         library().getProfileCount() < limits::profiles;
}

Outcome NerinAction::applySlot() {
  if (!hasRoomForSlot()) {
    return libraryIsFull();
  }
  recordEdit();
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
  if (!hasRoomForSlot()) {
    return libraryIsFull();
  }
  recordEdit();
  library().setCurrFWProfileName(factory->name());
  editState->bind(factory->profileData());
  recordReset();
  settleName();
  return commit();
}

Outcome NerinAction::renameSlot(const std::string& name) {
  if (!hasRoomForSlot()) {
    return libraryIsFull();
  }
  recordEdit();
  const auto before = library().currFWProfileName();
  library().setCurrFWProfileName(name);
  settleName();
  Outcome outcome = setFWProfileName(static_cast<std::uint8_t>(library().currFWProfileIndex()),
                                     library().currFWProfileName());
  if (outcome.isDone()) {
    // A draft with the old name would take the new one back.
    keepDraft();
    outcome += saveSlotToLibrary();
    recordRename();
  } else {
    library().setCurrFWProfileName(before);
  }
  return outcome;
}
