// The panel that plays what the mouse will send, and the warnings about a macro.

#include <QAccessible>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/MacroTest.h"
#include "View/Windows/LocalNotifications.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MacroTestTest : public MacroViewTest {
 protected:
  using Info = MacroKeyInfo;

  // An empty macro to add to.
  void openEmpty() { openOn(0, 0); }
  void add(std::int32_t code, std::int32_t flag, std::int32_t delay = 0) {
    commands().push_back(std::make_shared<MacroKeyInfo>(code, flag, delay));
    addCommands(0);
  }
  // A, down for 30 ms.
  void openOnA() {
    openEmpty();
    add(0, Info::KeyPress, 30);
    add(0, Info::KeyRelease);
  }
  MacroTest& panel() { return part<MacroTest>("macroTest"); }
  QPushButton& playButton() { return partOf<QPushButton>(panel(), "playBtn"); }
  QListWidget& warnings() { return partOf<QListWidget>(panel(), "warningsList"); }
  QPlainTextEdit& box() { return partOf<QPlainTextEdit>(panel(), "playedTxt"); }
  std::vector<std::string> played() {
    std::vector<std::string> lines;
    for (const QString& line : box().toPlainText().split('\n', Qt::SkipEmptyParts)) {
      lines.push_back(line.toStdString());
    }
    return lines;
  }
  bool waitForEnd() {
    return waitFor([this] { return playButton().text() == QStringLiteral("Play"); });
  }
  std::vector<std::string> warned() {
    std::vector<std::string> all;
    for (int row = 0; row < warnings().count(); ++row) {
      all.push_back(warnings().item(row)->text().toStdString());
    }
    return all;
  }
  std::string note() { return part<QLabel>("warningTxt").text().toStdString(); }
};

}  // namespace

TEST_F(MacroTestTest, PlaysAtOnceWithTheTimesOfTheMouse) {
  openOnA();
  press("testBtn");
  ASSERT_TRUE(panel().isVisible());
  EXPECT_TRUE(playButton().hasFocus());
  ASSERT_TRUE(waitForEnd());
  EXPECT_THAT(played(), ElementsAre("0 ms\tPress A", "30 ms\tRelease A", "30 ms\tEnd"));
  EXPECT_FALSE(warnings().isVisible());
  EXPECT_EQ(note(), "");
}

TEST_F(MacroTestTest, AnEventAppearsWhenItsTimeHasCome) {
  openEmpty();
  add(0, Info::KeyPress, 60000);
  add(0, Info::KeyRelease);
  press("testBtn");
  QTest::qWait(20);
  EXPECT_THAT(played(), ElementsAre("0 ms\tPress A"));
  EXPECT_EQ(playButton().text(), "Stop");
  // By key: it stops, and plays from the beginning.
  hitKey(playButton(), Qt::Key_Return);
  EXPECT_EQ(playButton().text(), "Play");
  EXPECT_THAT(played(), ElementsAre("0 ms\tPress A"));
  hitKey(playButton(), Qt::Key_Space);
  EXPECT_EQ(playButton().text(), "Stop");
  EXPECT_THAT(played(), ElementsAre("0 ms\tPress A"));
  QTest::mouseClick(&playButton(), Qt::LeftButton);
  EXPECT_EQ(playButton().text(), "Play");
}

TEST_F(MacroTestTest, SaysWhatTheMouseSendsAndNotWhatTheCommandsSay) {
  openEmpty();
  add(69, Info::KeyPress);  // Num +, for which the mouse has the code of =
  add(69, Info::KeyRelease);
  add(24, Info::KeyPress);  // no code
  add(54, Info::KeyPress);  // Right Command has none either
  add(121, Info::MousePress);
  add(121, Info::MouseRelease);
  add(123, Info::MousePress);
  add(61, Info::KeyPress, 65537);
  press("testBtn");
  ASSERT_TRUE(waitForEnd());
  EXPECT_THAT(played(), ElementsAre("0 ms\tPress =", "0 ms\tRelease =", "0 ms\tPress Right button",
                                    "0 ms\tRelease Right button", "0 ms\tPress Button 4",
                                    "0 ms\tPress Right Option",
                                    "1 ms\tEnd. Still down: Button 4, Right Option."));
}

TEST_F(MacroTestTest, AMacroOfWhichNothingIsSentSaysSo) {
  openEmpty();
  add(24, Info::KeyPress, 50000);
  press("testBtn");
  EXPECT_THAT(played(), ElementsAre("The mouse sends nothing"));
  EXPECT_EQ(playButton().text(), "Play");
}

