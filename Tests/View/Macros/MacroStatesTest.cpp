// When the controls of the macro editor are enabled.

#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/UsageBar.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MacroStates : public MacroViewTest {};

}  // namespace

TEST_F(MacroStates, ByTheNumberOfCommandsAndTheSelectedOne) {
  const std::vector<const char*> ofCommands{"delKeyBtn", "keyUpBtn", "keyDownBtn", "insertKeyBtn"};
  openOn(0, 0);
  EXPECT_THAT(usable(ofCommands), IsEmpty());
  addCommands(1);
  select(0);
  EXPECT_THAT(usable(ofCommands), ElementsAre("delKeyBtn", "insertKeyBtn"));
  addCommands(2);
  select(0);
  EXPECT_THAT(usable(ofCommands), ElementsAre("delKeyBtn", "keyDownBtn", "insertKeyBtn"));
  // The pointer selects a row, too.
  const QModelIndex second = table().model()->index(1, MacroCommandModel::Command);
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, table().visualRect(second).center());
  EXPECT_THAT(usable(ofCommands),
              ElementsAre("delKeyBtn", "keyUpBtn", "keyDownBtn", "insertKeyBtn"));
  EXPECT_EQ(editor().selKeyInfo(), commands()[1]);
  select(2);
  EXPECT_THAT(usable(ofCommands), ElementsAre("delKeyBtn", "keyUpBtn", "insertKeyBtn"));
}

TEST_F(MacroStates, TheInsertPanelIsOnBetweenItsTwoButtons) {
  const std::vector<const char*> panel{
      "insertBtn",       "insertAutoDelayChk", "insertDefDelayChk", "insertLgnoreDelayChk",
      "insertRecordBtn", "insertStopBtn",      "insertIntBtn",      "insertCancelBtn"};
  openOn(1, 0);
  EXPECT_THAT(usable(panel), IsEmpty());
  EXPECT_FALSE(part<LXNumberTextField>("insertDefDelayTxt").isEnabled());
  press("insertKeyBtn");
  EXPECT_THAT(usable(panel), testing::ElementsAreArray(panel));
  EXPECT_TRUE(part<LXNumberTextField>("insertDefDelayTxt").isEnabled());
  press("insertCancelBtn");
  EXPECT_THAT(usable(panel), IsEmpty());
  EXPECT_FALSE(part<LXNumberTextField>("insertDefDelayTxt").isEnabled());
}

TEST_F(MacroStates, TheInsertTypeDecidesWhatThePanelShows) {
  openOn(1, 0);
  press("insertKeyBtn");
  const std::vector<const char*> ofRecording{"insertAutoDelayChk", "insertLgnoreDelayChk",
                                             "insertRecordBtn", "insertStopBtn"};
  const char* titles[] = {"Record before the Selected Line", "Record after the Selected Line",
                          "Delay before the Selected Line", "Delay after the Selected Line"};
  for (const int type : {2, 3, 1, 4, 3}) {
    chooseIn("insertBtn", titles[type - 1]);
    EXPECT_EQ(editor().currInsertType(), type);
    EXPECT_EQ(control("insertBtn").title(), titles[type - 1]);
    for (const char* name : ofRecording) {
      EXPECT_EQ(control(name).isVisible(), type < 3) << name << type;
    }
    EXPECT_EQ(control("insertIntBtn").isVisible(), type >= 3) << type;
    EXPECT_TRUE(control("insertDefDelayChk").isVisible());
  }
}

TEST_F(MacroStates, ADelayIsAlwaysTheFixedOne) {
  openOn(1, 0);
  press("insertKeyBtn");
  for (const char* title : {"Delay before the Selected Line", "Delay after the Selected Line"}) {
    chooseIn("insertBtn", title);
    EXPECT_TRUE(control("insertDefDelayChk").isChecked());
    control("insertAutoDelayChk").click();
    EXPECT_TRUE(control("insertDefDelayChk").isChecked());
    control("insertLgnoreDelayChk").click();
    EXPECT_TRUE(control("insertDefDelayChk").isChecked());
    // The other group does not depend on it.
    control("lgnoreDelayChk").click();
    EXPECT_TRUE(control("lgnoreDelayChk").isChecked());
    control("autoDelayChk").click();
    EXPECT_TRUE(control("autoDelayChk").isChecked());
  }
  chooseIn("insertBtn", "Record before the Selected Line");
  control("insertLgnoreDelayChk").click();
  EXPECT_TRUE(control("insertLgnoreDelayChk").isChecked());
}

