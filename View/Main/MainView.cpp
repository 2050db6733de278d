// The main window: fills the controls and dispatches the clicks.

#include "View/Main/MainView.h"

#include <QPushButton>
#include <algorithm>
#include <utility>

#include "Action/Edit/Drafts.h"
#include "Action/Edit/EditHistory.h"
#include "Action/Edit/MacroDraft.h"
#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileMenuData.h"
#include "Action/Library/SupportFolder.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Action/Texts/TooltipManager.h"
#include "ArtworkFrames.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "View/Main/LanguageMenu.h"
#include "View/Main/MainSubView1.h"
#include "View/Main/MainSubView2.h"
#include "View/Main/MainViewTags.h"
#include "View/Main/SlotReasonLine.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/ChildView.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/ProgramPanel.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"

namespace {

constexpr int profileMenuWidth = 188;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

}  // namespace

MainView::MainView(QWidget* parent)
    : TavImageView({Artwork::MainView::screenWidth, Artwork::MainView::screenHeight}, parent) {}

MainView::~MainView() {
  MainView::deallocNotify();
}

int MainView::currentSlot() {
  return library().currFWProfileIndex();
}

void MainView::initData() {
  LXAction::setLoggerTempLevel();
  m_isOutPlus = false;
  NerinAction::getSysPath();
  // The log file needs the support folder.
  LXAction::setLoggerHasFile(true);
  m_isLanguageUnreadable = !LanguageMenu::canReadLanguage();
  NerinAction::initMenuList();
  m_areMacrosBack = NerinAction::restoreMacroDraft();
  ProfieController::getShareProCon();
  setImageByName(QStringLiteral("MainView_Normal.png"));
  NerinAction::startListenDev();
  m_lochelpPath = helpdocument::path().string();
}

void MainView::refreshData() {
  const auto active = NerinAction::getProfileIndexByDevice();
  m_profileStep->selectindex(active.value + 1);
  m_modeStep->selectindex(static_cast<int>(editState->selProfile().modeType) + 1);
  refreshProfileMenu();
  if (!editState->isEdited()) {
    editState->clearNeedSave();
  }
  refreshApplyBtn();
  if (m_isLanguageUnreadable && m_statusLine->text().isEmpty()) {
    statusline::say(
        NerinAction::tooltipText("No installed font has the letters of your language."));
  }
  if (std::exchange(m_areMacrosBack, false) && m_statusLine->text().isEmpty()) {
    statusline::say(NerinAction::tooltipText("Your edits are back."));
  }
}

void MainView::fillSettingData() {
  m_isFillSetting = true;
  for (int i = 0; i < static_cast<int>(buttonCount); ++i) {
    fillBtnCaption(i);
  }
  showName();
  m_modeStep->selectindex(static_cast<int>(editState->selProfile().modeType) + 1);
  m_linkProChk->setChecked(library().currIsActive());
  showLinkPath();
  showLights();
  m_isFillSetting = false;
}

void MainView::showLights() {
  m_subView1->showLights(editState->selProfile());
  m_subView2->showLights(editState->selProfile());
}

void MainView::fillBtnCaption(int index) {
  if (index < 0 || index >= static_cast<int>(buttonCount)) {
    return;
  }
  const auto i = static_cast<std::size_t>(index);
  const QString caption =
      QString::fromStdString(NerinAction::getBtnCaption(editState->selProfile().btnInfo[i], index));
  LXButton& button = *m_btnArrs[i];
  button.setTitle(caption);
  button.setToolTip(caption);
  // Screen readers also say which button of the mouse it is.
  button.setAccessibleName(physicalButtonName(index) + QStringLiteral(": ") + caption);
}

void MainView::showName() {
  m_profileNameTxt->setText(QString::fromStdString(library().currFWProfileName().value_or("")));
}

