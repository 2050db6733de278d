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

namespace {

namespace frames = Artwork::PerformanceView;

constexpr int levelMenuWidth = 73;
constexpr int titleLeftPad = 12;
constexpr int titleRightPad = 28;

}  // namespace

DpiLevelsView::Places PerformanceView::places() {
  return {{frameRect(frames::level1), frameRect(frames::level2), frameRect(frames::level3),
           frameRect(frames::level4), frameRect(frames::level5)},
          frameRect(frames::sliderView),
          frameRect(frames::enableXYChk),
          TagEnableXY};
}

PerformanceView::PerformanceView()
    : DpiLevelsView({frames::screenWidth, frames::screenHeight}, "PerformanceView_Normal.png",
                    places()) {}

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
      *this, pictures::load(QStringLiteral("Slider.png")), highestLift, 0);
  m_liftPro->setOverImage(NerinAction::GetImageFromRect(overImage(), frameRect(frames::liftPro)));
  m_liftPro->setTag(TagLift);
  m_liftPro->setObjectName(QStringLiteral("liftPro"));
  m_liftPro->setAccessibleName(NerinAction::tooltipText("Lift-off height"));

  addButton(frameRect(frames::applyBtn), TagApply, "applyBtn", "Apply");
  addButton(frameRect(frames::okBtn), TagClose, "okBtn", "Close");
  addButton(frameRect(frames::cancelBtn), TagCancel, "cancelBtn", "Cancel");
}

void PerformanceView::refreshData() {
  NerinAction::refreshMenuListData(m_levelMenuList, this, NerinAction::levelMenuNode,
                                   levelMenuWidth);
  fillSettingData();
}

void PerformanceView::fillSettingData() {
  DpiLevelsView::fillSettingData();
  m_levelSelBtn->setTitle(QString::number(currLevel()));
  // Sets no record: a height that the slider does not reach stays until it is moved.
  m_liftPro->setValue(static_cast<int>(
      std::min(currSetProfile.liftHeight, static_cast<std::uint32_t>(highestLift))));
  m_rateSetp->resetSetp();
  m_rateSetp->selectindex(
      static_cast<int>(std::min<std::size_t>(currSetProfile.poRate, rates - 1)) + 1);
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
  currSetProfile.poRate = static_cast<std::uint32_t>(newIndex - 1);
  currFWProfile = currSetProfile;
  NerinAction::setRateToDevice(currFWProfile.poRate);
}

void PerformanceView::progessBarAction(LXProgressBar& sender) {
  if (sender.tag() == TagLift) {
    currSetProfile.liftHeight = static_cast<std::uint32_t>(sender.value());
  }
}

void PerformanceView::buttonAction(LXButton& sender) {
  DpiLevelsView::buttonAction(sender);
  switch (sender.tag()) {
    case TagLevelSel:
      NerinAction::showMenulistWithBtn(*m_levelSelBtn, m_levelMenuList.get());
      return;
    case TagApply:
      applyPro();
      return;
    case TagClose:
      closePro();
      return;
    case TagCancel:
      cancelAndEnd();
      return;
    default:
      return;
  }
}

void PerformanceView::applyPro() {
  saveData();
  currFWProfile = currSetProfile;
  NerinAction::setSettingToDevice();
  NerinAction::setIsDpiTem(true);
}

void PerformanceView::closePro() {
  saveData();
  selProfile = currSetProfile;
  NerinAction::setIsDpiTem(false);
  endWindow(1);
}

// The levels on the mouse stay as they were tried until the profile is written the next time: the
// settings that are sent are those of the working copy. Only the rate goes back at once.
void PerformanceView::cancelEdit() {
  NerinAction::setIsDpiTem(false);
  currFWProfile = selProfile;
  NerinAction::setSettingToDevice();
  NerinAction::setRateToDevice(currFWProfile.poRate);
}
