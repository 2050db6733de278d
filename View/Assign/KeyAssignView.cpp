#include "View/Assign/KeyAssignView.h"

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/KeyCodes.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Assign/SubLaunchProgramView.h"
#include "View/Assign/SubSensitivityView.h"
#include "View/Assign/SubSingleKeyView.h"
#include "View/Assign/SubTKeyView.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/StatusLine.h"

namespace {

// A macro and the button that plays it.
constexpr int buttonReports = 3;

using frames = Artwork::KeyAssignView;

constexpr int typeMenuWidth = 177;

}  // namespace

KeyAssignView::KeyAssignView() : ChildView({frames::screenWidth, frames::screenHeight}) {}

KeyAssignView::~KeyAssignView() = default;

void KeyAssignView::initData() {
  setImageByName(QStringLiteral("KeyAssignView_Normal.png"));
}

void KeyAssignView::initControls() {
  m_comSelBtn = NerinAction::addListButton(frameRect(frames::comSelBtn), *this, TagType,
                                           QStringLiteral("comSelBtn"), "Function");
  m_buttonTxt = NerinAction::AddLabTextField(frameRect(frames::buttonTxt), *this);
  m_buttonTxt->setObjectName(QStringLiteral("buttonTxt"));
  m_buttonTxt->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
  // Aligns the text with the controls below.
  m_buttonTxt->setTextMargins(0, 0, -LXTextField::ownMargin, 0);
  m_buttonTxt->setTextColor(QColor::fromRgb(Artwork::Color::mist));

  m_singleKeyView = new SubSingleKeyView(this);
  struct Panel {
    KeyAssignSubView* view;
    QRect frame;
    const char* name;
  };
  const std::array<Panel, 4> panels{{
      {new SubTKeyView(this), frameRect(frames::tkeyView), "tkeyView"},
      {m_singleKeyView, frameRect(frames::singleKeyView), "singleKeyView"},
      {new SubSensitivityView(this), frameRect(frames::sensitivityView), "sensitivityView"},
      {new SubLaunchProgramView(this), frameRect(frames::launchProView), "launchProView"},
  }};
  m_keyAssignSetp = new LXSetpPanelObj(this);
  for (std::size_t i = 0; i < panels.size(); ++i) {
    KeyAssignSubView* view = panels[i].view;
    view->setGeometry(panels[i].frame);
    view->setObjectName(QString::fromLatin1(panels[i].name));
    view->construct();
    m_subViews[i] = view;
    m_keyAssignSetp->addItem(nullptr, view);
  }
  m_keyAssignSetp->setSetpDelegate(this);

  addEndButtons({frameRect(frames::applyBtn), TagApply}, {frameRect(frames::okBtn), TagClose},
                {frameRect(frames::cancelBtn), TagCancel});
}

void KeyAssignView::setButtonName(const QString& name) {
  m_buttonTxt->setText(name);
}

void KeyAssignView::initNotify() {
  LocalNotifications::shared().observe(NerinAction::notifyOutPlus, this,
                                       [this] { devOutplusPro(); });
}

void KeyAssignView::deallocNotify() {
  disconnect(&LocalNotifications::shared(), nullptr, this, nullptr);
}

void KeyAssignView::refreshData() {
  NerinAction::refreshMenuListData(m_keyAssMenuList, this,
                                   NerinAction::functionMenus->keyAssignMenuNode, typeMenuWidth);
}

void KeyAssignView::fillSettingData() {
  for (KeyAssignSubView* view : m_subViews) {
    view->setTmpBtnInfo(m_tmpBtnInfo);
    view->setBtnIndex(m_btnIndex);
  }
  // Resets the panel so that it shows the same part again.
  m_keyAssignSetp->resetSetp();
  setCurrMenuData(NerinAction::getMenuInfoByFunId(static_cast<std::int32_t>(m_tmpBtnInfo.btnType),
                                                  NerinAction::functionMenus->keyAssignMenuNode));
}

void KeyAssignView::setCurrMenuData(const std::shared_ptr<MenuInfo>& entry) {
  m_currFunId = entry ? entry->functionID() : static_cast<std::int32_t>(NoType);
  m_comSelBtn->setTitle(entry ? QString::fromStdString(entry->titleStr()) : QString());
  setCurrType(m_currFunId - 1);
}

