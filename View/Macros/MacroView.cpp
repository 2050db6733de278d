// The macro editor's window: the actions of its controls, and when they are enabled.

#include "View/Macros/MacroView.h"

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MacroIds.h"
#include "Action/Edit/MacroDraft.h"
#include "ArtworkFrames.h"
#include "Kit/Desktop/KeyboardHold.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Macros/MacroMenulist.h"
#include "View/Macros/MacroTest.h"
#include "View/Macros/MacroTools.h"
#include "View/Macros/MacroWorkbench.h"
#include "View/Macros/UsageBar.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/StatusLine.h"

namespace {

using frames = Artwork::MacroView;

constexpr int insertMenuWidth = 195;

// Disabling a focused button would move the focus to the next control. This moves it to the table
// of commands.
class KeyboardToTable {
 public:
  explicit KeyboardToTable(QWidget* table)
      : m_table(table), m_before(table->window()->focusWidget()) {}
  ~KeyboardToTable() {
    if (m_before != nullptr && !m_before->isEnabled() && m_table->isEnabled()) {
      m_table->setFocus(Qt::OtherFocusReason);
    }
  }
  KeyboardToTable(const KeyboardToTable&) = delete;
  KeyboardToTable& operator=(const KeyboardToTable&) = delete;

 private:
  QWidget* m_table;
  const QWidget* m_before;
};

}  // namespace

MacroView::MacroView() : ChildView({frames::screenWidth, frames::screenHeight}) {}

MacroView::~MacroView() {
  endRecording();
  macromenulist::release(this);
}

void MacroView::initData() {
  NerinAction::beginMacroEdit();
  setImageByName(QStringLiteral("MacroView_Normal.png"));
}

void MacroView::initNotify() {
  LocalNotifications::shared().observe(NerinAction::notifyOutPlus, this,
                                       [this] { devOutplusPro(); });
}

void MacroView::deallocNotify() {
  disconnect(&LocalNotifications::shared(), nullptr, this, nullptr);
}

void MacroView::refreshData() {
  NerinAction::refreshMenuList();
  NerinAction::refreshMenuListData(
      m_insertList, this, NerinAction::functionMenus->macroInsertMenuNode, insertMenuWidth);
  m_currDelayType = DelayMeasured;
  m_currInsertDelayType = DelayMeasured;
  setRecState(false, false);
  fillSettingData();
  m_insertBtn->setTitle(
      QString::fromStdString(NerinAction::getMenuNameByFunId(
                                 m_currInsertType, NerinAction::functionMenus->macroInsertMenuNode)
                                 .value_or("")));
  openLastMacro();
}

void MacroView::fillSettingData() {
  m_defDelayTxt->setValue(macroDelays->delayTime);
  m_insertDefDelayTxt->setValue(macroDelays->defDelayTime);
  setConEnable();
  showUsage();
}

void MacroView::onNumTextChange(LXNumberTextField& sender) {
  if (m_workbench->takePause(sender)) {
    return;
  }
  (&sender == m_defDelayTxt ? macroDelays->delayTime : macroDelays->defDelayTime) = sender.value();
}

bool MacroView::shouldSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& sender) {
  return &sender != m_insertDelaySetp || m_currInsertType < InsertDelayBefore ||
         newIndex == DelayFixed;
}

void MacroView::onSelectIndex(int newIndex, int /*oldIndex*/, LXSetpPanelObj& sender) {
  (&sender == m_delaySetp ? m_currDelayType : m_currInsertDelayType) = newIndex;
}

void MacroView::onMenulistSelected(LXMenulist& list, const std::shared_ptr<LXTreeNode>& selNode) {
  if (&list != m_insertList.get()) {
    setSelMacroByNode(selNode);
    return;
  }
  if (const auto entry = std::dynamic_pointer_cast<MenuInfo>(selNode->nodeData())) {
    m_currInsertType = entry->functionID();
    m_insertBtn->setTitle(QString::fromStdString(entry->titleStr()));
    setInsertConVisable();
  }
}

