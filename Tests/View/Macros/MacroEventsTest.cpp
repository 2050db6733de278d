// Recording keys: which keys are taken, where their commands go, and their delays.

#include <QLineEdit>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/UsageBar.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

constexpr std::uint32_t capsLocked = 2;

// A delay rule, and its result for a pause of 100 ms.
struct Choice {
  const char* button;
  int type;
  int delay;
};

class MacroEvents : public MacroViewTest {};

}  // namespace

TEST_F(MacroEvents, EveryModifierIsPressedAndReleasedByItsOwnCode) {
  struct Modifier {
    Key key;
    const char* code;
  };
  openAndRecord();
  for (const Modifier& modifier : {Modifier{KeyRightMeta, "54"},
                                   {KeyLeftMeta, "55"},
                                   {KeyLeftShift, "56"},
                                   {KeyLeftAlt, "58"},
                                   {KeyLeftControl, "59"},
                                   {KeyRightShift, "60"},
                                   {KeyRightAlt, "61"},
                                   {KeyRightControl, "62"},
                                   {KeyFunction, "63"}}) {
    const std::string code = modifier.code;
    down(modifier.key, 1000);
    up(modifier.key, 1010);
    EXPECT_THAT(takeKinds(), ElementsAre(code + "/0", code + "/1"));
  }
}

TEST_F(MacroEvents, OneOfAPairThatIsLetGoRecordsAPress) {
  struct Pair {
    Key left;
    Key right;
    const char* leftCode;
    const char* rightCode;
  };
  openAndRecord();
  for (const Pair& pair : {Pair{KeyLeftControl, KeyRightControl, "59", "62"},
                           {KeyLeftAlt, KeyRightAlt, "58", "61"},
                           {KeyLeftMeta, KeyRightMeta, "55", "54"}}) {
    const std::string left = pair.leftCode;
    const std::string right = pair.rightCode;
    down(pair.left, 1000);
    down(pair.right, 1010);
    up(pair.left, 1020);
    up(pair.right, 1030);
    EXPECT_THAT(takeKinds(), ElementsAre(left + "/0", right + "/0", left + "/0", right + "/1"));
  }
}

TEST_F(MacroEvents, CapsLockFollowsItsLock) {
  openAndRecord();
  down(KeyCapsLock, 1000);
  up(KeyCapsLock, 1010, capsLocked);
  down(KeyCapsLock, 1020, capsLocked);
  up(KeyCapsLock, 1030, capsLocked);
  down(KeyCapsLock, 1040);
  EXPECT_THAT(rows(), ElementsAre("57/0/20", "57/1/20", "57/0/0"));
  stop();
  commands().clear();
  record();
  down(KeyCapsLock, 2000, capsLocked);
  up(KeyCapsLock, 2010, capsLocked);
  down(KeyCapsLock, 2020);
  EXPECT_THAT(rows(), ElementsAre("57/1/20", "57/0/0"));
}

TEST_F(MacroEvents, AKeyWithoutACodeIsNone) {
  openAndRecord();
  down(static_cast<Key>(240), 1000);
  up(static_cast<Key>(240), 1010);
  EXPECT_THAT(rows(), IsEmpty());
  // Only the low 16 bits of a code count.
  editor().AddNewKey(0xABCD0005, MacroKeyInfo::KeyPress);
  EXPECT_THAT(kinds(), ElementsAre("5/0"));
}

TEST_F(MacroEvents, EveryKeyIsLoggedWhetherItIsRecordedOrNot) {
  std::vector<std::string> lines;
  LXLogger::setObserver([&](LXLogger::Level level, std::string_view line) {
    if (level == LXLogger::Level::Debug) {
      lines.emplace_back(line);
    }
  });
  const auto log = file("keys.log");
  LXLogger::setFile(log);
  openOn(1, 0);
  for (const bool records : {false, true}) {
    if (records) {
      record();
    }
    lines.clear();
    down(KeyA, 1000);
    up(KeyA, 1010);
    down(KeyLeftShift, 1020);
    up(KeyLeftShift, 1030);
    EXPECT_THAT(lines, ElementsAre("keyDown", "keyUp", "flagsChanged", "flagsChanged")) << records;
    EXPECT_THAT(commands(), SizeIs(records ? 5 : 1));
  }
  LXLogger::setObserver({});
  LXLogger::setFile({});
  const std::string text = textOfFile(log);
  for (const char* line : {" keyDown\n", " keyUp\n", " flagsChanged\n"}) {
    EXPECT_THAT(text,
                testing::ContainsRegex("\\[debug\\] (View/)?MacroView:[0-9]+" + std::string(line)));
  }
}

