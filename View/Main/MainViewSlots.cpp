// The mouse's slots: selecting, applying and resetting.

#include <algorithm>

#include "Action/Edit/Drafts.h"
#include "Action/Edit/PrimaryClick.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileNames.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Main/MainView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/StatusLine.h"
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

bool asksWithoutLeftClick() {
  const NestedLoop scope;
  return LXAction::ChooseInfoMessage(
             NerinAction::tooltipText("No button has the left click. Apply anyway?")
                 .toStdString()) &&
         !termination::isTerminating();
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
    // An edit that was not taken stays in front of the user.
    return !editState->isNeedSave();
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
    sayHowSlotIs(outcome);
  }
  refreshApplyBtn();
}

void MainView::sayHowSlotIs(const Outcome& outcome) {
  const StatusLine::Offer again{NerinAction::tooltipText("Read this slot again"),
                                [this] { readSlotAgain(); }};
  if (!outcome.isDone()) {
    statusline::tell(outcome);
  } else if (NerinAction::isApplyUnfinished(currentSlot())) {
    statusline::say(
        NerinAction::tooltipText("The last Apply to this slot was interrupted. Apply finishes it."),
        StatusLine::Tone::Note, again);
  } else if (NerinAction::hasDraft(currentSlot())) {
    statusline::say(NerinAction::tooltipText("Your edits are back."), StatusLine::Tone::Note,
                    again);
  } else {
    statusline::clear();
  }
}

void MainView::readSlotAgain() {
  NerinAction::discardDraft(currentSlot());
  Outcome outcome;
  {
    const TransferProgress progress(m_progressBar, reportsOf(editState->selProfile()));
    outcome = getFwProfileDataPro(currentSlot());
    fillSettingData();
  }
  refreshApplyBtn();
  statusline::tell(outcome);
}

// For a name that the mouse cannot hold.
void MainView::sayIfSpelled(const std::string& wanted, const std::string& name) {
  if (!wanted.empty() && !profilenames::isHeldByMouse(wanted)) {
    statusline::say(NerinAction::tooltipText("The mouse holds plain letters only: %1 is now %2.")
                        .arg(QString::fromStdString(wanted), QString::fromStdString(name)));
  }
}

Outcome MainView::getFwProfileDataPro(int slot) {
  const auto read = NerinAction::loadSlot(slot);
  if (read.value || editState->isEdited()) {
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
  if (isChosen || (m_isShowingEdit && !outcome.isDone())) {
    statusline::tell(outcome);
  }
}

Outcome MainView::saveLinkApp() {
  return NerinAction::saveLinkApp();
}

void MainView::applyPro() {
  if (NerinAction::primaryClicksOf(editState->selProfile()) == 0 && !asksWithoutLeftClick()) {
    return;
  }
  const std::string wanted = library().currFWProfileName().value_or("");
  const int reports = reportsOf(editState->selProfile());
  Outcome outcome;
  {
    const TransferProgress progress(m_progressBar, reports);
    outcome = NerinAction::applySlot();
  }
  showName();
  showTitle(library().currFWProfileName());
  refreshProfileMenu();
  refreshApplyBtn();
  statusline::tellApplied(outcome, reports,
                          NerinAction::tooltipText("Applied to slot %1.").arg(currentSlot() + 1));
  if (outcome.isDone()) {
    sayIfSpelled(wanted, library().currFWProfileName().value_or(""));
  }
}

void MainView::resetPro() {
  if (!NerinAction::canResetSlot(currentSlot()) ||
      !NerinAction::showPopView("WarningReset", true) || termination::isTerminating() ||
      !library().currDefProfile()) {
    return;
  }
  const int reports = reportsOf(library().currDefProfile()->profileData());
  Outcome outcome;
  {
    const TransferProgress progress(m_progressBar, reports);
    outcome = NerinAction::resetSlot();
  }
  fillSettingData();
  showSlotTitle();
  refreshProfileMenu();
  refreshApplyBtn();
  statusline::tellApplied(
      outcome, reports,
      NerinAction::tooltipText("Slot %1 has its factory settings again.").arg(currentSlot() + 1));
}