void KeyAssignView::setCurrType(std::int32_t type) {
  if (type >= 1 && type <= static_cast<std::int32_t>(m_subViews.size())) {
    m_keyAssignSetp->selectindex(type);
  } else {
    m_keyAssignSetp->resetSetp();
  }
}

void KeyAssignView::onMenulistSelected(LXMenulist& /*list*/,
                                       const std::shared_ptr<LXTreeNode>& selNode) {
  if (const auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData())) {
    setCurrMenuData(entry);
  }
}

void KeyAssignView::onSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& /*sender*/) {
  m_subViews[static_cast<std::size_t>(newIndex - 1)]->fillSettingData();
}

void KeyAssignView::saveData() {
  switch (m_currFunId) {
    case Default:
      m_tmpBtnInfo = ProfieController::getShareProCon().getDefBtnInfoByIndex(m_btnIndex);
      return;
    case Disabled:
      m_tmpBtnInfo.FuncID = NerinAction::FunctionDisabled;
      m_tmpBtnInfo.FuncTableId = NerinAction::FunctionDisabled;
      m_tmpBtnInfo.btnType = ButtonTypeDisabled;
      return;
    default:
      break;
  }
  if (KeyAssignSubView* view = currentPart()) {
    view->saveData();
    m_tmpBtnInfo = view->tmpBtnInfo();
    m_tmpBtnInfo.btnType = static_cast<std::uint32_t>(m_currFunId);
  }
}

KeyAssignSubView* KeyAssignView::currentPart() const {
  const bool hasPart = m_currFunId >= Macro && m_currFunId <= Launch;
  return hasPart ? m_subViews[static_cast<std::size_t>(m_currFunId - Macro)] : nullptr;
}

bool KeyAssignView::staysOpen() {
  const bool wasCapturing = m_singleKeyView->isCapturing();
  m_singleKeyView->endCapture();
  return wasCapturing;
}

std::string KeyAssignView::helpChapter() const {
  switch (m_currFunId) {
    case Macro:
      return "assign-macro";
    case SingleKey:
      return "assign-key";
    case Sensitivity:
      return "assign-dpi";
    case Launch:
      return "assign-program";
    default:
      return "assign";
  }
}

void KeyAssignView::sayEffect() {
  const KeyAssignSubView* part = currentPart();
  const std::string effect = part != nullptr ? assignmentnotes::effectOf(part->note()) : "";
  if (!effect.empty()) {
    statusline::say(NerinAction::tooltipText(effect));
  } else if (m_hasSaidEffect) {
    statusline::clear();
  }
  m_hasSaidEffect = !effect.empty();
}

void KeyAssignView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagType) {
    NerinAction::showMenulistWithBtn(sender, m_keyAssMenuList.get());
  } else {
    ChildView::buttonAction(sender);
  }
}

void KeyAssignView::applyEdit() {
  saveData();
  const TransferProgress progress = transfers(buttonReports);
  const Outcome outcome = NerinAction::setBtnInfoToDevicePro(m_btnIndex, m_tmpBtnInfo);
  if (m_currFunId == SingleKey) {
    m_singleKeyView->showCurrentCaption();
  }
  statusline::tell(outcome);
  if (outcome.isDone()) {
    sayEffect();
  }
}

// Sends nothing: the mouse gets the whole profile when the user applies it.
void KeyAssignView::keepEdit() {
  saveData();
  editState->edit().btnInfo[m_btnIndex] = m_tmpBtnInfo;
  sayEffect();
}

void KeyAssignView::restoreBtnInfo() {
  m_tmpBtnInfo = editState->selProfile().btnInfo[m_btnIndex];
}

void KeyAssignView::cancelEdit() {
  restoreBtnInfo();
  if (!m_isMouseGone) {
    const TransferProgress progress = transfers(buttonReports);
    statusline::tell(NerinAction::setBtnInfoToDevicePro(m_btnIndex, m_tmpBtnInfo));
  }
}

// A click between the controls ends the capture of a key.
void KeyAssignView::mousePressEvent(QMouseEvent* event) {
  m_singleKeyView->leave();
  ChildView::mousePressEvent(event);
}

void KeyAssignView::devOutplusPro() {
  m_isMouseGone = true;
  if (m_keyAssMenuList) {
    m_keyAssMenuList->hideMenulist();
  }
  for (KeyAssignSubView* view : m_subViews) {
    view->closePopMenu();
  }
  deallocNotify();
  restoreBtnInfo();
  endWindow(0);
  LocalNotifications::shared().post(NerinAction::notifyOutPlusEnd);
}