TEST_F(MacroTestTest, EveryWarningHasItsWords) {
  openEmpty();
  add(24, Info::KeyPress);
  add(0, Info::MousePress);
  add(120, Info::MousePress, 70000);
  for (int i = 0; i < 38; ++i) {
    add(0, Info::KeyRelease);
  }
  press("testBtn");
  EXPECT_THAT(warned(), ElementsAre("The macro has 41 events. A macro is meant to have 40 at most.",
                                    "Line 1: the mouse cannot send =",
                                    "Line 2: which mouse button it was is lost. Choose it again.",
                                    "Line 3: mouse buttons are lost when the slot is read again",
                                    "Line 3: the mouse waits 4464 ms instead of 70000 ms",
                                    "Line 3: L Button is not let go"));
  panel().hide();
  commands().resize(1);
  for (int i = 0; i < 700; ++i) {
    commands().push_back(std::make_shared<MacroKeyInfo>(0, Info::KeyRelease, 1));
  }
  press("testBtn");
  EXPECT_EQ(warned().back(), "The mouse has no room for line 501 and what follows");
}

TEST_F(MacroTestTest, WarningsStandInTheEditorBeforeAnythingIsTested) {
  openOnA();
  EXPECT_EQ(note(), "");
  add(24, Info::KeyPress);
  EXPECT_EQ(note(), "Line 3: the mouse cannot send =");
  add(0, Info::KeyPress);
  EXPECT_EQ(note(), "Line 3: the mouse cannot send = (1 more)");
  auto* accessible = QAccessible::queryAccessibleInterface(&part<QLabel>("warningTxt"));
  EXPECT_EQ(accessible->text(QAccessible::Name).toStdString(), note());
  record();
  EXPECT_EQ(note(), "");
  stop();
  EXPECT_NE(note(), "");
  editor().newMacro();
  EXPECT_EQ(note(), "");
}

TEST_F(MacroTestTest, AChosenWarningSelectsItsCommand) {
  openOnA();
  add(24, Info::KeyPress);
  add(0, Info::KeyPress);
  select(0);
  press("testBtn");
  ASSERT_EQ(warnings().count(), 2);
  QTest::mouseClick(warnings().viewport(), Qt::LeftButton, {},
                    warnings().visualItemRect(warnings().item(0)).center());
  EXPECT_FALSE(panel().isVisible());
  EXPECT_EQ(row(), 2);
  EXPECT_TRUE(table().hasFocus());
  press("testBtn");
  hitKey(playButton(), Qt::Key_Backtab);
  hitKey(box(), Qt::Key_Backtab);
  EXPECT_TRUE(warnings().hasFocus());
  hitKey(warnings(), Qt::Key_End);
  hitKey(warnings(), Qt::Key_Return);
  EXPECT_FALSE(panel().isVisible());
  EXPECT_EQ(row(), 3);
}

TEST_F(MacroTestTest, TheBoxTakesNoKeysAndGivesNoneAway) {
  openOnA();
  press("testBtn");
  ASSERT_TRUE(waitForEnd());
  const auto before = played();
  hitKey(box(), Qt::Key_X);
  EXPECT_EQ(played(), before);
  EXPECT_EQ(commands().size(), 2U);
}

TEST_F(MacroTestTest, EscapeAndARemovalCloseItAndEndThePlaying) {
  openEmpty();
  add(0, Info::KeyPress, 60000);
  press("testBtn");
  hitKey(playButton(), Qt::Key_Escape);
  EXPECT_FALSE(panel().isVisible());
  EXPECT_EQ(playButton().text(), "Play");
  EXPECT_TRUE(isOpen());
  press("testBtn");
  LocalNotifications::shared().post("Notify_OutPlus");
  EXPECT_FALSE(isOpen());
  EXPECT_FALSE(panel().isVisible());
}

TEST_F(MacroTestTest, NeedsACommandAndNoRecording) {
  open();
  EXPECT_FALSE(control("testBtn").isEnabled());
  openEmpty();
  EXPECT_FALSE(control("testBtn").isEnabled());
  addCommands(1);
  EXPECT_TRUE(control("testBtn").isEnabled());
  record();
  EXPECT_FALSE(control("testBtn").isEnabled());
  stop();
  EXPECT_TRUE(control("testBtn").isEnabled());
}

TEST_F(MacroTestTest, ItsPartsHaveNames) {
  openOnA();
  add(24, Info::KeyPress);
  press("testBtn");
  const auto nameOf = [](QWidget& widget) {
    return QAccessible::queryAccessibleInterface(&widget)->text(QAccessible::Name).toStdString();
  };
  EXPECT_EQ(nameOf(panel()), "What the mouse will send");
  EXPECT_EQ(nameOf(box()), "What the mouse will send");
  EXPECT_EQ(nameOf(warnings()), "Warnings");
  ASSERT_TRUE(waitForEnd());
  EXPECT_EQ(nameOf(playButton()), "Play");
}
