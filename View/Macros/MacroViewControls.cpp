// The controls of the macro editor's window.

#include <QHeaderView>
#include <QLabel>
#include <QShortcut>

#include "ArtworkFrames.h"
#include "Kit/Widgets/LXTextField.h"
#include "View/Macros/MacroTest.h"
#include "View/Macros/MacroTools.h"
#include "View/Macros/MacroView.h"
#include "View/Macros/MacroWorkbench.h"
#include "View/Macros/UsageBar.h"
#include "View/Screen/ControlFactory.h"
#include "View/Screen/Frames.h"
#include "View/Screen/Pictures.h"

namespace {

using frames = Artwork::MacroView;

constexpr int longestDelay = 5000;
constexpr int delayDigits = 4;
constexpr qreal smallType = 11;
constexpr int nameMargin = 12 - LXTextField::ownMargin;
constexpr auto recordShortcut = Qt::CTRL | Qt::Key_R;

}  // namespace

struct MacroView::Control {
  LXButton* MacroView::*member;
  const char* name;
  int tag;
  const char* tooltipKey;
  QRect frame;
  // Otherwise the text is only for screen readers.
  bool hasTooltip = true;
};

const std::vector<MacroView::Control>& MacroView::controls() {
  static const std::vector<Control> all{
      {&MacroView::m_newMacroBtn, "newMacroBtn", TagNewMacro, "Create New Macro",
       frameRect(frames::newMacroBtn)},
      {&MacroView::m_copyMacroBtn, "copyMacroBtn", TagCopyMacro, "copy a macro",
       frameRect(frames::copyMacroBtn)},
      {&MacroView::m_delMacroBtn, "delMacroBtn", TagDelMacro, "Delete a macro",
       frameRect(frames::delMacroBtn)},
      {&MacroView::m_importMacroBtn, "importMacroBtn", TagImportMacro, "Import macro",
       frameRect(frames::importMacroBtn)},
      {&MacroView::m_exportMacroBtn, "exportMacroBtn", TagExportMacro, "export macro",
       frameRect(frames::exportMacroBtn)},
      {&MacroView::m_autoDelayChk, "autoDelayChk", TagAutoDelay, "Delay time Auto-Dectecting",
       frameRect(frames::autoDelayChk)},
      {&MacroView::m_defDelayChk, "defDelayChk", TagDefDelay, "Fixed delay",
       frameRect(frames::defDelayChk), false},
      {&MacroView::m_lgnoreDelayChk, "lgnoreDelayChk", TagLgnoreDelay, "Without any delay",
       frameRect(frames::lgnoreDelayChk)},
      {&MacroView::m_recordBtn, "recordBtn", TagRecord, "RECORD", frameRect(frames::recordBtn)},
      {&MacroView::m_stopBtn, "stopBtn", TagStop, "STOP", frameRect(frames::stopBtn)},
      {&MacroView::m_keyUpBtn, "keyUpBtn", TagKeyUp, "Move instruction line up",
       frameRect(frames::keyUpBtn)},
      {&MacroView::m_keyDownBtn, "keyDownBtn", TagKeyDown, "Move instruction line down",
       frameRect(frames::keyDownBtn)},
      {&MacroView::m_delKeyBtn, "delKeyBtn", TagDelKey, "DELETE", frameRect(frames::delKeyBtn)},
      {&MacroView::m_toolsBtn, "toolsBtn", TagTools, "Tools for lines",
       frameRect(frames::toolsBtn)},
      {&MacroView::m_testBtn, "testBtn", TagTest, "Test what the mouse will send",
       frameRect(frames::testBtn)},
      {&MacroView::m_insertKeyBtn, "insertKeyBtn", TagInsertKey, "Insert instructions in macro",
       frameRect(frames::insertKeyBtn)},
      {&MacroView::m_insertAutoDelayChk, "insertAutoDelayChk", TagInsertAutoDelay, "Measured delay",
       frameRect(frames::insertAutoDelayChk), false},
      {&MacroView::m_insertDefDelayChk, "insertDefDelayChk", TagInsertDefDelay, "Fixed delay",
       frameRect(frames::insertDefDelayChk), false},
      {&MacroView::m_insertLgnoreDelayChk, "insertLgnoreDelayChk", TagInsertLgnoreDelay,
       "Without any delay", frameRect(frames::insertLgnoreDelayChk), false},
      {&MacroView::m_insertRecordBtn, "insertRecordBtn", TagInsertRecord, "RECORD",
       frameRect(frames::insertRecordBtn), false},
      {&MacroView::m_insertStopBtn, "insertStopBtn", TagInsertStop, "STOP",
       frameRect(frames::insertStopBtn), false},
      {&MacroView::m_insertIntBtn, "insertIntBtn", TagInsertInt, "Insert",
       frameRect(frames::insertIntBtn), false},
      {&MacroView::m_insertCancelBtn, "insertCancelBtn", TagInsertCancel, "Cancel",
       frameRect(frames::insertCancelBtn)},
      {&MacroView::m_applyBtn, "applyBtn", TagApply, "Apply", frameRect(frames::applyBtn)},
      {&MacroView::m_okBtn, "okBtn", TagOk, "Close", frameRect(frames::okBtn)},
      {&MacroView::m_cancelBtn, "cancelBtn", TagCancel, "Cancel", frameRect(frames::cancelBtn),
       false},
  };
  return all;
}