TEST_F(MacroStates, RecordingTakesEveryOneButItsStop) {
  openOn(2, 0);
  const auto buttons = editor().findChildren<LXButton*>();
  for (const bool inserts : {false, true}) {
    editor().setInsertState(true);
    control(inserts ? "insertRecordBtn" : "recordBtn").click();
    ASSERT_TRUE(editor().isRecord());
    const LXButton& active = control(inserts ? "insertStopBtn" : "stopBtn");
    for (const LXButton* one : buttons) {
      EXPECT_EQ(one->isEnabled(), one == &active) << one->objectName().toStdString();
      EXPECT_TRUE(one->isCaptureMouseEvent()) << one->objectName().toStdString();
    }
    EXPECT_FALSE(part<LXTextField>("macroNameTxt").isEnabled());
    EXPECT_TRUE(table().isCaptureMouseEvent());
    EXPECT_TRUE(table().hasFocus());
    EXPECT_NE(textOf(part<LXTextField>("recordStateTxt")), "");
    control(inserts ? "insertStopBtn" : "stopBtn").click();
    for (const LXButton* one : buttons) {
      const std::string name = one->objectName().toStdString();
      // The first command is selected; the insert panel is enabled if it began the recording.
      const bool isOff =
          name == "keyUpBtn" || (!inserts && name.starts_with("insert") && name != "insertKeyBtn");
      EXPECT_EQ(one->isEnabled(), !isOff) << name;
      EXPECT_FALSE(one->isCaptureMouseEvent()) << name;
    }
    EXPECT_TRUE(part<LXTextField>("macroNameTxt").isEnabled());
    EXPECT_FALSE(table().isCaptureMouseEvent());
    EXPECT_EQ(textOf(part<LXTextField>("recordStateTxt")), "");
  }
}

TEST_F(MacroStates, NothingThatNeedsAMacroDoesAnythingWithoutOne) {
  open();
  LXButton stranger;
  // Includes the tags for delays, whose fields may hold a value.
  for (const int tag : {202, 203, 205, 206, 208, 210, 211, 223, 225}) {
    editor().setInsertState(true);
    stranger.setTag(tag);
    editor().buttonAction(stranger);
    EXPECT_FALSE(editor().isRecord()) << tag;
  }
  editor().insertAdjustTim();
  editor().insertCom();
  editor().delAllCommand();
  editor().renamePro();
  editor().AddNewKey(1, 0);
  EXPECT_EQ(editor().currMacroInfo(), nullptr);
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_THAT(m_panels, IsEmpty());
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, IsEmpty());
}

TEST_F(MacroStates, TheInsertRecordingNeedsItsPanel) {
  openOn(2, 0);
  LXButton stranger;
  stranger.setTag(MacroView::TagInsertRecord);
  editor().buttonAction(stranger);
  EXPECT_FALSE(editor().isRecord());
  press("insertKeyBtn");
  editor().buttonAction(stranger);
  EXPECT_TRUE(editor().isRecord());
  EXPECT_TRUE(editor().isInsertRecord());
}

TEST_F(MacroStates, TheBarsShowHowMuchIsUsed) {
  open();
  const auto words = [this](const char* bar) { return part<UsageBar>(bar).words().toStdString(); };
  EXPECT_EQ(words("eventBar"), "0 / 40");
  EXPECT_EQ(words("memoryBar"), "0 / 2000");
  press("newMacroBtn");
  addCommands(10);
  commands()[0]->setDelay(20);
  select(0);
  press("keyDownBtn");
  EXPECT_EQ(words("eventBar"), "10 / 40");
  EXPECT_EQ(words("memoryBar"),
            std::to_string(editor().currMacroInfo()->getMacroCount()) + " / 2000");
  EXPECT_DOUBLE_EQ(part<UsageBar>("eventBar").fraction(), 0.25);
  press("delKeyBtn");
  EXPECT_EQ(words("eventBar"), "9 / 40");
  press("newMacroBtn");
  EXPECT_EQ(words("eventBar"), "0 / 40");
}
