#include "View/Assign/SubTKeyView.h"

#include <QPointer>
#include <QTimer>
#include <algorithm>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MacroIds.h"
#include "Action/Wire/KeyCodes.h"
#include "ArtworkFrames.h"
#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Assign/TkeyRepeatView.h"
#include "View/Macros/MacroMenulist.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Windows/ModalWindow.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"

namespace {

using frames = Artwork::SubTKeyView;

constexpr std::uint32_t playOnce = 1;
constexpr std::uint32_t repeatByCount = 2;
// The entry of the repeat menu that asks.
constexpr std::int32_t askForCount = 2;
constexpr int repeatMenuWidth = 264;
// Gives the list time to close.
constexpr int countDelayMilliseconds = 100;

}  // namespace

SubTKeyView::SubTKeyView(QWidget* parent)
    : KeyAssignSubView({frames::screenWidth, frames::screenHeight}, parent) {}

SubTKeyView::~SubTKeyView() {
  macromenulist::release(this);
}

void SubTKeyView::initData() {
  setImageByName(QStringLiteral("SubTKeyView_Normal.png"));
}

void SubTKeyView::initControls() {
  m_tkeySelBtn = NerinAction::addListButton(frameRect(frames::tkeySelBtn), *this, TagMacro,
                                            QStringLiteral("tkeySelBtn"), "Select a macro");
  NerinAction::initTooltip(*m_tkeySelBtn, QStringLiteral("tkeySelBtn"), "Select a macro");
  m_repeatSelBtn = NerinAction::addListButton(frameRect(frames::repeatSelBtn), *this, TagRepeat,
                                              QStringLiteral("repeatSelBtn"), "Repeat");
  NerinAction::refreshMenuListData(m_repeatList, this, NerinAction::functionMenus->repeatMenuNode,
                                   repeatMenuWidth);
  m_countTxt = NerinAction::AddLabTextField(frameRect(frames::countTxt), *this);
  m_countTxt->setObjectName(QStringLiteral("countTxt"));
  m_countTxt->setAccessibleName(NerinAction::tooltipText("Repeat count"));
  m_countTxt->setTextColor(QColor::fromRgb(Artwork::Color::snow));
  m_countTxt->hide();
  addNoteLine(frameRect(frames::noteTxt));
}

assignmentnotes::Note SubTKeyView::note() const {
  return assignmentnotes::ofMacro(m_selMacroInfo.get());
}

void SubTKeyView::showRepeat() {
  m_repeatSelBtn->setTitle(QString::fromStdString(
      NerinAction::getMenuNameByFunTableId(static_cast<std::int32_t>(m_macroType),
                                           NerinAction::functionMenus->repeatMenuNode)
          .value_or("")));
  showCount();
}

void SubTKeyView::showCount() {
  m_countTxt->setText(QStringLiteral("× %1").arg(NerinAction::storableRepeatCount(m_macroCount)));
  m_countTxt->setVisible(m_macroType == repeatByCount);
}

void SubTKeyView::takeCount(std::uint32_t count) {
  m_macroCount = NerinAction::storableRepeatCount(count);
  showCount();
  if (m_macroCount != count) {
    statusline::say(NerinAction::tooltipText("Repeats 1 to 254 times: %1 is now %2")
                        .arg(count)
                        .arg(m_macroCount));
  }
}

void SubTKeyView::fillSettingData() {
  const _BTN_INFO& info = tmpBtnInfo();
  const bool isMacro = info.FuncTableId == NerinAction::FunctionMacro;
  m_selMacroInfo =
      isMacro ? NerinAction::getMacroById(static_cast<std::int32_t>(info.MacroID)) : nullptr;
  m_tkeySelBtn->setTitle(m_selMacroInfo ? macromenulist::titleOf(*m_selMacroInfo) : QString());
  m_macroType = isMacro ? info.KeyBit[0] : 0;
  m_macroCount = isMacro ? info.KeyBit[1] : 0;
  if (isMacro) {
    showRepeat();
  } else {
    m_repeatSelBtn->setTitle({});
    showCount();
  }
  showNote();
}

void SubTKeyView::saveData() {
  if (m_selMacroInfo && NerinAction::giveOwnId(*m_selMacroInfo) && !NerinAction::saveMenuList()) {
    statusline::tellMacrosNotSaved();
  }
  _BTN_INFO& info = editedBtnInfo();
  info.FuncID = NerinAction::FunctionMacro;
  info.FuncTableId = NerinAction::FunctionMacro;
  info.KeyBit[0] = m_macroType;
  info.KeyBit[1] =
      m_macroType == repeatByCount ? NerinAction::storableRepeatCount(m_macroCount) : m_macroCount;
  info.MacroID = m_selMacroInfo ? static_cast<std::uint32_t>(m_selMacroInfo->macroId()) : 0;
  info.btnType = ButtonTypeMacro;
}

void SubTKeyView::closePopMenu() {
  macromenulist::release(this);
  if (m_repeatList) {
    m_repeatList->hideMenulist();
  }
}

void SubTKeyView::buttonAction(LXButton& sender) {
  if (sender.tag() == TagMacro) {
    macromenulist::open(sender, this, m_selMacroInfo.get(),
                        "No macros yet. Make one in the macro editor.");
  } else if (sender.tag() == TagRepeat) {
    NerinAction::showMenulistWithBtn(sender, m_repeatList.get());
  }
}

void SubTKeyView::onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) {
  const auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData());
  if (!entry) {
    return;
  }
  if (&list != m_repeatList.get()) {
    m_selMacroInfo = entry->macroInfo();
    m_tkeySelBtn->setTitle(m_selMacroInfo ? macromenulist::titleOf(*m_selMacroInfo) : QString());
    if (m_macroType == 0) {
      m_macroType = playOnce;
      showRepeat();
    }
    showNote();
    return;
  }
  m_repeatSelBtn->setTitle(QString::fromStdString(entry->titleStr()));
  m_macroType = static_cast<std::uint32_t>(entry->functionTableID());
  showCount();
  if (entry->functionID() == askForCount) {
    QTimer::singleShot(countDelayMilliseconds, this, &SubTKeyView::showLoopFrm);
  }
}

void SubTKeyView::showLoopFrm() {
  if (m_isShowSubMode || !isVisible() || termination::isTerminating()) {
    return;
  }
  m_isShowSubMode = true;
  auto* view = new TkeyRepeatView;
  view->construct();
  view->setRepeatCount(static_cast<int>(std::min(m_macroCount, TkeyRepeatView::maximumCount)));
  const QPointer dialog = new ModalWindow(view, TkeyRepeatView::dragHeight,
                                          NerinAction::tooltipText("Repeat count"), window());
  view->makeTxtFirstRes();
  const int code = dialog->run();
  if (!dialog) {
    return;  // Destroyed together with its parent window and this view.
  }
  if (code == 1) {
    takeCount(static_cast<std::uint32_t>(view->repeatCount()));
  }
  delete dialog;
  window()->raise();
  window()->activateWindow();
  m_isShowSubMode = false;
}
