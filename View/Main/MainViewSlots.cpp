// The mouse's slots: selecting one, applying the edit to it, resetting it.

#include <algorithm>

#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Main/MainView.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"
#include "View/Windows/TransferProgress.h"

namespace {

// Reports that a slot takes besides those of its macros.
constexpr int slotReports = 4;
constexpr int macroReports = 2;
constexpr int modeReports = 5;
constexpr int slotChangeReports = 2;
// Only the first slots can be reset.
constexpr int lastResetSlot = 4;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

int reportsOf(const _Nerin_PROFILE& profile) {
  const auto macros =
      std::count_if(std::begin(profile.btnInfo), std::end(profile.btnInfo),
                    [](const _BTN_INFO& button) { return button.btnType == ButtonTypeMacro; });
  return slotReports + macroReports * static_cast<int>(macros);
}

}  // namespace

bool MainView::shouldSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) {
  if (oldIndex < 1) {
    return true;
  }
  if (m_isModalSeron != 0 && !m_isFillSetting) {
    return false;
  }
  if (&sender == m_profileStep && !m_isFWChangeProfile && isNeedSave) {
    if (!NerinAction::showPopView("WarningNeedSave", true) || termination::isTerminating()) {
      return false;
    }
    buttonAction(*m_applyBtn);
    return true;
  }
  if (&sender == m_modeStep && !m_isFillSetting && !m_isFWChangeProfile && newIndex == 2) {
    NerinAction::showPopView("WarningBattle", false);
    return !termination::isTerminating();
  }
  return true;
}

void MainView::onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) {
  if (&sender == m_profileStep) {
    selectSlot(newIndex, oldIndex);
  } else if (&sender == m_modeStep) {
    selectMode(newIndex, oldIndex);
  }
}

void MainView::selectSlot(int newIndex, int oldIndex) {
  const int slot = newIndex - 1;
  const TransferProgress progress(m_progressBar,
                                  slotChangeReports + reportsOf(selProfile) + modeReports);
  if (oldIndex > 0) {
    NerinAction::setProfileIndexToDevice(static_cast<std::uint8_t>(slot));
  }
  library().setCurrFWProfileIndex(slot);
  getFwProfileDataPro(slot);
  NerinAction::loadSlotLink(slot);
  fillSettingData();
  if (oldIndex > 0) {
    NerinAction::sendProfileChangeToDaemon(slot);
  }
}

// A profile that the slot is not linked to must not stay selected behind an empty title.
void MainView::getFwProfileDataPro(int slot) {
  if (!NerinAction::loadSlotProfile(slot)) {
    return;
  }
  const auto id = library().fwProfileID()[static_cast<std::size_t>(slot)];
  if (id == ProfieController::notLinked) {
    library().setCurrProfile(nullptr);
    showTitle(std::nullopt);
    return;
  }
  library().setCurrProfile(library().getProValueByProid(id));
  showTitle(library().currFWProfileName());
}

void MainView::setFwProfileDataPro(int slot) {
  const TransferProgress progress(m_progressBar, reportsOf(selProfile));
  NerinAction::writeSlot(slot);
}

void MainView::selectMode(int newIndex, int oldIndex) {
  const TransferProgress progress(m_progressBar, modeReports);
  selProfile.modeType = static_cast<std::uint32_t>(newIndex - 1);
  currSetProfile = selProfile;
  NerinAction::setModelToDevice();
  // Only what the user chose is an edit.
  if (oldIndex > 0 && !m_isFillSetting) {
    raiseNeedSave();
  }
}

void MainView::saveLinkApp() {
  NerinAction::saveLinkApp();
}

// The name under which the slot is stored must be nobody else's: two profiles of one name would
// share a file, and one of them would be lost.
void MainView::settleName() {
  const auto& name = library().currFWProfileName();
  if (!name || name->empty()) {
    library().setCurrFWProfileName(library().getNewProfileName());
  } else if (const auto owner = library().getProfileByName(name);
             owner && owner != library().getProfileByFWProIndex(currentSlot())) {
    library().setCurrFWProfileName(library().getNewProfileNameByData(*owner));
  }
  showName();
}

void MainView::applyPro() {
  settleName();
  saveLinkApp();
  setFwProfileDataPro(currentSlot());
  library().saveCurrFWProfileToList();
  NerinAction::sendMessageToDaemon(NerinAction::MessageProfileApplied);
  showTitle(library().currFWProfileName());
  refreshProfileMenu();
  isNeedSave = false;
  refreshApplyBtn();
}

void MainView::resetPro() {
  if (currentSlot() > lastResetSlot || !NerinAction::showPopView("WarningReset", true) ||
      termination::isTerminating()) {
    return;
  }
  const auto factory = library().currDefProfile();
  if (!factory) {
    return;
  }
  const int slot = currentSlot();
  library().setCurrFWProfileName(factory->name());
  selProfile = factory->profileData();
  settleName();
  setFwProfileDataPro(slot);
  library().saveCurrFWProfileToList();
  NerinAction::sendMessageToDaemon(NerinAction::MessageProfileApplied);
  fillSettingData();
  const bool isLinked =
      library().fwProfileID()[static_cast<std::size_t>(slot)] != ProfieController::notLinked;
  showTitle(isLinked ? library().currFWProfileName() : std::nullopt);
  refreshProfileMenu();
  isNeedSave = false;
  refreshApplyBtn();
}
