// Edits that were not applied, in the window: they come back, and their slot's tab says so.

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Edit/Drafts.h"
#include "Action/Record/EditState.h"
#include "Tests/Support/ViewTest.h"
#include "View/Macros/MacroView.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

constexpr const char* back = "Your edits are back";

class WindowDrafts : public ViewTest {
 protected:
  void edit(std::uint32_t lift = 7) {
    editState->edit().liftHeight = lift;
    view().refreshApplyBtn();
  }
  bool isMarked(int number) {
    return !view().findChild<QWidget*>(QStringLiteral("draftMark%1").arg(number))->isHidden();
  }
  LXButton& inChild(const char* name) {
    return *child()->findChild<LXButton*>(QString::fromLatin1(name));
  }
  // As after a kill: nothing is asked, and nothing is said good-bye to.
  void killAndStart() {
    view().keepDrafts();
    startAgain();
  }
};

}  // namespace

TEST_F(WindowDrafts, AnEditSurvivesTheSlotButtonOfTheMouse) {
  start();
  edit();
  EXPECT_TRUE(isMarked(1));
  mouse().pressSlotButton(4);
  report(1, 4);
  EXPECT_NE(editState->selProfile().liftHeight, 7U);
  EXPECT_TRUE(isMarked(1));
  EXPECT_FALSE(isMarked(5));
  EXPECT_EQ(button("profile1Btn").accessibleDescription(),
            QStringLiteral("Has edits that are not applied"));
  mouse().pressSlotButton(0);
  report(1, 0);
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_EQ(status(), back);
  EXPECT_TRUE(button("applyBtn").isEnabled());
  click("applyBtn");
  EXPECT_FALSE(isMarked(1));
  EXPECT_EQ(mouse().imageReport(0)[5] & 0x1FU, 7U);
}

TEST_F(WindowDrafts, AnEditSurvivesAKill) {
  start();
  chooseSlot(2);
  edit();
  killAndStart();
  EXPECT_EQ(library().currFWProfileIndex(), 1);
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_TRUE(button("applyBtn").isEnabled());
  EXPECT_EQ(status(), back);
  EXPECT_TRUE(isMarked(2));
}

TEST_F(WindowDrafts, ReadingTheSlotAgainGivesTheEditUp) {
  start();
  edit();
  killAndStart();
  takeOffer();
  EXPECT_NE(editState->selProfile().liftHeight, 7U);
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_FALSE(isMarked(1));
  EXPECT_EQ(status(), "");
  killAndStart();
  EXPECT_NE(editState->selProfile().liftHeight, 7U);
}

TEST_F(WindowDrafts, CancelGivesTheEditUp) {
  start();
  edit();
  view().keepDrafts();
  click("cancelBtn");
  EXPECT_TRUE(termination::isTerminating());
  startAgain();
  EXPECT_NE(editState->selProfile().liftHeight, 7U);
  EXPECT_EQ(status(), "");
}

TEST_F(WindowDrafts, QuitOfTheMenuKeepsTheEditForTheNextStart) {
  start();
  edit();
  view().keepDrafts();
  menuItem("quitMenu").trigger();
  EXPECT_TRUE(termination::isTerminating());
  startAgain();
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_EQ(status(), "Your edits are back");
}

TEST_F(WindowDrafts, UnpluggingUnderTheQuestionKeepsTheEdit) {
  start();
  edit();
  m_duringQuestion = [this] {
    mouse().detach();
    m_duringQuestion = [] {};
  };
  chooseSlot(2);
  EXPECT_EQ(library().currFWProfileIndex(), 0) << "the slot whose edit was not taken stays";
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_THAT(status(), HasSubstr("Not applied"));
}

TEST_F(WindowDrafts, AnInterruptedApplyIsOfferedToBeFinished) {
  start();
  edit();
  mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = 2});
  click("applyBtn");
  mouse().setScenario({});
  mouse().attach();
  startAgain();
  EXPECT_EQ(status(), "The last Apply to this slot was interrupted. Apply finishes it.");
  EXPECT_TRUE(isMarked(1));
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 1");
  EXPECT_EQ(mouse().imageReport(0)[5] & 0x1FU, 7U);
  startAgain();
  EXPECT_EQ(status(), "");
  EXPECT_FALSE(isMarked(1));
}

TEST_F(WindowDrafts, ARefusedSlotChangeIsCaughtUpWith) {
  start();
  click("preformanceBtn");
  mouse().pressSlotButton(4);
  report(1, 4);
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  EXPECT_EQ(status(), "The mouse is on slot 5 now. Nothing is sent until you close this window.");
  clearTrace();
  inChild("applyBtn").click();
  EXPECT_THAT(trace(), IsEmpty()) << "a trial would reach the other slot";
  EXPECT_THAT(status(), HasSubstr("slot 5"));
  inChild("cancelBtn").click();
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 4);
  EXPECT_TRUE(button("profile5Btn").isChecked());
  EXPECT_FALSE(NerinAction::hasDraft(0));
}

TEST_F(WindowDrafts, WhatAChildKeptStaysWithItsSlot) {
  start();
  click("lightOptionBtn");
  editState->currSetProfile().lightColorArr[0].cG ^= 0x10U;
  const auto green = editState->currSetProfile().lightColorArr[0].cG;
  mouse().pressSlotButton(4);
  report(1, 4);
  inChild("okBtn").click();
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 4);
  EXPECT_TRUE(isMarked(1));
  mouse().pressSlotButton(0);
  report(1, 0);
  EXPECT_EQ(editState->selProfile().lightColorArr[0].cG, green);
}