void MainView::showTitle(const std::optional<std::string>& name) {
  const QString title = QString::fromStdString(name.value_or(""));
  const QString& words = m_currProfileBtn->toolTip();
  m_currProfileBtn->setTitle(title);
  m_currProfileBtn->setAccessibleName(title.isEmpty() ? words
                                                      : words + QStringLiteral(": ") + title);
}

void MainView::showSlotTitle() {
  const auto id = library().fwProfileID()[static_cast<std::size_t>(currentSlot())];
  showTitle(id != ProfieController::notLinked ? library().currFWProfileName() : std::nullopt);
}

void MainView::showLinkPath() {
  const QString path = QString::fromStdString(library().currActivePath().value_or(""));
  const QString words = NerinAction::tooltipText("Link this profile to the program you selected.");
  m_linkProBtn->setToolTip(path.isEmpty() ? words : words + u'\n' + path);
  m_linkProBtn->setTitle(path.isEmpty() ? NerinAction::tooltipText("Choose program")
                                        : programpanel::shownName(path.toStdString()));
}

void MainView::refreshProfileMenu() {
  if (!*profileNode) {
    *profileNode = std::make_shared<LXTreeNode>();
  }
  (*profileNode)->removeAllChild();
  for (const auto& profile : library().profileArr()) {
    const auto entry = ProfileMenuData::initWithProfileValue(profile);
    entry->setType(1);
    (*profileNode)->addChild(entry);
  }
  NerinAction::refreshMenuListData(m_profileList, this, *profileNode, profileMenuWidth);
  m_profileList->setEmptyText(NerinAction::tooltipText("No profiles yet. Make a new one."));
  // The library's copy would take the place of what is edited.
  m_profileList->setReturnKeeps(true);
}

void MainView::refreshApplyBtn() {
  NerinAction::recordEdit();
  const bool isNeedSave = editState->isNeedSave();
  if (!isNeedSave) {
    focusAfterApply();
  }
  for (LXButton* button : {m_applyBtn, m_okBtn}) {
    button->setIsEnable(isNeedSave);
  }
  m_changesBtn->setEnabled(isNeedSave);
  showLights();
  showDraftMarks();
}

void MainView::focusAfterApply() {
  // The list of changes may be in front of the window.
  const QWidget* focused = window()->focusWidget();
  if (focused != m_applyBtn && focused != m_okBtn && focused != m_changesBtn) {
    return;
  }
  const auto* button = qobject_cast<const LXButton*>(focused);
  // Disabling it would hand the focus to the button that quits.
  m_profileBtns[static_cast<std::size_t>(currentSlot())]->setFocus(
      button != nullptr && button->isFocusFromPointer() ? Qt::MouseFocusReason
                                                        : Qt::OtherFocusReason);
}

void MainView::showDraftMarks() {
  for (int slot = 0; slot < slotTabs; ++slot) {
    const bool isEdited = slot == currentSlot()
                              ? editState->isEdited() || NerinAction::isApplyUnfinished(slot)
                              : NerinAction::hasDraft(slot) || NerinAction::isApplyUnfinished(slot);
    const auto index = static_cast<std::size_t>(slot);
    m_draftMarks[index]->setVisible(isEdited);
    m_profileBtns[index]->setAccessibleDescription(
        isEdited ? NerinAction::tooltipText("Has edits that are not applied") : QString());
  }
}

void MainView::keepDrafts() {
  if (termination::isTerminating()) {
    return;
  }
  NerinAction::keepMacroDraft();
  std::optional<_Nerin_PROFILE> working =
      m_childView ? m_childView->workingProfile() : std::nullopt;
  if (working && m_childBefore && isSameRecord(*working, *m_childBefore)) {
    working.reset();
  }
  NerinAction::recordEdit();
  NerinAction::keepDraft(working ? &*working : nullptr);
}

void MainView::raiseNeedSave() {
  editState->raiseNeedSave();
  refreshApplyBtn();
}