void MacroView::initControls() {
  initFields();
  initButtons();
  initDelayGroups();
  initTable();
  initWorkbench();
  setEndTags(TagApply, TagOk, TagCancel);
  addFooter(frameRect(frames::applyBtn));
  setInsertState(false);
}

void MacroView::initFields() {
  m_macroNameTxt = NerinAction::AddTextField(frameRect(frames::macroNameTxt), *this);
  m_macroNameTxt->setObjectName(QStringLiteral("macroNameTxt"));
  m_macroNameTxt->setAccessibleName(NerinAction::tooltipText("Macro name"));
  m_macroNameTxt->setTextColor(Qt::black);
  m_macroNameTxt->setTextMargins(nameMargin, 0, nameMargin, 0);
  // Every typed character renames the macro everywhere. A screen reader writes a text at once,
  // which counts as no typing.
  connect(m_macroNameTxt, &QLineEdit::textChanged, this, &MacroView::onMacroNameTextChange);

  m_recordStateTxt = NerinAction::AddLabTextField(frameRect(frames::recordStateTxt), *this);
  m_recordStateTxt->setObjectName(QStringLiteral("recordStateTxt"));
  m_recordStateTxt->setTextMargins(-LXTextField::ownMargin, 0, -LXTextField::ownMargin, 0);
  m_recordStateTxt->setTextColor(QColor::fromRgb(Artwork::Color::emberLit));

  const auto addUsage = [this](const Artwork::Frame& label, const Artwork::Frame& bar,
                               const char* name, const char* nameKey) {
    auto* number = new QLabel(this);
    number->setGeometry(frameRect(label));
    number->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    number->setFont(pictures::font(smallType, QFont::Normal));
    number->setAccessibleName(NerinAction::tooltipText(nameKey));
    auto* usage = new UsageBar(number, this);
    usage->setGeometry(frameRect(bar));
    usage->setObjectName(QString::fromLatin1(name));
    return usage;
  };
  m_eventBar = addUsage(frames::eventCountTxt, frames::eventBar, "eventBar", "Events");
  m_memoryBar = addUsage(frames::memoryTxt, frames::memoryBar, "memoryBar", "Memory");
}

void MacroView::initButtons() {
  m_macroNameBtn = NerinAction::addListButton(frameRect(frames::macroNameBtn), *this, TagMacroName,
                                              QStringLiteral("macroNameBtn"), "Macro");
  NerinAction::initTooltip(*m_macroNameBtn, QStringLiteral("macroNameBtn"), "Select a macro");
  m_insertBtn = NerinAction::addListButton(frameRect(frames::insertBtn), *this, TagInsert,
                                           QStringLiteral("insertBtn"), "Insert");
  for (const Control& control : controls()) {
    LXButton* button = addButton(control.frame, control.tag, control.name,
                                 control.hasTooltip ? control.tooltipKey : "NoTooltip");
    button->setAccessibleName(NerinAction::tooltipText(control.tooltipKey));
    this->*control.member = button;
  }
  // These buttons are not always visible, so they have their own pictures.
  struct Own {
    LXButton* button;
    const char* picture;
  };
  for (const Own& own :
       {Own{m_insertIntBtn, "MacroInsertDelay"}, Own{m_insertAutoDelayChk, "MacroInsertAuto"},
        Own{m_insertLgnoreDelayChk, "MacroInsertWithout"}}) {
    const auto image = [&](const char* state) {
      return getImageByName(QString::fromLatin1(own.picture), QString::fromLatin1(state),
                            QStringLiteral("png"));
    };
    own.button->setIsNoanomaly(true);
    own.button->setImages(
        {image("Normal"), image("Over"), image("Down"), image("Disable"), image("Active")});
  }
  m_insertIntBtn->raise();
  m_insertIntBtn->hide();
  for (LXButton* button : allButtons()) {
    button->setLXBtnDelege(this);
  }
  // The recording itself listens for the keys that stop it.
  for (LXButton* button : {m_recordBtn, m_stopBtn, m_insertStopBtn}) {
    button->setAccessibleDescription(NerinAction::tooltipText("Ctrl+R"));
  }
  connect(new QShortcut(recordShortcut, this), &QShortcut::activated, this,
          &MacroView::startByShortcut);
}