TEST_F(WindowDrafts, ATrialThatCouldNotBeUndoneIsKeptToBeUndone) {
  start();
  const auto before = editState->selProfile();
  click("preformanceBtn");
  inChild("applyBtn").click();
  report(1, 4);
  inChild("cancelBtn").click();
  process();
  EXPECT_TRUE(NerinAction::hasDraft(0));
  report(1, 0);
  EXPECT_TRUE(isSameRecord(editState->selProfile(), before));
  EXPECT_TRUE(button("applyBtn").isEnabled());
}

TEST_F(WindowDrafts, TheMouseThatReturnsToTheSlotLetsTheChildGoOn) {
  start();
  click("preformanceBtn");
  report(1, 4);
  report(1, 0);
  EXPECT_EQ(status(), "");
  clearTrace();
  inChild("applyBtn").click();
  EXPECT_FALSE(trace().empty());
  child()->close();
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}

TEST_F(WindowDrafts, OfTwelveReportsUnderAQuestionOnlyTheLastOneIsWorkedOff) {
  start();
  {
    const NestedLoop dialog;
    for (int slot = 1; slot <= 9; ++slot) {
      report(1, slot);
    }
    report(1, 2);
    report(1, 5);
    report(1, 7);
    clearTrace();
  }
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 7);
  const auto lines = sent();
  EXPECT_EQ(
      std::count_if(lines.begin(), lines.end(),
                    [](const std::string& line) { return line.starts_with("SET 0300 0 c40c"); }),
      2)
      << "one name and one image";
}

TEST_F(WindowDrafts, AnOpenLightWindowSurvivesAKill) {
  start();
  click("lightOptionBtn");
  editState->currSetProfile().lightColorArr[0].cG ^= 0x10U;
  const auto green = editState->currSetProfile().lightColorArr[0].cG;
  killAndStart();
  EXPECT_EQ(editState->selProfile().lightColorArr[0].cG, green);
  EXPECT_EQ(status(), back);
}

TEST_F(WindowDrafts, AnOpenChildThatIsCancelledLeavesNoDraft) {
  start();
  click("lightOptionBtn");
  editState->currSetProfile().lightColorArr[0].cG ^= 0x10U;
  view().keepDrafts();
  EXPECT_TRUE(NerinAction::hasDraft(0));
  inChild("cancelBtn").click();
  process();
  EXPECT_FALSE(NerinAction::hasDraft(0));
  EXPECT_FALSE(isMarked(1));
}

TEST_F(WindowDrafts, AMacroInTheEditorSurvivesAKillAndIsSavedLater) {
  start();
  click("MacroSettingBtn");
  inChild("newMacroBtn").click();
  NerinAction::macroStore->macroListArrs.back()->keyInfoArr().push_back(
      std::make_shared<MacroKeyInfo>(49, 0, 5));
  const std::string file = textOfFile(supportFolder() / "MenuInfo.xml");
  killAndStart();
  EXPECT_EQ(textOfFile(supportFolder() / "MenuInfo.xml"), file) << "not saved, only kept";
  EXPECT_EQ(status(), back);
  const auto macro = NerinAction::getMacroByName("NewMacro_1");
  ASSERT_NE(macro, nullptr);
  EXPECT_EQ(eventsOf(*macro), (Events{{49, 0, 5}}));
  click("MacroSettingBtn");
  inChild("okBtn").click();
  process();
  EXPECT_THAT(textOfFile(supportFolder() / "MenuInfo.xml"), HasSubstr("NewMacro_1"));
  startAgain();
  EXPECT_EQ(status(), "");
  EXPECT_NE(NerinAction::getMacroByName("NewMacro_1"), nullptr);
}

TEST_F(WindowDrafts, ACancelledMacroEditDoesNotComeBack) {
  start();
  click("MacroSettingBtn");
  inChild("newMacroBtn").click();
  view().keepDrafts();
  inChild("cancelBtn").click();
  process();
  startAgain();
  EXPECT_EQ(status(), "");
  EXPECT_EQ(NerinAction::getMacroByName("NewMacro_1"), nullptr);
}

TEST_F(WindowDrafts, AChangedMacroOfTheEditedProfileIsAnEdit) {
  addMacro(1, "burst", {{49, 0, 0}});
  start();
  addMacro(1, "burst", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  view().refreshApplyBtn();
  click("applyBtn");
  EXPECT_FALSE(button("applyBtn").isEnabled());
  click("MacroSettingBtn");
  NerinAction::getMacroByName("burst")->keyInfoArr().front()->setKeyCode(36);
  inChild("okBtn").click();
  process();
  EXPECT_TRUE(button("applyBtn").isEnabled());
  chooseSlot(1);
  report(1, 3);
  report(1, 0);
  EXPECT_EQ(eventsOf(*NerinAction::getMacroByName("burst")), (Events{{36, 0, 0}}));
  click("applyBtn");
  EXPECT_FALSE(button("applyBtn").isEnabled());
}

TEST_F(WindowDrafts, ARemovalWithAnOpenChildKeepsItsEdit) {
  start();
  click("lightOptionBtn");
  editState->currSetProfile().lightColorArr[0].cG ^= 0x10U;
  const auto green = editState->currSetProfile().lightColorArr[0].cG;
  report(100);
  EXPECT_TRUE(termination::isTerminating());
  startAgain();
  EXPECT_EQ(editState->selProfile().lightColorArr[0].cG, green);
}
