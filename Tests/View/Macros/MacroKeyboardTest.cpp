// The macro editor by keyboard alone, and what it keeps from one opening to the next.

#include <QTest>

#include <gmock/gmock.h>

#include "Action/Edit/MacroDraft.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Windows/LocalNotifications.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr auto KeyR = static_cast<std::uint32_t>(19);

class MacroKeyboard : public MacroViewTest {
 protected:
  void downR(std::uint64_t time) { down(static_cast<Key>(KeyR), time); }
  void upR(std::uint64_t time) { up(static_cast<Key>(KeyR), time); }
  void startByKeys() { QTest::keyClick(&table(), Qt::Key_R, Qt::ControlModifier); }
  void stopByKeys(std::uint64_t time) {
    down(KeyLeftControl, time);
    downR(time + 10);
    upR(time + 20);
    up(KeyLeftControl, time + 30);
  }
};

}  // namespace

TEST_F(MacroKeyboard, ControlAndRStartAndStopWithoutBeingRecorded) {
  openOn(0, 0);
  startByKeys();
  ASSERT_TRUE(editor().isRecord());
  down(KeyA, 1000);
  up(KeyA, 1100);
  stopByKeys(1500);
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(rows(), ElementsAre("0/0/100", "0/1/0"));
  EXPECT_EQ(row(), 1);
  EXPECT_TRUE(table().hasFocus());
}

TEST_F(MacroKeyboard, ControlAndRAloneRecordNothing) {
  openOn(0, 0);
  startByKeys();
  stopByKeys(1000);
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(MacroKeyboard, ControlAndRStopAnInsertedRecording) {
  openOn(2, 1);
  commands()[0]->setDelay(70);
  press("insertKeyBtn");
  press("insertRecordBtn");
  stopByKeys(1000);
  EXPECT_FALSE(editor().isRecord());
  EXPECT_TRUE(editor().isInsert());
  EXPECT_THAT(rows(), ElementsAre("0/0/70", "1/0/0"));
}

TEST_F(MacroKeyboard, HoldingTheShortcutStartsOnce) {
  openOn(0, 0);
  QTest::keyPress(&table(), Qt::Key_R, Qt::ControlModifier);
  ASSERT_TRUE(editor().isRecord());
  // On X a held key repeats as presses.
  QTest::keyPress(&table(), Qt::Key_R, Qt::ControlModifier);
  QTest::keyPress(&table(), Qt::Key_R, Qt::ControlModifier);
  EXPECT_TRUE(editor().isRecord());
  QTest::keyRelease(&table(), Qt::Key_R, Qt::ControlModifier);
  QTest::keyPress(&table(), Qt::Key_R, Qt::ControlModifier);
  EXPECT_FALSE(editor().isRecord());
  QTest::keyPress(&table(), Qt::Key_R, Qt::ControlModifier);
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(MacroKeyboard, ControlWithAnotherKeyAndRWithAnotherModifierAreRecorded) {
  openOn(0, 0);
  record();
  down(KeyLeftControl, 1000);
  down(KeyA, 1010);
  up(KeyA, 1020);
  down(KeyLeftShift, 1030);
  downR(1040);
  upR(1050);
  up(KeyLeftShift, 1060);
  up(KeyLeftControl, 1070);
  downR(1080);
  upR(1090);
  EXPECT_TRUE(editor().isRecord());
  EXPECT_THAT(kinds(), ElementsAre("59/0", "0/0", "0/1", "56/0", "15/0", "15/1", "56/1", "59/1",
                                   "15/0", "15/1"));
  stop();
}

TEST_F(MacroKeyboard, AFullMacroStopsByTheShortcutWithoutAMessage) {
  openOn(40, 0);
  record();
  stopByKeys(1000);
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(commands(), SizeIs(40));
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(MacroKeyboard, WithoutAMacroTheShortcutDoesNothing) {
  open();
  startByKeys();
  EXPECT_FALSE(editor().isRecord());
}

TEST_F(MacroKeyboard, ANewMacroTakesTheTypedNameAndTheNameHasTheFocus) {
  open();
  auto& field = part<LXTextField>("macroNameTxt");
  field.setFocus();
  QTest::keyClicks(&field, "Combo");
  press("newMacroBtn");
  EXPECT_THAT(names(), ElementsAre("Combo"));
  EXPECT_TRUE(field.hasFocus());
  EXPECT_EQ(field.selectedText(), "Combo");
  // The name of the open macro is not typed for the next one.
  press("newMacroBtn");
  EXPECT_THAT(names(), ElementsAre("Combo", "NewMacro_1"));
  QTest::keyClicks(&field, "Second");
  EXPECT_THAT(names(), ElementsAre("Combo", "Second"));
}

TEST_F(MacroKeyboard, ATypedNameThatIsTakenStaysToBeChanged) {
  openOn(0, 0);
  press("delMacroBtn");
  editor().newMacro();
  editor().setSelMacroByNode(nullptr);
  auto& field = part<LXTextField>("macroNameTxt");
  QTest::keyClicks(&field, "NewMacro_1");
  press("newMacroBtn");
  EXPECT_THAT(m_shown, testing::Contains("A macro of this name already exists."));
  EXPECT_THAT(names(), ElementsAre("NewMacro_1"));
  EXPECT_EQ(name(), "NewMacro_1");
  EXPECT_TRUE(field.hasFocus());
}

TEST_F(MacroKeyboard, TheLastMacroIsOpenAgain) {
  openOn(1, 0);
  editor().newMacro();
  chooseIn("macroNameBtn", "NewMacro_1");
  press("cancelBtn");
  open();
  EXPECT_EQ(name(), "NewMacro_1");
  EXPECT_EQ(row(), 0);
  EXPECT_TRUE(control("recordBtn").isEnabled());
  press("delMacroBtn");
  press("delMacroBtn");
  press("cancelBtn");
  open();
  EXPECT_EQ(name(), "");
}

TEST_F(MacroKeyboard, ARemovalDuringARecordingKeepsWhatWasRecorded) {
  openAndRecord();
  down(KeyA, 1000);
  up(KeyA, 1100);
  LocalNotifications::shared().post("Notify_OutPlus");
  EXPECT_FALSE(isOpen());
  NerinAction::macroStore->macroListArrs.clear();
  ASSERT_TRUE(NerinAction::restoreMacroDraft());
  open();
  chooseIn("macroNameBtn", "NewMacro_1");
  EXPECT_THAT(rows(), ElementsAre("0/0/100", "0/1/0"));
}