void MacroView::buttonAction(LXButton& sender) {
  // Commit typed values first, however the button was pressed.
  m_defDelayTxt->commit();
  m_insertDefDelayTxt->commit();
  switch (sender.tag()) {
    case TagMacroName:
      macromenulist::open(sender, this, m_currMacroInfo.get(), "No macros yet. Make a new one.");
      return;
    case TagNewMacro:
      newMacro();
      return;
    case TagDelMacro:
      delMacro();
      return;
    case TagCopyMacro:
      copyMacro();
      return;
    case TagImportMacro:
      importMacro();
      return;
    case TagExportMacro:
      extentMacro();
      return;
    case TagRecord:
      startRecording();
      return;
    case TagStop:
      setRecState(false, false);
      return;
    case TagDelKey:
      delCommand();
      return;
    case TagInsertKey:
      setInsertState(true);
      return;
    case TagKeyUp:
      upCom();
      return;
    case TagKeyDown:
      downCom();
      return;
    case TagTools:
      if (keyArrs() != nullptr) {
        const MacroWorkbench::Rows rows = m_workbench->chosenRows();
        m_tools->open(*keyArrs(), {rows.first, rows.last}, sender);
      }
      return;
    case TagTest:
      if (m_currMacroInfo) {
        m_test->open(*m_currMacroInfo, sender);
      }
      return;
    case TagInsert:
      NerinAction::showMenulistWithBtn(sender, m_insertList.get());
      return;
    case TagInsertRecord:
      startInsertRecording();
      return;
    case TagInsertStop:
      setRecState(false, true);
      return;
    case TagInsertInt:
      insertDelayPro();
      return;
    case TagInsertCancel:
      setInsertState(false);
      return;
    default:
      ChildView::buttonAction(sender);
      return;
  }
}

void MacroView::applyEdit() {
  // No button can name a macro that was imported just now.
  NerinAction::giveOwnIds();
  NerinAction::keepMacroDraft();
  if (NerinAction::saveMenuList()) {
    NerinAction::discardMacroDraft();
    statusline::clear();
  } else {
    statusline::tellMacrosNotSaved();
  }
}

void MacroView::keepEdit() {
  applyEdit();
}

// The catalogue's macros keep the edits; only the file is not written.
void MacroView::cancelEdit() {
  endRecording();
  NerinAction::keepMacroDraft();
  NerinAction::discardMacroDraft();
}

void MacroView::devOutplusPro() {
  endRecording();
  NerinAction::keepMacroDraft();
  macromenulist::release(this);
  m_tools->hide();
  m_test->hide();
  if (m_insertList) {
    m_insertList->hideMenulist();
  }
  deallocNotify();
  endWindow(0);
  LocalNotifications::shared().post(NerinAction::notifyOutPlusEnd);
}

void MacroView::showUsage() {
  const MacroInfo::Events* events = keyArrs();
  m_eventBar->showUsage(events != nullptr ? static_cast<int>(events->size()) : 0,
                        static_cast<int>(maximumCommands));
  m_memoryBar->showUsage(m_currMacroInfo ? m_currMacroInfo->getMacroCount() : 0,
                         limits::macroBytes);
}

void MacroView::setConEnable() {
  setConEnableWithMacro();
  setConEnableWithKey();
}

void MacroView::setConEnableWithMacro() {
  const KeyboardToTable keyboard(m_table);
  const bool hasMacro = m_currMacroInfo != nullptr;
  for (LXButton* button : {m_recordBtn, m_stopBtn, m_delKeyBtn, m_keyUpBtn, m_keyDownBtn,
                           m_insertKeyBtn, m_delMacroBtn}) {
    button->setIsEnable(hasMacro);
  }
  setConEnableWithKey();
}

void MacroView::setConEnableWithKey() {
  const KeyboardToTable keyboard(m_table);
  const MacroInfo::Events* events = keyArrs();
  const bool hasCommands = events != nullptr && !events->empty();
  for (LXButton* button :
       {m_delKeyBtn, m_keyUpBtn, m_keyDownBtn, m_insertKeyBtn, m_toolsBtn, m_testBtn}) {
    button->setIsEnable(hasCommands);
  }
  if (!hasCommands) {
    return;
  }
  const int row = selectedRow();
  const int count = static_cast<int>(events->size());
  m_delKeyBtn->setIsEnable(row >= 0 && row < count);
  m_keyUpBtn->setIsEnable(row > 0);
  m_keyDownBtn->setIsEnable(row < count - 1);
}

void MacroView::setInsertState(bool isInsert) {
  const KeyboardToTable keyboard(m_table);
  m_isInsert = isInsert;
  for (LXButton* button :
       {m_insertBtn, m_insertAutoDelayChk, m_insertDefDelayChk, m_insertLgnoreDelayChk,
        m_insertRecordBtn, m_insertStopBtn, m_insertIntBtn, m_insertCancelBtn}) {
    button->setIsEnable(isInsert);
  }
  m_insertDefDelayTxt->setEnabled(isInsert);
}

void MacroView::setInsertConVisable() {
  const bool records = m_currInsertType < InsertDelayBefore;
  for (LXButton* button :
       {m_insertAutoDelayChk, m_insertLgnoreDelayChk, m_insertRecordBtn, m_insertStopBtn}) {
    button->setVisible(records);
  }
  m_insertIntBtn->setVisible(!records);
  if (!records) {
    m_insertDelaySetp->selectindex(DelayFixed);
  }
}