TEST_F(MacroEvents, TimeThatRunsBackwardsIsNoPause) {
  openAndRecord();
  down(KeyA, 5000);
  up(KeyA, 4000);
  down(KeyB, 4300);
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "0/1/300", "11/0/0"));
}

TEST_F(MacroEvents, ARecordingLeavesTheCommandsBeforeItAlone) {
  openAndRecord();
  down(KeyA, 1000);
  stop();
  up(KeyA, 1100);
  record();
  // The same key as the last one of the previous recording.
  down(KeyA, 9000);
  up(KeyA, 9040);
  stop();
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "0/0/40", "0/1/0"));
}

TEST_F(MacroEvents, TheFirstEventOfARecordingHasNothingBeforeIt) {
  openAndRecord();
  down(KeyA, 1000);
  stop();
  record();
  // An inserted command is now the last one, but it has no time.
  editor().insertCom();
  down(KeyB, 9000);
  EXPECT_THAT(rows(), ElementsAre("1/2/0", "11/0/0", "0/0/0"));
}

TEST_F(MacroEvents, TheChoiceOfTheDelayIsTakenWhenItStarts) {
  openOn(0, 0);
  type(part<LXNumberTextField>("defDelayTxt"), "33");
  for (const Choice& choice :
       {Choice{"autoDelayChk", 1, 100}, {"defDelayChk", 2, 33}, {"lgnoreDelayChk", 3, 0}}) {
    control(choice.button).click();
    record();
    EXPECT_EQ(macroDelays->delayType, choice.type);
    down(KeyA, 1000);
    up(KeyA, 1100);
    stop();
    EXPECT_EQ(commands()[0]->delay(), choice.delay) << choice.button;
    commands().clear();
  }
}

TEST_F(MacroEvents, AnInsertedRecordingHasDelaysOfItsOwn) {
  openOn(1, 0);
  press("insertKeyBtn");
  control("lgnoreDelayChk").click();
  type(part<LXNumberTextField>("defDelayTxt"), "33");
  type(part<LXNumberTextField>("insertDefDelayTxt"), "44");
  for (const Choice& choice : {Choice{"insertDefDelayChk", 2, 44},
                               {"insertAutoDelayChk", 1, 100},
                               {"insertLgnoreDelayChk", 3, 0}}) {
    control(choice.button).click();
    select(0);
    control("insertRecordBtn").click();
    EXPECT_EQ(macroDelays->delayType, choice.type);
    down(KeyA, 1000);
    up(KeyA, 1100);
    control("insertStopBtn").click();
    EXPECT_EQ(commands()[0]->delay(), choice.delay) << choice.button;
  }
}

TEST_F(MacroEvents, WhereAnInsertedRecordingStands) {
  struct Place {
    int count;
    int selected;
    int type;
    int expected;
  };
  const char* titles[] = {"Record before the Selected Line", "Record after the Selected Line",
                          "Delay before the Selected Line", "Delay after the Selected Line"};
  LXButton start;
  start.setTag(MacroView::TagInsertRecord);
  for (const Place& place : {Place{3, 1, 1, 1},
                             {3, 1, 2, 2},
                             {3, 1, 3, 1},
                             {3, 1, 4, 2},
                             {3, 2, 2, 3},
                             {3, 0, 1, 0},
                             {3, -1, 1, 0},
                             {3, -1, 2, 1},
                             // An index beyond the end means the end.
                             {0, -1, 2, 0},
                             {0, -1, 4, 0}}) {
    openOn(place.count, place.selected);
    if (place.selected < 0) {
      table().setCurrentIndex({});
    }
    editor().setInsertState(true);
    chooseIn("insertBtn", titles[place.type - 1]);
    editor().buttonAction(start);
    down(KeyEsc, 1000);
    up(KeyEsc, 1100);
    control("insertStopBtn").click();
    const auto all = kinds();
    ASSERT_THAT(all, SizeIs(place.count + 2));
    EXPECT_EQ(all[static_cast<std::size_t>(place.expected)], "53/0")
        << place.count << place.selected << place.type;
    EXPECT_EQ(all[static_cast<std::size_t>(place.expected) + 1], "53/1");
    EXPECT_EQ(row(), place.expected + 1);
  }
}

