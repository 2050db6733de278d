// The library in the main window: creating, duplicating, deleting, importing, exporting, selecting
// and renaming profiles, and linking a program.

#include <filesystem>

#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileMenuData.h"
#include "Action/Library/ProfileNames.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/Utf8.h"
#include "Kit/Desktop/FilePanel.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Main/MainView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/FullStops.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/ProgramPanel.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"
#include "View/Windows/TransferProgress.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* tooManyProfiles = "Maximum number of profiles reached";
constexpr const char* brokenProfile = "Profile data destruction";
constexpr const char* replaceQuestion = "A file of this name is there already. Replace it?";
constexpr int nameReports = 3;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

}  // namespace

bool MainView::hasRoomForProfile() const {
  if (library().getProfileCount() < limits::profiles) {
    return true;
  }
  const NestedLoop scope;
  LXAction::showInfoMessage(NerinAction::tooltipText(tooManyProfiles).toStdString());
  return false;
}

// The next Apply adds the profile to the library.
void MainView::beginProfile(const std::string& name) {
  const Outcome outcome = NerinAction::beginProfile(name);
  refreshProfileMenu();
  showName();
  showTitle(std::nullopt);
  refreshApplyBtn();
  statusline::tell(outcome);
}

// A new profile wants a name of its own next.
void MainView::focusName() {
  m_profileNameTxt->setFocus(Qt::OtherFocusReason);
  m_profileNameTxt->selectAll();
}

void MainView::followLibrary() {
  refreshProfileMenu();
  const std::string shown = m_currProfileBtn->title().toStdString();
  if (shown.empty() || library().getProfileByName(shown)) {
    return;
  }
  // It was renamed, or it is gone.
  const auto profile = library().currProfile();
  showTitle(profile ? profile->name() : std::nullopt);
  if (!m_profileNameTxt->isTypedIn()) {
    showName();
  }
}

void MainView::addProfile() {
  if (hasRoomForProfile()) {
    beginProfile(library().getNewProfileName());
    focusName();
  }
}

void MainView::copyProfile() {
  const auto profile = library().currProfile();
  if (!profile) {
    NerinAction::showPopView("WarningNoItem", false);
    return;
  }
  if (hasRoomForProfile()) {
    beginProfile(library().getNewProfileNameByData(*profile));
    focusName();
  }
}

void MainView::delProfile() {
  if (!library().currProfile()) {
    return;
  }
  const QString name = QString::fromStdString(library().currProfile()->name().value_or(""));
  const Outcome outcome = NerinAction::deleteSelectedProfile();
  refreshProfileMenu();
  showTitle(std::nullopt);
  if (m_profileDelBtn->hasFocus()) {
    // Nothing is left to delete; the user selects another profile.
    m_currProfileBtn->setFocus(m_profileDelBtn->isFocusFromPointer() ? Qt::MouseFocusReason
                                                                     : Qt::OtherFocusReason);
  }
  statusline::tell(outcome);
  if (outcome.isDone() && NerinAction::canUndoDelete()) {
    statusline::say(NerinAction::tooltipText("Deleted: %1").arg(name), StatusLine::Tone::Done,
                    StatusLine::Offer{NerinAction::tooltipText("Undo"), [this] { undoDelete(); }});
  }
}

void MainView::undoDelete() {
  const Outcome outcome = NerinAction::undoDelete();
  refreshProfileMenu();
  showSlotTitle();
  statusline::tell(outcome);
}

void MainView::extentProfile() {
  const auto profile = library().currProfile();
  if (!profile) {
    NerinAction::showPopView("WarningNoItem", false);
    return;
  }
  const NestedLoop scope;
  const auto chosen = filepanel::saveFile(this, {.folder = LXPlatform::current().documentsFolder(),
                                                 .name = profile->name().value_or(""),
                                                 .extension = ".pro"});
  if (!chosen || termination::isTerminating()) {
    return;
  }
  const fs::path& path = *chosen;
  std::error_code error;
  if (fs::exists(path, error) &&
      !LXAction::ChooseInfoMessage(NerinAction::tooltipText(replaceQuestion).toStdString())) {
    return;
  }
  if (profile->saveToPath(path)) {
    LXAction::showInfoMessage(
        fullstops::sentence(NerinAction::tooltipText("The file could not be written."))
            .toStdString());
  }
}

void MainView::importProfile() {
  const NestedLoop scope;
  const auto chosen = filepanel::openFile(
      this, {.folder = LXPlatform::current().documentsFolder(), .patterns = {"*.pro", "*.PRO"}});
  if (termination::isTerminating()) {
    return;
  }
  NerinAction::Import imported;
  if (chosen) {
    imported = NerinAction::importProfile(*chosen);
    switch (imported.result) {
      case ProfieController::Added:
        refreshProfileMenu();
        break;
      case ProfieController::NoFile:
        LXAction::showInfoMessage(NerinAction::tooltipText(brokenProfile).toStdString());
        break;
      case ProfieController::Full:
        LXAction::showInfoMessage(NerinAction::tooltipText(tooManyProfiles).toStdString());
        break;
      case ProfieController::NameTaken:
        break;
    }
  }
  const Outcome outcome(SlotStep::SaveLibrary, library().saveToSys());
  // A save takes in what other programs did in the folder.
  refreshProfileMenu();
  statusline::tell(outcome);
  if (outcome.isDone() && imported.result == ProfieController::Added) {
    sayIfSpelled(imported.wanted, imported.name);
  }
}

void MainView::onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) {
  if (&list != m_profileList.get()) {
    return;
  }
  const auto entry = std::dynamic_pointer_cast<ProfileMenuData>(selNode->nodeData());
  if (!entry) {
    return;
  }
  setSelectedProfileProById(static_cast<std::uint64_t>(entry->profileId()), entry->profileName());
  raiseNeedSave();
}

void MainView::setSelectedProfileProById(std::uint64_t profileId,
                                         const std::optional<std::string>& name) {
  NerinAction::bindSlot(profileId);
  fillSettingData();
  showTitle(name);
}

bool MainView::checkProfileName(const std::string& name) {
  return !profilenames::isFactoryName(name) &&
         library().checkProfileName(utf8::lowercased(name), library().currProfile());
}

void MainView::reNamePro() {
  const std::string typed = m_profileNameTxt->text().toStdString();
  const std::string name = profilenames::forMouse(typed);
  Outcome outcome;
  bool isRenamed = false;
  if (profilenames::isStorable(name) && checkProfileName(name)) {
    const TransferProgress progress(m_progressBar, nameReports);
    outcome = NerinAction::renameSlot(name);
    isRenamed = outcome.isDone();
    showTitle(library().currFWProfileName());
    refreshProfileMenu();
    outcome += Outcome(SlotStep::SaveLibrary, library().saveToSys());
  }
  showName();
  statusline::tell(outcome);
  if (isRenamed && outcome.isDone()) {
    sayIfSpelled(typed, library().currFWProfileName().value_or(""));
  }
}

void MainView::showLaunchPro() {
  const NestedLoop scope;
  const auto chosen = programpanel::choose(this);
  if (!chosen || termination::isTerminating()) {
    return;
  }
  library().setCurrActivePath(chosen->string());
  showLinkPath();
  raiseNeedSave();
}
