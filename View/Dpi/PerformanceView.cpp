#include "View/Dpi/PerformanceView.h"

#include <algorithm>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Record/EditState.h"
#include "Action/Service/DaemonMessages.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/StatusLine.h"

namespace {

using frames = Artwork::PerformanceView;

constexpr int levelMenuWidth = 73;
constexpr int titleLeftPad = 12;
constexpr int titleRightPad = 28;

}  // namespace

PerformanceView::PerformanceView()
    : DpiLevelsView({frames::screenWidth, frames::screenHeight}, "PerformanceView_Normal.png",
                    placesIn<frames>(TagEnableXY)) {}

void PerformanceView::initControls() {
  m_levelSelBtn = addButton(frameRect(frames::levelSelBtn), TagLevelSel, "levelSelBtn",
                            "Sensitivity level setting");
  m_levelSelBtn->setLeftPad(titleLeftPad);
  m_levelSelBtn->setRightPad(titleRightPad);
  DpiLevelsView::initControls();

  struct Rate {
    Artwork::Frame frame;
    const char* name;
    const char* tooltipKey;
  };
  constexpr std::array<Rate, rates> all{{
      {frames::rate125Btn, "rate125Btn", "USB Report rate: 125Hz"},
      {frames::rate250Btn, "rate250Btn", "USB Report rate: 250Hz"},
      {frames::rate500Btn, "rate500Btn", "USB Report rate: 500Hz"},
      {frames::rate1000Btn, "rate1000Btn", "USB Report rate: 1000Hz"},
  }};
  m_rateSetp = new LXSetpPanelObj(this);
  for (std::size_t i = 0; i < rates; ++i) {
    m_rateBtns[i] = addButton(frameRect(all[i].frame), 0, all[i].name, all[i].tooltipKey);
    m_rateSetp->addItem(m_rateBtns[i]);
  }
  m_rateSetp->setSetpDelegate(this);

  m_liftPro = NerinAction::AddProBar(
      frameRect(frames::liftPro), [this](LXProgressBar& sender) { progessBarAction(sender); },
      *this, pictures::load(QStringLiteral("Slider.png")), maximumShownLift, 0);
  m_liftPro->setOverImage(NerinAction::GetImageFromRect(overImage(), frameRect(frames::liftPro)));
  m_liftPro->setTag(TagLift);
  m_liftPro->setObjectName(QStringLiteral("liftPro"));
  m_liftPro->setAccessibleName(NerinAction::tooltipText("Lift-off height"));

  addEndButtons({frameRect(frames::applyBtn), TagApply}, {frameRect(frames::okBtn), TagClose},
                {frameRect(frames::cancelBtn), TagCancel});
}

void PerformanceView::refreshData() {
  NerinAction::refreshMenuListData(m_levelMenuList, this, NerinAction::functionMenus->levelMenuNode,
                                   levelMenuWidth);
  fillSettingData();
}

void PerformanceView::fillSettingData() {
  DpiLevelsView::fillSettingData();
  m_levelSelBtn->setTitle(QString::number(currLevel()));
  // Does not change the record: a height beyond the slider stays until the user moves it.
  m_liftPro->setValue(static_cast<int>(std::min(editState->currSetProfile().liftHeight,
                                                static_cast<std::uint32_t>(maximumShownLift))));
  m_rateSetp->resetSetp();
  m_rateSetp->selectindex(
      static_cast<int>(std::min<std::size_t>(editState->currSetProfile().poRate, rates - 1)) + 1);
}

void PerformanceView::saveData() {
  saveDpiDataPro();
}

void PerformanceView::onMenulistSelected(LXMenulist& list,
                                         const std::shared_ptr<LXTreeNode>& selNode) {
  const auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData());
  if (&list != m_levelMenuList.get() || !entry) {
    return;
  }
  m_levelSelBtn->setTitle(QString::fromStdString(entry->titleStr()));
  setCurrLevlePro(static_cast<std::uint32_t>(std::max(0, entry->functionID())), isXY());
}

void PerformanceView::onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) {
  if (&sender != m_rateSetp) {
    DpiLevelsView::onSelectIndex(newIndex, oldIndex, sender);
    return;
  }
  editState->currSetProfile().poRate = static_cast<std::uint32_t>(newIndex - 1);
  editState->currFWProfile() = editState->currSetProfile();
  const TransferProgress progress = transfers(1);
  statusline::tell(NerinAction::setRateToDevice(editState->currFWProfile().poRate));
}

void PerformanceView::progessBarAction(LXProgressBar& sender) {
  if (sender.tag() == TagLift) {
    editState->currSetProfile().liftHeight = static_cast<std::uint32_t>(sender.value());
  }
}

void PerformanceView::buttonAction(LXButton& sender) {
  DpiLevelsView::buttonAction(sender);
  if (sender.tag() == TagLevelSel) {
    NerinAction::showMenulistWithBtn(*m_levelSelBtn, m_levelMenuList.get());
  }
}

void PerformanceView::applyEdit() {
  saveData();
  editState->currFWProfile() = editState->currSetProfile();
  const TransferProgress progress = transfers(settingReports);
  const Outcome outcome = NerinAction::setSettingToDevice();
  NerinAction::setIsDpiTem(true);
  noteTried(outcome);
}

void PerformanceView::keepEdit() {
  saveData();
  editState->take(editState->currSetProfile());
  NerinAction::setIsDpiTem(false);
}

// Sends the working copy again: the mouse keeps the tried levels until the next write of the
// profile. Only the rate is restored at once.
void PerformanceView::cancelEdit() {
  NerinAction::setIsDpiTem(false);
  editState->currFWProfile() = editState->selProfile();
  const TransferProgress progress = transfers(settingReports + 1);
  Outcome outcome = NerinAction::setSettingToDevice();
  outcome += NerinAction::setRateToDevice(editState->currFWProfile().poRate);
  tellCancelled(outcome);
}
