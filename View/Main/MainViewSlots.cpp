// The mouse's slots: selecting, applying and resetting.

#include <algorithm>

#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Main/MainView.h"
#include "View/Windows/FailureMessage.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"
#include "View/Windows/TransferProgress.h"

namespace {

// The reports of a slot, without its macros.
constexpr int slotReports = 4;
constexpr int macroReports = 2;
constexpr int modeReports = 5;
constexpr int slotChangeReports = 2;

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
  if (&sender == m_profileStep && !m_isFWChangeProfile && editState->isNeedSave()) {
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
  const bool isChange = oldIndex > 0;
  const auto show = [&] {
    const Outcome outcome = getFwProfileDataPro(slot);
    fillSettingData();
    return outcome;
  };
  Outcome outcome;
  {
    const TransferProgress progress(
        m_progressBar, slotChangeReports + reportsOf(editState->selProfile()) + modeReports);
    outcome = isChange ? NerinAction::changeSlot(slot, show) : show();
  }
  // At startup, another message reports a mouse that cannot be used.
  if (isChange || NerinAction::mouseAbsence() == LXDeviceAbsence::None) {
    failuremessage::tell(outcome);
  }
}

Outcome MainView::getFwProfileDataPro(int slot) {
  const auto read = NerinAction::loadSlot(slot);
  if (read.value) {
    showSlotTitle();
  }
  return read.outcome;
}

Outcome MainView::setFwProfileDataPro(int slot) {
  const TransferProgress progress(m_progressBar, reportsOf(editState->selProfile()));
  return NerinAction::writeSlot(slot);
}

void MainView::selectMode(int newIndex, int oldIndex) {
  // Only a choice by the user is an edit.
  const bool isChosen = oldIndex > 0 && !m_isFillSetting;
  if (isChosen) {
    editState->edit().modeType = static_cast<std::uint32_t>(newIndex - 1);
    refreshApplyBtn();
  }
  Outcome outcome;
  {
    const TransferProgress progress(m_progressBar, modeReports);
    editState->currSetProfile() = editState->selProfile();
    outcome = NerinAction::setModelToDevice();
  }
  if (isChosen) {
    failuremessage::tell(outcome);
  }
}

Outcome MainView::saveLinkApp() {
  return NerinAction::saveLinkApp();
}

void MainView::applyPro() {
  Outcome outcome;
  {
    const TransferProgress progress(m_progressBar, reportsOf(editState->selProfile()));
    outcome = NerinAction::applySlot();
  }
  showName();
  showTitle(library().currFWProfileName());
  refreshProfileMenu();
  refreshApplyBtn();
  failuremessage::tell(outcome);
}

void MainView::resetPro() {
  if (!NerinAction::canResetSlot(currentSlot()) ||
      !NerinAction::showPopView("WarningReset", true) || termination::isTerminating() ||
      !library().currDefProfile()) {
    return;
  }
  Outcome outcome;
  {
    const TransferProgress progress(m_progressBar,
                                    reportsOf(library().currDefProfile()->profileData()));
    outcome = NerinAction::resetSlot();
  }
  fillSettingData();
  showSlotTitle();
  refreshProfileMenu();
  refreshApplyBtn();
  failuremessage::tell(outcome);
}
