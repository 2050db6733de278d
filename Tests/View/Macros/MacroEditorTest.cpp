// The library of macros and the commands of a macro.

#include <fstream>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/MacroMenulist.h"
#include "View/Screen/ControlFactory.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

const std::vector<const char*> needMacro{"recordBtn",  "stopBtn",      "delKeyBtn",  "keyUpBtn",
                                         "keyDownBtn", "insertKeyBtn", "delMacroBtn"};

class MacroEditor : public MacroViewTest {};

}  // namespace

TEST_F(MacroEditor, WithoutAMacroNothingOfItCanBeUsed) {
  open();
  EXPECT_THAT(usable(needMacro), IsEmpty());
  EXPECT_EQ(table().model()->rowCount(), 0);
  EXPECT_THAT(usable({"insertBtn", "insertRecordBtn", "insertStopBtn", "insertCancelBtn"}),
              IsEmpty());
  EXPECT_EQ(control("insertBtn").title(), "Record before the Selected Line");
}

TEST_F(MacroEditor, ANewMacroIsTheCurrentOneAndIsCalledByTheRule) {
  open();
  press("newMacroBtn");
  EXPECT_EQ(name(), "NewMacro_1");
  press("newMacroBtn");
  EXPECT_EQ(name(), "NewMacro_2");
  EXPECT_EQ(editor().currMacroInfo()->macroId(), 2);
  EXPECT_THAT(usable(needMacro), ElementsAre("recordBtn", "stopBtn", "delMacroBtn"));
}

TEST_F(MacroEditor, EveryLetterRenamesAndTheCursorStays) {
  open();
  press("newMacroBtn");
  auto& field = part<LXTextField>("macroNameTxt");
  field.setFocus();
  field.setCursorPosition(3);
  field.insert("X");
  emit field.textEdited(field.text());
  EXPECT_EQ(*editor().currMacroInfo()->nameStr(), "NewXMacro_1");
  EXPECT_EQ(control("macroNameBtn").title(), "NewXMacro_1");
  EXPECT_EQ(field.cursorPosition(), 4);
  EXPECT_NE(MacroView::getNodeByData(editor().currMacroInfo().get()), nullptr);
}

TEST_F(MacroEditor, ACopyHasItsOwnCommands) {
  open();
  press("newMacroBtn");
  addCommands(2);
  const auto original = editor().currMacroInfo();
  press("copyMacroBtn");
  EXPECT_EQ(name(), "NewMacro_2");
  EXPECT_EQ(editor().currMacroInfo()->macroId(), 2);
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/0"));
  commands().clear();
  EXPECT_EQ(original->keyInfoArr().size(), 2U);
}

TEST_F(MacroEditor, ADeletedMacroGivesWayToTheNext) {
  open();
  press("newMacroBtn");
  press("newMacroBtn");
  press("newMacroBtn");
  chooseIn("macroNameBtn", "NewMacro_2");
  m_answer = false;
  press("delMacroBtn");
  EXPECT_EQ(name(), "NewMacro_2");
  m_answer = true;
  press("delMacroBtn");
  EXPECT_THAT(m_shown, ElementsAre("Are you sure you want to delete this macro?",
                                   "Are you sure you want to delete this macro?"));
  EXPECT_EQ(name(), "NewMacro_3");
  press("delMacroBtn");
  EXPECT_EQ(name(), "");
  EXPECT_THAT(usable(needMacro), IsEmpty());
}

TEST_F(MacroEditor, TheHundredAndFirstIsRefusedButCanBeImported) {
  open();
  for (int i = 0; i < 100; ++i) {
    editor().newMacro();
  }
  EXPECT_THAT(m_shown, IsEmpty());
  press("newMacroBtn");
  press("copyMacroBtn");
  EXPECT_THAT(m_shown,
              ElementsAre("Maximum number of macros reached", "Maximum number of macros reached"));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 100U);
  m_chosen = file("Extra");
  press("exportMacroBtn");
  m_chosen = file("Extra.mac");
  press("importMacroBtn");
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 101U);
  EXPECT_EQ(editor().currMacroInfo()->macroId(), 0);
}

TEST_F(MacroEditor, ExportAlwaysAppendsTheExtension) {
  open();
  press("newMacroBtn");
  addCommands(3);
  m_chosen = file("one.mac");
  press("exportMacroBtn");
  EXPECT_TRUE(std::filesystem::exists(file("one.mac.mac")));
  EXPECT_FALSE(std::filesystem::exists(file("one.mac")));
  m_chosen = file("one.mac.mac");
  press("importMacroBtn");
  EXPECT_EQ(name(), "one.mac");
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/0", "2/0/0"));
}

TEST_F(MacroEditor, AnImportWithANameInUseIsRefused) {
  open();
  press("newMacroBtn");
  m_chosen = file("NewMacro_1");
  press("exportMacroBtn");
  m_chosen = file("NewMacro_1.mac");
  press("importMacroBtn");
  EXPECT_THAT(m_shown, ElementsAre("A macro of this name already exists."));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 1U);
}

