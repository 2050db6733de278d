// Recording a macro from keys and mouse buttons, with the times of the events.

#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class MacroRecording : public MacroViewTest {
 protected:
  void loseKeyboard() {
    QEvent event(QEvent::WindowDeactivate);
    QCoreApplication::sendEvent(&editor(), &event);
  }
};

}  // namespace

TEST_F(MacroRecording, KeysBecomeCommandsWithThePauseAfterThem) {
  open();
  control("newMacroBtn").click();
  record();
  EXPECT_TRUE(editor().isRecord());
  down(KeyA, 1000);
  up(KeyA, 1120);
  down(KeyB, 1500);
  up(KeyB, 1501);
  stop();
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(rows(), ElementsAre("0/0/120", "0/1/380", "11/0/1", "11/1/0"));
}

TEST_F(MacroRecording, ARepeatedKeyIsOneRow) {
  open();
  control("newMacroBtn").click();
  record();
  down(KeyA, 1000);
  down(KeyA, 1300);
  down(KeyA, 1330);
  up(KeyA, 1400);
  down(KeyA, 1500);
  up(KeyA, 1600);
  stop();
  EXPECT_THAT(rows(), ElementsAre("0/0/400", "0/1/100", "0/0/100", "0/1/0"));
}

TEST_F(MacroRecording, OneOfTwoShiftKeysThatIsLetGoRecordsAPress) {
  open();
  control("newMacroBtn").click();
  record();
  down(KeyLeftShift, 1000);
  down(KeyRightShift, 1100);
  up(KeyLeftShift, 1200);
  up(KeyRightShift, 1300);
  stop();
  EXPECT_THAT(rows(), ElementsAre("56/0/100", "60/0/100", "56/0/100", "60/1/0"));
}

TEST_F(MacroRecording, EveryKeyBelongsToIt) {
  open();
  control("newMacroBtn").click();
  record();
  down(KeyTab, 1000);
  up(KeyTab, 1010);
  down(KeyEsc, 1020);
  up(KeyEsc, 1030);
  stop();
  EXPECT_THAT(rows(), ElementsAre("48/0/10", "48/1/10", "53/0/10", "53/1/0"));
  EXPECT_TRUE(isOpen());
}

TEST_F(MacroRecording, AFixedDelayIsAfterAllButTheLast) {
  open();
  control("newMacroBtn").click();
  control("defDelayChk").click();
  auto& field = part<LXNumberTextField>("defDelayTxt");
  type(field, "77");
  record();
  down(KeyA, 1000);
  up(KeyA, 1500);
  down(KeyB, 1600);
  stop();
  EXPECT_THAT(rows(), ElementsAre("0/0/77", "0/1/77", "11/0/0"));
  EXPECT_EQ(macroDelays->delayTime, 77);
}

TEST_F(MacroRecording, WithoutDelaysThereAreNone) {
  open();
  control("newMacroBtn").click();
  control("lgnoreDelayChk").click();
  record();
  down(KeyA, 1000);
  up(KeyA, 1500);
  stop();
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "0/1/0"));
}

TEST_F(MacroRecording, MouseButtonsOfTheTableAndTheWindowAreCommands) {
  open();
  control("newMacroBtn").click();
  record();
  QTest::mouseClick(table().viewport(), Qt::LeftButton, {}, {20, 20});
  QTest::mouseClick(table().viewport(), Qt::RightButton, {}, {20, 20});
  QTest::mouseClick(&editor(), Qt::MiddleButton, {}, {20, 400});
  stop();
  for (auto& command : commands()) {
    command->setDelay(0);
  }
  EXPECT_THAT(rows(),
              ElementsAre("120/3/0", "120/4/0", "121/3/0", "121/4/0", "122/3/0", "122/4/0"));
}