void MacroView::initDelayGroups() {
  const auto addGroup = [this](const std::array<LXButton*, 3>& choices) {
    auto* group = new LXSetpPanelObj(this);
    for (LXButton* choice : choices) {
      group->addItem(choice);
    }
    group->selectindex(DelayMeasured);
    group->setSetpDelegate(this);
    return group;
  };
  m_delaySetp = addGroup({m_autoDelayChk, m_defDelayChk, m_lgnoreDelayChk});
  m_insertDelaySetp = addGroup({m_insertAutoDelayChk, m_insertDefDelayChk, m_insertLgnoreDelayChk});
  const auto addDelay = [this](const Artwork::Frame& frame, const char* name) {
    LXNumberTextField* field =
        NerinAction::AddNumTextField(frameRect(frame), *this, longestDelay, 0, delayDigits, false);
    field->setObjectName(QString::fromLatin1(name));
    field->setAccessibleName(NerinAction::tooltipText("Fixed delay"));
    field->setAlignment(Qt::AlignCenter);
    field->setStep(1);
    return field;
  };
  m_defDelayTxt = addDelay(frames::defDelayTxt, "defDelayTxt");
  m_insertDefDelayTxt = addDelay(frames::insertDefDelayTxt, "insertDefDelayTxt");
}

void MacroView::initTable() {
  m_table = new RigthMouseTBView(this);
  m_table->setGeometry(frameRect(frames::commandTable));
  m_table->setObjectName(QStringLiteral("commandTable"));
  m_table->setAccessibleName(NerinAction::tooltipText("Commands"));
  m_table->setLXBtnDelege(this);
  m_commands = qobject_cast<MacroCommandModel*>(m_table->model());
  connect(m_table->selectionModel(), &QItemSelectionModel::currentRowChanged, this,
          &MacroView::selectionChanged);
}

void MacroView::initWorkbench() {
  m_workbench = new MacroWorkbench(*this);
  connect(m_workbench, &MacroWorkbench::rowChosen, this, &MacroView::chooseCommand);
  connect(m_workbench, &MacroWorkbench::rowsChosen, m_commands, &MacroCommandModel::setChosenRows);
  connect(m_table, &QTableView::pressed, this, [this](const QModelIndex& index) {
    m_workbench->setCurrentRow(index.row(), m_table->isExtending());
  });
  connect(m_workbench, &MacroWorkbench::edited, this, &MacroView::commandsEdited);
  m_tools = new MacroTools(this);
  m_toolsBtn->setOpenedList(m_tools);
  connect(m_tools, &MacroTools::edited, this, &MacroView::commandsEdited);
  m_test = new MacroTest(this);
  m_testBtn->setOpenedList(m_test);
  connect(m_test, &MacroTest::rowChosen, this, &MacroView::goToCommand);
  connect(new QShortcut(QKeySequence::Undo, this), &QShortcut::activated, m_workbench,
          &MacroWorkbench::undo);
  connect(new QShortcut(QKeySequence::Redo, this), &QShortcut::activated, m_workbench,
          &MacroWorkbench::redo);
}

std::vector<LXButton*> MacroView::allButtons() const {
  std::vector<LXButton*> buttons{m_macroNameBtn, m_insertBtn};
  for (const Control& control : controls()) {
    buttons.push_back(this->*control.member);
  }
  return buttons;
}