TEST_F(MacroEvents, ARecordingStandsAtTheEndWhateverIsSelected) {
  openOn(3, 0);
  record();
  down(KeyEsc, 1000);
  EXPECT_EQ(row(), 3);
  EXPECT_EQ(editor().selKeyInfo(), commands()[3]);
  EXPECT_THAT(kinds(), ElementsAre("0/0", "1/0", "2/0", "53/0"));
}

TEST_F(MacroEvents, EveryRecordedCommandIsSelectedAndInSight) {
  openAndRecord();
  for (std::uint64_t i = 0; i < 20; ++i) {
    down(KeyA, 1000 + 20 * i);
    up(KeyA, 1010 + 20 * i);
    EXPECT_EQ(row(), static_cast<int>(2 * i + 1));
    EXPECT_TRUE(
        table().viewport()->rect().contains(table().visualRect(table().currentIndex()).center()));
  }
  // While recording, the selection enables nothing.
  EXPECT_FALSE(control("keyUpBtn").isEnabled());
  EXPECT_FALSE(control("delKeyBtn").isEnabled());
  EXPECT_EQ(part<UsageBar>("eventBar").words(), "40 / 40");
}

TEST_F(MacroEvents, WhatIsRefusedChangesNothing) {
  openOn(39, 0);
  record();
  down(KeyEsc, 1000);
  EXPECT_THAT(m_shown, IsEmpty());
  // A repeat of the last command is not added.
  editor().AddNewKey(53, MacroKeyInfo::KeyPress);
  EXPECT_THAT(m_shown, IsEmpty());
  up(KeyEsc, 1500);
  down(KeyB, 1600);
  EXPECT_THAT(m_shown, SizeIs(2));
  EXPECT_THAT(commands(), SizeIs(40));
  EXPECT_EQ(commands().back()->delay(), 0);
  // With room again, the delay counts from the last recorded command.
  commands().erase(commands().begin());
  up(KeyB, 1700);
  EXPECT_EQ(commands()[38]->delay(), 700);
  EXPECT_TRUE(editor().isRecord());
}

TEST_F(MacroEvents, TheMessageHasTheKeyboardWhileItIsUp) {
  openOn(40, 0);
  QWidget* grabber = &table();
  int shown = 0;
  LXPlatform platform = LXPlatform::current();
  platform.showInfoMessage = [&](const std::string&) {
    ++shown;
    grabber = QWidget::keyboardGrabber();
    // Nor does the macro get keys that are pressed meanwhile.
    down(KeyB, 2100);
  };
  LXPlatform::install(platform);
  record();
  EXPECT_EQ(QWidget::keyboardGrabber(), &table());
  down(KeyA, 2000);
  EXPECT_EQ(shown, 1);
  EXPECT_EQ(grabber, nullptr);
  EXPECT_EQ(QWidget::keyboardGrabber(), &table());
  stop();
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
}

TEST_F(MacroEvents, TheKeyThatAnswersTheMessageIsNoPartOfTheMacro) {
  openOn(40, 0);
  int shown = 0;
  LXPlatform platform = LXPlatform::current();
  platform.showInfoMessage = [&](const std::string&) {
    ++shown;
    down(KeySpace, 2100);
  };
  LXPlatform::install(platform);
  record();
  down(KeyA, 2000);
  EXPECT_EQ(shown, 1);
  up(KeySpace, 2200);
  process();
  EXPECT_EQ(shown, 1);
  // The next key is recorded again.
  up(KeyA, 2300);
  EXPECT_EQ(shown, 2);
}

