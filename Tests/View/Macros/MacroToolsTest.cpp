// The tools that work on several commands of a macro at once.

#include <QPushButton>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Edit/MacroDraft.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"
#include "View/Macros/MacroTools.h"
#include "View/Macros/UsageBar.h"
#include "View/Windows/LocalNotifications.h"

using testing::ElementsAre;
using testing::SizeIs;

namespace {

class MacroToolsTest : public MacroViewTest {
 protected:
  // Commands with pauses of 0, 5, 10, 15, ... ms.
  void openTools(int count) {
    openOn(count, 0);
    for (int i = 0; i < count; ++i) {
      commands()[static_cast<std::size_t>(i)]->setDelay(5 * i);
    }
    addCommands(0);
    press("toolsBtn");
  }
  MacroTools& tools() { return part<MacroTools>("macroTools"); }
  LXNumberTextField& field(const char* name) { return partOf<LXNumberTextField>(tools(), name); }
  QPushButton& tool(const char* name) { return partOf<QPushButton>(tools(), name); }
  void click(const char* name) { QTest::mouseClick(&tool(name), Qt::LeftButton); }
  void choose(const char* first, const char* last) {
    enter("firstRowTxt", first);
    enter("lastRowTxt", last);
  }
  void enter(const char* name, const char* text) {
    type(field(name), text);
    hitKey(field(name), Qt::Key_Return);
  }
  std::vector<int> pauses() {
    std::vector<int> all;
    all.reserve(commands().size());
    for (const auto& command : commands()) {
      all.push_back(command->delay());
    }
    return all;
  }
};

}  // namespace

TEST_F(MacroToolsTest, OpenForTheWholeMacroAndCloseByEscape) {
  openOn(0, 0);
  EXPECT_FALSE(control("toolsBtn").isEnabled());
  openTools(4);
  ASSERT_TRUE(tools().isVisible());
  EXPECT_EQ(textOf(field("firstRowTxt")), "1");
  EXPECT_EQ(textOf(field("lastRowTxt")), "4");
  EXPECT_TRUE(field("firstRowTxt").hasFocus());
  hitKey(field("firstRowTxt"), Qt::Key_Escape);
  EXPECT_FALSE(tools().isVisible());
  EXPECT_TRUE(isOpen());
  record();
  EXPECT_FALSE(control("toolsBtn").isEnabled());
  stop();
  EXPECT_TRUE(control("toolsBtn").isEnabled());
}

TEST_F(MacroToolsTest, AllPausesAreSetByPointerAndByKey) {
  openTools(4);
  type(field("pausesTxt"), "40");
  click("pausesBtn");
  EXPECT_THAT(pauses(), ElementsAre(40, 40, 40, 40));
  choose("3", "2");
  enter("pausesTxt", "7");
  EXPECT_THAT(pauses(), ElementsAre(40, 7, 7, 40));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(part<UsageBar>("memoryBar").words(), "16 / 2000");
  enter("pausesTxt", "99999");
  EXPECT_THAT(pauses(), ElementsAre(40, 65535, 65535, 40));
}

TEST_F(MacroToolsTest, TheSpeedScalesThePauses) {
  openTools(4);
  enter("speedTxt", "200");
  EXPECT_THAT(pauses(), ElementsAre(0, 3, 5, 8));
  enter("speedTxt", "50");
  EXPECT_THAT(pauses(), ElementsAre(0, 6, 10, 16));
  enter("speedTxt", "0");  // the slowest
  EXPECT_THAT(pauses(), ElementsAre(0, 60, 100, 160));
  commands()[0]->setDelay(INT32_MAX);
  commands()[1]->setDelay(-5);
  enter("speedTxt", "10");
  EXPECT_EQ(commands()[0]->delay(), INT32_MAX);
  EXPECT_EQ(commands()[1]->delay(), 0);
}

TEST_F(MacroToolsTest, ShortPausesAreRemoved) {
  openTools(4);
  click("shortestBtn");
  EXPECT_THAT(pauses(), ElementsAre(0, 0, 10, 15));
  choose("4", "4");
  enter("shortestTxt", "100");
  EXPECT_THAT(pauses(), ElementsAre(0, 0, 10, 0));
}

TEST_F(MacroToolsTest, LinesAreDuplicatedBehindThemselves) {
  openTools(4);
  choose("2", "3");
  click("duplicateBtn");
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/5", "2/0/10", "1/0/5", "2/0/10", "3/0/15"));
  EXPECT_EQ(row(), 3);
  EXPECT_NE(commands()[1], commands()[3]);
  EXPECT_EQ(part<UsageBar>("eventBar").words(), "6 / 40");
  // Again, behind the copies.
  EXPECT_EQ(textOf(field("firstRowTxt")), "4");
  EXPECT_EQ(textOf(field("lastRowTxt")), "5");
  hitKey(tool("duplicateBtn"), Qt::Key_Space);
  EXPECT_THAT(commands(), SizeIs(8));
  EXPECT_EQ(commands()[6]->keyCode(), 2);
}

TEST_F(MacroToolsTest, OpenForTheRowsThatAreChosenTogether) {
  openTools(5);
  hitKey(field("firstRowTxt"), Qt::Key_Escape);
  select(1);
  table().setFocus();
  QTest::keyClick(&table(), Qt::Key_Down, Qt::ShiftModifier);
  QTest::keyClick(&table(), Qt::Key_Down, Qt::ShiftModifier);
  press("toolsBtn");
  EXPECT_EQ(textOf(field("firstRowTxt")), "2");
  EXPECT_EQ(textOf(field("lastRowTxt")), "4");
  enter("pausesTxt", "77");
  EXPECT_THAT(pauses(), ElementsAre(0, 77, 77, 77, 20));
}

TEST_F(MacroToolsTest, AMacroIsNotDuplicatedBeyondItsLimit) {
  openTools(39);
  EXPECT_FALSE(tool("duplicateBtn").isEnabled());
  EXPECT_FALSE(macrotools::duplicate(commands(), {0, 38}));
  choose("1", "1");
  EXPECT_TRUE(tool("duplicateBtn").isEnabled());
  click("duplicateBtn");
  EXPECT_THAT(commands(), SizeIs(40));
  EXPECT_FALSE(tool("duplicateBtn").isEnabled());
}

TEST_F(MacroToolsTest, WhatTheyDoIsUndoneInOneStepAndKeptInTheDraft) {
  openTools(4);
  click("pausesBtn");
  NerinAction::keepMacroDraft();
  EXPECT_THAT(textOfFile(supportFolder() / "Drafts" / "macros.xml"), testing::HasSubstr("\"50\""));
  tools().hide();
  QTest::keyClick(&table(), Qt::Key_Z, Qt::ControlModifier);
  EXPECT_THAT(pauses(), ElementsAre(0, 5, 10, 15));
}

TEST_F(MacroToolsTest, TheMouseThatGoesClosesThem) {
  openTools(2);
  LocalNotifications::shared().post("Notify_OutPlus");
  EXPECT_FALSE(isOpen());
  EXPECT_FALSE(tools().isVisible());
}