TEST_F(MacroEditor, AFileThatHoldsNoMacroIsIgnored) {
  open();
  press("importMacroBtn");
  std::ofstream(file("bad.mac")) << "no archive";
  m_chosen = file("bad.mac");
  press("importMacroBtn");
  m_chosen = file("missing.mac");
  press("importMacroBtn");
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, IsEmpty());
}

TEST_F(MacroEditor, RowsSayWhatCommandsDo) {
  EXPECT_EQ(MacroCommandModel::describe({0, MacroKeyInfo::KeyPress, 0}), "Press A");
  EXPECT_EQ(MacroCommandModel::describe({0, MacroKeyInfo::KeyRelease, 0}), "Release A");
  EXPECT_EQ(MacroCommandModel::describe({120, MacroKeyInfo::MousePress, 0}), "L Button Down");
  EXPECT_EQ(MacroCommandModel::describe({121, MacroKeyInfo::MouseRelease, 0}), "R Button Up");
  EXPECT_EQ(MacroCommandModel::describe({122, MacroKeyInfo::KeyPress, 0}), "Press M Button");
}

TEST_F(MacroEditor, TheTableHasFourColumnsAndDiscardsWhatIsTyped) {
  open();
  press("newMacroBtn");
  addCommands(1);
  commands()[0]->setDelay(7);
  auto* model = table().model();
  EXPECT_EQ(model->columnCount(), 4);
  EXPECT_EQ(table().rowHeight(0), 20);
  const QModelIndex delay = model->index(0, MacroCommandModel::Delay);
  EXPECT_EQ(model->data(delay).toString(), "7 ms");
  EXPECT_EQ(model->data(delay, Qt::EditRole).toString(), "7");
  EXPECT_FALSE(model->setData(delay, "99"));
  EXPECT_EQ(commands()[0]->delay(), 7);
}

TEST_F(MacroEditor, CommandsMoveAndAreDeletedWithTheSelection) {
  open();
  press("newMacroBtn");
  addCommands(3);
  select(0);
  EXPECT_THAT(usable({"keyUpBtn", "keyDownBtn", "delKeyBtn"}),
              ElementsAre("keyDownBtn", "delKeyBtn"));
  press("keyDownBtn");
  EXPECT_THAT(rows(), ElementsAre("1/0/0", "0/0/0", "2/0/0"));
  EXPECT_EQ(table().currentIndex().row(), 1);
  press("keyUpBtn");
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/0", "2/0/0"));
  select(2);
  EXPECT_THAT(usable({"keyUpBtn", "keyDownBtn"}), ElementsAre("keyUpBtn"));
  press("delKeyBtn");
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/0"));
  EXPECT_EQ(table().currentIndex().row(), 1);
  select(0);
  press("delKeyBtn");
  EXPECT_EQ(table().currentIndex().row(), 0);
  press("delKeyBtn");
  EXPECT_THAT(usable({"keyUpBtn", "keyDownBtn", "delKeyBtn", "insertKeyBtn"}), IsEmpty());
}

TEST_F(MacroEditor, ADelayIsPutBeforeOrAfterTheSelectedCommand) {
  open();
  press("newMacroBtn");
  addCommands(3);
  select(1);
  press("insertKeyBtn");
  chooseIn("insertBtn", "Delay before the Selected Line");
  EXPECT_FALSE(control("insertRecordBtn").isVisible());
  EXPECT_TRUE(control("insertIntBtn").isVisible());
  EXPECT_FALSE(control("insertAutoDelayChk").isVisible());
  EXPECT_TRUE(control("insertDefDelayChk").isChecked());
  auto& field = part<LXNumberTextField>("insertDefDelayTxt");
  type(field, "9000");
  press("insertIntBtn");
  EXPECT_THAT(rows(), ElementsAre("0/0/5000", "1/0/0", "2/0/0"));
  chooseIn("insertBtn", "Delay after the Selected Line");
  type(field, "30");
  press("insertIntBtn");
  EXPECT_THAT(rows(), ElementsAre("0/0/5000", "1/0/30", "2/0/0"));
  select(0);
  chooseIn("insertBtn", "Delay before the Selected Line");
  press("insertIntBtn");
  EXPECT_THAT(rows(), ElementsAre("0/0/30", "1/0/30", "2/0/0"));
  press("insertCancelBtn");
  EXPECT_FALSE(editor().isInsert());
}

TEST_F(MacroEditor, OkAndApplySaveAndCancelKeepsTheEditInMemory) {
  open();
  press("newMacroBtn");
  press("applyBtn");
  EXPECT_TRUE(isOpen());
  NerinAction::initMenuList();
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 1U);
  press("newMacroBtn");
  press("cancelBtn");
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(editor().endTag(), 0);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 2U);
  open();
  press("okBtn");
  EXPECT_EQ(editor().endTag(), 1);
  NerinAction::initMenuList();
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.size(), 2U);
}

TEST_F(MacroEditor, TheGeneratedNameOfAMacroIsShownToNobody) {
  MacroInfo macro;
  macro.setNameStr("dmr_fw_macro_tag_3");
  EXPECT_EQ(macromenulist::titleOf(macro), NerinAction::tooltipText("MACRO KEY"));
}