TEST_F(MacroEvents, AKeyThatIsHeldWhenItStartsIsNoPartOfIt) {
  openAndRecord();
  for (int i = 0; i < 3; ++i) {
    QKeyEvent repeat = nativeEvent(QEvent::KeyPress, KeyEnter, 0, true);
    QCoreApplication::sendEvent(&table(), &repeat);
  }
  up(KeyEnter, 1000);
  up(KeyLeftShift, 1100);
  EXPECT_THAT(rows(), IsEmpty());
  down(KeyEnter, 2000);
  up(KeyEnter, 2100);
  EXPECT_THAT(rows(), ElementsAre("36/0/100", "36/1/0"));
}

TEST_F(MacroEvents, AnotherWindowHasTheKeyboardWhileItIsActive) {
  openAndRecord();
  down(KeyLeftAlt, 1000);
  QWidget other;
  other.show();
  other.activateWindow();
  process();
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
  EXPECT_TRUE(editor().isRecord());
  host().activateWindow();
  process();
  EXPECT_EQ(QWidget::keyboardGrabber(), &table());
  // The key was released in the other window, without an event here.
  EXPECT_THAT(kinds(), ElementsAre("58/0", "58/1"));
  up(KeyLeftAlt, 2000);
  down(KeyLeftAlt, 3000);
  up(KeyLeftAlt, 3100);
  EXPECT_THAT(kinds(), ElementsAre("58/0", "58/1", "58/0", "58/1"));
}

TEST_F(MacroEvents, AMessageMayTakeTheEditorWithIt) {
  LXPlatform platform = LXPlatform::current();
  platform.showInfoMessage = [&](const std::string&) { destroyHost(); };
  LXPlatform::install(platform);
  openOn(40, 0);
  record();
  editor().AddNewKey(5, MacroKeyInfo::KeyPress);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
}

TEST_F(MacroEvents, AMessageThatOutlivesTheRecordingLeavesTheKeyboardFree) {
  LXPlatform platform = LXPlatform::current();
  platform.showInfoMessage = [&](const std::string&) { host().close(); };
  LXPlatform::install(platform);
  openOn(40, 0);
  record();
  down(KeyA, 2000);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
}

TEST_F(MacroEvents, KeysOfTheWindowDoNothingElse) {
  openAndRecord();
  for (const Qt::Key key : {Qt::Key_Tab, Qt::Key_Backtab, Qt::Key_Escape, Qt::Key_Return,
                            Qt::Key_Space, Qt::Key_Down}) {
    QTest::keyClick(host().windowHandle(), key);
    process();
    EXPECT_TRUE(isOpen()) << key;
    EXPECT_TRUE(editor().isRecord()) << key;
    EXPECT_TRUE(table().hasFocus()) << key;
  }
  for (const Key key : {KeyEnter, KeySpace, KeyLeftAlt, KeyF4}) {
    down(key, 1000);
  }
  EXPECT_THAT(kinds(), ElementsAre("36/0", "49/0", "58/0", "118/0"));
  EXPECT_TRUE(isOpen());
}

TEST_F(MacroEvents, AKeyThatIsHeldWhenItStopsHasNoRelease) {
  openAndRecord();
  down(KeyA, 1000);
  down(KeyLeftShift, 1010);
  stop();
  up(KeyA, 1100);
  up(KeyLeftShift, 1110);
  EXPECT_THAT(kinds(), ElementsAre("0/0", "56/0"));
}

TEST_F(MacroEvents, AWindowThatClosesFreesTheKeyboard) {
  openAndRecord();
  EXPECT_EQ(QWidget::keyboardGrabber(), &table());
  host().close();
  EXPECT_EQ(QWidget::keyboardGrabber(), nullptr);
  EXPECT_FALSE(editor().isRecord());
}

TEST_F(MacroEvents, KeysOfOtherWindowsAreTheirs) {
  openAndRecord();
  QLineEdit other;
  other.show();
  QKeyEvent event = nativeEvent(QEvent::KeyPress, KeyA);
  QCoreApplication::sendEvent(&other, &event);
  EXPECT_THAT(rows(), IsEmpty());
}