TEST_F(MacroRecording, OnlyItsStopButtonStaysAButton) {
  open();
  control("newMacroBtn").click();
  record();
  EXPECT_THAT(usable({"recordBtn", "stopBtn", "insertStopBtn", "okBtn", "cancelBtn", "applyBtn",
                      "newMacroBtn", "delMacroBtn", "macroNameBtn", "insertRecordBtn"}),
              ElementsAre("stopBtn"));
  QTest::mouseClick(&control("stopBtn"), Qt::LeftButton);
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(MacroRecording, TheFortyFirstCommandIsRefusedAndRecordingGoesOn) {
  open();
  control("newMacroBtn").click();
  record();
  for (std::uint64_t i = 0; i < 20; ++i) {
    down(KeyA, 1000 + 20 * i);
    up(KeyA, 1010 + 20 * i);
  }
  EXPECT_THAT(commands(), SizeIs(40));
  down(KeyB, 5000);
  EXPECT_THAT(commands(), SizeIs(40));
  EXPECT_THAT(m_shown, ElementsAre("Maximum number of macros reached"));
  EXPECT_TRUE(editor().isRecord());
  stop();
}

TEST_F(MacroRecording, AnInsertedRecordingStandsBeforeOrAfterTheSelectedCommand) {
  open();
  control("newMacroBtn").click();
  record();
  down(KeyA, 1000);
  up(KeyA, 1100);
  stop();
  select(1);
  control("insertKeyBtn").click();
  control("insertRecordBtn").click();
  EXPECT_TRUE(editor().isInsertRecord());
  down(KeyB, 2000);
  up(KeyB, 2030);
  control("insertStopBtn").click();
  EXPECT_THAT(rows(), ElementsAre("0/0/100", "11/0/30", "11/1/0", "0/1/0"));
  EXPECT_TRUE(editor().isInsert());
  select(3);
  chooseIn("insertBtn", "Record after the Selected Line");
  control("insertRecordBtn").click();
  down(KeyB, 3000);
  control("insertStopBtn").click();
  EXPECT_THAT(rows(), ElementsAre("0/0/100", "11/0/30", "11/1/0", "0/1/0", "11/0/0"));
  control("recordBtn").click();
  stop();
  EXPECT_FALSE(editor().isInsert());
}

TEST_F(MacroRecording, KeysThatAreHeldAreLetGoWhenTheWindowLosesTheKeyboard) {
  openAndRecord();
  down(KeyLeftShift, 1000);
  down(KeyA, 1100);
  down(KeyB, 1200);
  up(KeyB, 1300);
  loseKeyboard();
  EXPECT_TRUE(editor().isRecord());
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
  // The other window has the releases, and what is pressed there stays there.
  up(KeyA, 1400);
  up(KeyLeftShift, 1500);
  stop();
  EXPECT_THAT(kinds(), ElementsAre("56/0", "0/0", "11/0", "11/1", "0/1", "56/1"));
}

TEST_F(MacroRecording, ReleasesOfHeldKeysNeedRoom) {
  openAndRecord();
  for (std::uint64_t i = 0; i < 19; ++i) {
    down(KeyA, 1000 + 20 * i);
    up(KeyA, 1010 + 20 * i);
  }
  down(KeyA, 2000);
  down(KeyB, 2010);
  loseKeyboard();
  EXPECT_THAT(commands(), SizeIs(40));
  EXPECT_THAT(m_shown, IsEmpty());
  stop();
}

TEST_F(MacroRecording, AKeyOfAnotherWindowIsNotRecordedBeforeTheDesktopHasSaidSo) {
  openAndRecord();
  QWidget other;
  other.show();
  QKeyEvent key = nativeEvent(QEvent::KeyPress, KeyB);
  QCoreApplication::sendEvent(other.windowHandle(), &key);
  // The window hands it to the widget that holds the keyboard.
  QCoreApplication::sendEvent(&table(), &key);
  EXPECT_THAT(commands(), IsEmpty());
  QKeyEvent own = nativeEvent(QEvent::KeyPress, KeyA);
  QCoreApplication::sendEvent(host().windowHandle(), &own);
  EXPECT_THAT(kinds(), ElementsAre("0/0"));
  stop();
}

TEST_F(MacroRecording, AskedToCloseItStopsAndKeepsWhatItHas) {
  openAndRecord();
  down(KeyA, 1000);
  EXPECT_TRUE(editor().staysOpen());
  EXPECT_FALSE(editor().isRecord());
  EXPECT_THAT(kinds(), ElementsAre("0/0", "0/1"));
  EXPECT_FALSE(editor().staysOpen());
}

TEST_F(MacroRecording, TheAltOfTheShortcutThatClosesIsNoneOfItsCommands) {
  openAndRecord();
  down(KeyA, 1000);
  up(KeyA, 1100);
  down(KeyLeftAlt, 1900);
  EXPECT_TRUE(editor().staysOpen());
  EXPECT_THAT(rows(), ElementsAre("0/0/100", "0/1/0"));
}

TEST_F(MacroRecording, AWindowThatClosesEndsIt) {
  open();
  control("newMacroBtn").click();
  const auto macro = editor().currMacroInfo();
  record();
  down(KeyA, 1000);
  host().close();
  QKeyEvent event = nativeEvent(QEvent::KeyPress, KeyB);
  QCoreApplication::sendEvent(&host(), &event);
  EXPECT_THAT(macro->keyInfoArr(), SizeIs(1));
}
