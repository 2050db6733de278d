#include "View/Assign/SubSensitivityView.h"

#include <QPointer>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Record/Limits.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "View/Assign/SubSensitivityViewSub.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Windows/ModalWindow.h"

namespace {

using frames = Artwork::SubSensitivityView;

constexpr std::int32_t setsDpi = 0;
constexpr std::int32_t showsDpi = 3;
// The range of the slider. A stored value outside it becomes plainValue.
constexpr std::uint32_t minimumStored = limits::minimumSensitivity;
constexpr std::uint32_t maximumStored = limits::maximumSensitivity - 1;
constexpr std::uint32_t plainValue = 64;
constexpr int functionMenuWidth = 264;

}  // namespace

SubSensitivityView::SubSensitivityView(QWidget* parent)
    : KeyAssignSubView({frames::screenWidth, frames::screenHeight}, parent) {}

void SubSensitivityView::initData() {
  setImageByName(QStringLiteral("SubSensitivityView_Normal.png"));
}

void SubSensitivityView::initControls() {
  m_selBtn = NerinAction::addListButton(frameRect(frames::selBtn), *this, TagFunction,
                                        QStringLiteral("selBtn"), "DPI function");
  m_levelSettingBtn = addButton(frameRect(frames::levelSettingBtn), TagLevelSetting,
                                "levelSettingBtn", "Set the levels");
  m_subView = new SubSensitivityViewSub(this);
  m_subView->move(frameRect(frames::subView).topLeft());
  m_subView->setObjectName(QStringLiteral("subView"));
  m_subView->construct();
  NerinAction::refreshMenuListData(
      m_senMenuList, this, NerinAction::functionMenus->sensitivityMenuNode, functionMenuWidth);
  addNoteLine(frameRect(Artwork::SubSensitivityViewPlain::noteTxt));
  setSelMenu(nullptr);
}

assignmentnotes::Note SubSensitivityView::note() const {
  return m_function ? assignmentnotes::Note::None : assignmentnotes::Note::NoFunction;
}

void SubSensitivityView::setSelMenu(std::shared_ptr<MenuInfo> entry) {
  m_function = std::move(entry);
  m_selBtn->setTitle(m_function ? QString::fromStdString(m_function->titleStr()) : QString());
  const std::int32_t kind = m_function ? m_function->functionID() - 1 : -1;
  const bool hasValues = m_function && kind == setsDpi;
  const bool hasLevels = m_function && kind != setsDpi && kind != showsDpi;
  showNote();
  m_subView->setVisible(hasValues);
  m_levelSettingBtn->setVisible(hasLevels);
  // The plain picture has no drawing of the buttons.
  setImageByName(hasLevels || hasValues ? QStringLiteral("SubSensitivityView_Normal.png")
                                        : QStringLiteral("SubSensitivityViewPlain_Normal.png"));
}

void SubSensitivityView::fillSettingData() {
  _BTN_INFO& info = editedBtnInfo();
  setSelMenu(NerinAction::getMenuInfoByFunId(static_cast<std::int32_t>(info.FuncID),
                                             NerinAction::functionMenus->sensitivityMenuNode));
  for (const int axis : {0, 1}) {
    if (info.KeyBit[axis] < minimumStored || info.KeyBit[axis] > maximumStored) {
      info.KeyBit[axis] = plainValue;
    }
  }
  m_subView->setIsXY(info.KeyBit[0] != info.KeyBit[1]);
  // The editor always starts at the same value, whatever is stored.
  m_subView->setIsXY(false);
  m_subView->setXValue(plainValue);
  m_subView->setYValue(plainValue);
}

void SubSensitivityView::saveData() {
  _BTN_INFO& info = editedBtnInfo();
  info.btnType = ButtonTypeSensitivity;
  // Without a function, the user chose nothing, so the button keeps its values.
  if (m_function) {
    info.FuncID = static_cast<std::uint32_t>(m_function->functionID());
    info.FuncTableId = static_cast<std::uint32_t>(m_function->functionTableID());
    info.KeyBit[0] = m_subView->xValue();
    info.KeyBit[1] = m_subView->yValue();
  }
}

void SubSensitivityView::closePopMenu() {
  if (m_senMenuList) {
    m_senMenuList->hideMenulist();
  }
}

void SubSensitivityView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagFunction) {
    NerinAction::showMenulistWithBtn(sender, m_senMenuList.get());
  } else if (sender.tag() == TagLevelSetting) {
    showLevelSetting();
  }
}

void SubSensitivityView::showLevelSetting() {
  auto* view = new LevelSettingView;
  view->construct();
  const QPointer dialog = new ModalWindow(view, LevelSettingView::dragHeight,
                                          NerinAction::tooltipText("DPI levels"), window());
  dialog->run();
  delete dialog;
}

void SubSensitivityView::onMenulistSelected(LXMenulist& /*list*/,
                                            const std::shared_ptr<LXTreeNode>& selNode) {
  if (auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData())) {
    setSelMenu(std::move(entry));
  }
}