void MainView::buttonAction(LXButton& sender) {
  if (m_isModalSeron >= 1) {
    return;
  }
  const auto hotSpot = std::find(m_btnArrs.begin(), m_btnArrs.end(), &sender);
  if (sender.tag() >= TagFirstHotSpot && sender.tag() <= TagLastHotSpot &&
      hotSpot != m_btnArrs.end()) {
    m_selBtnIndex = static_cast<std::int32_t>(hotSpot - m_btnArrs.begin());
    showKeyAssignView();
    return;
  }
  switch (sender.tag()) {
    case TagReset:
      resetPro();
      break;
    case TagHome:
      connectTtsSite();
      break;
    case TagHelp:
      openHelpPro();
      break;
    case TagClose:
    case TagCancel:
      cancelPro();
      break;
    case TagMacros:
      showMacroView();
      break;
    case TagProfileMenu:
      NerinAction::showMenulistWithBtn(*m_currProfileBtn, m_profileList.get());
      break;
    case TagNew:
      addProfile();
      break;
    case TagDelete:
      delProfile();
      break;
    case TagDuplicate:
      copyProfile();
      break;
    case TagImport:
      importProfile();
      break;
    case TagExport:
      extentProfile();
      break;
    case TagPerformance:
      showPerformanceView();
      break;
    case TagLight:
      showLightView();
      break;
    case TagLinkSwitch:
      library().setCurrIsActive(m_linkProChk->Checked());
      raiseNeedSave();
      break;
    case TagLinkProgram:
      showLaunchPro();
      break;
    case TagApply:
      applyPro();
      break;
    case TagOk:
      applyPro();
      // What the mouse or the disk did not take is still to be applied.
      if (!editState->isNeedSave()) {
        closeAppPro();
      }
      break;
    case TagMenu:
      m_menu.popup(m_menuBtn->mapToGlobal(QPoint(0, m_menuBtn->height())));
      break;
    default:
      break;
  }
}

// Closing the window also takes the focus from the field, but is not a commit.
void MainView::onProfileTextChange() {
  if (!termination::isTerminating()) {
    reNamePro();
  }
}

void MainView::menuNeedsUpdate() {
  refreshOsdMenu();
  refreshSwitchMenu();
}

void MainView::refreshOsdMenu() {
  const bool isOn = library().isOSD();
  m_osdMenu->setText(NerinAction::tooltipText(isOn ? "Disable the OSD" : "Enable the OSD"));
  m_osdMenu->setData(isOn ? 2 : 1);
}

void MainView::osdClick() {
  const bool isStored = library().setIsOSD(m_osdMenu->data().toInt() == 1);
  NerinAction::sendMessageToDaemon(NerinAction::MessageOsdChanged, {library().isOSD()});
  refreshOsdMenu();
  statusline::tell(Outcome::of(SlotStep::SavePreferences, isStored));
}

void MainView::refreshSwitchMenu() {
  m_switchMenu->setChecked(library().switchesSlots());
}

void MainView::switchClick() {
  // The service sees it in the preferences.
  const bool isStored = library().setSwitchesSlots(m_switchMenu->isChecked());
  refreshSwitchMenu();
  statusline::tell(Outcome::of(SlotStep::SavePreferences, isStored));
}

void MainView::connectTtsSite() {
  if (!LXAction::openPage(webPage)) {
    LXLogger::warning(std::string("no program opens ") + webPage);
  }
}

void MainView::openHelpPro() {
  // The language can have changed.
  m_lochelpPath = helpdocument::path().string();
  if (!LXAction::openFile(m_lochelpPath)) {
    LXLogger::warning("no program opens " + m_lochelpPath);
  }
}

void MainView::closeAppPro() {
  termination::terminate();
}

void MainView::cancelPro() {
  if (!termination::isTerminating()) {
    NerinAction::dropDraft(currentSlot());
  }
  closeAppPro();
}
