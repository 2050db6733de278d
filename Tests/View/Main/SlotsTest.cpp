#include <gmock/gmock.h>

#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class MainViewSlots : public ViewTest {};
class MainViewSlotsEnd : public ViewTest, public testing::WithParamInterface<const char*> {};

}  // namespace

TEST_F(MainViewSlots, StartLoadsTheMousesSlotAndSelectsNone) {
  mouse().pressSlotButton(3);
  start();
  EXPECT_EQ(library().currFWProfileIndex(), 3);
  EXPECT_TRUE(button("profile4Btn").isChecked());
  EXPECT_FALSE(hasSent("c407"));
  EXPECT_THAT(messages(), IsEmpty());
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_FALSE(button("okBtn").isEnabled());
}

TEST_F(MainViewSlots, StartShowsWhatTheSlotHolds) {
  start();
  EXPECT_EQ(shownName(), mouse().slotName(0));
  EXPECT_EQ(button("leftClickBtn").title(), QStringLiteral("Left Click"));
  EXPECT_EQ(title(), "");
}

TEST_F(MainViewSlots, ChoosingASlotSwitchesTheMouseAndTellsTheService) {
  start();
  chooseSlot(3);
  EXPECT_EQ(mouse().activeSlot(), 2);
  EXPECT_TRUE(hasSent("c40702"));
  EXPECT_EQ(library().currFWProfileIndex(), 2);
  EXPECT_THAT(messages(), ElementsAre("111"));
}

TEST_F(MainViewSlots, ChoosingTheSameSlotDoesNothing) {
  start();
  clearTrace();
  chooseSlot(1);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(button("profile1Btn").isChecked());
}

TEST_F(MainViewSlots, PendingEditsAndNoKeepTheSlotAndItsEdits) {
  start();
  click("profileNewBtn");
  m_answer = false;
  chooseSlot(2);
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNeedSave", true)));
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_FALSE(button("profile2Btn").isChecked());
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_EQ(library().getProfileCount(), 0U);
}

TEST_F(MainViewSlots, PendingEditsAndYesApplyTheOldSlotFirst) {
  start();
  click("profileNewBtn");
  chooseSlot(2);
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_EQ(library().currFWProfileIndex(), 1);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_THAT(messages(), ElementsAre("101", "111"));
}

TEST_F(MainViewSlots, ApplyWritesMouseLibraryAndService) {
  start();
  click("battleModeBtn");
  click("applyBtn");
  EXPECT_EQ(library().getProfileCount(), 1U);
  EXPECT_EQ(title(), mouse().slotName(0));
  EXPECT_THAT(messages(), Contains("101"));
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_FALSE(mouse().hasUnrefreshedWrites());
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(MainViewSlots, ApplyNeverGivesTwoProfilesOneName) {
  start();
  click("profileNewBtn");
  click("applyBtn");
  chooseSlot(2);
  click("profileNewBtn");
  library().setCurrFWProfileName("NewPF_1");
  click("applyBtn");
  EXPECT_EQ(library().getProfileCount(), 2U);
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_EQ(mouse().slotName(1), shownName());
  EXPECT_NE(mouse().slotName(1), "NewPF_1");
}

TEST_F(MainViewSlots, AnUnlinkedSlotHasNoSelectedProfile) {
  start();
  click("profileNewBtn");
  click("applyBtn");
  ASSERT_TRUE(library().currProfile());
  chooseSlot(2);
  EXPECT_EQ(title(), "");
  EXPECT_FALSE(library().currProfile());
  click("profileDelBtn");
  EXPECT_EQ(library().getProfileCount(), 1U);
}

TEST_F(MainViewSlots, OkAppliesAndQuits) {
  start();
  click("profileNewBtn");
  click("okBtn");
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_THAT(messages(), Contains("101"));
  EXPECT_TRUE(termination::isTerminating());
}

TEST_P(MainViewSlotsEnd, QuitsWithoutAQuestion) {
  start();
  editState->raiseNeedSave();
  click(GetParam());
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(m_asked, IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Buttons, MainViewSlotsEnd, testing::Values("cancelBtn", "closeBtn"));

TEST_F(MainViewSlots, AfterTheEndNothingIsSent) {
  start();
  termination::terminate();
  clearTrace();
  chooseSlot(5);
  click("battleModeBtn");
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(MainViewSlots, OnlyTheFirstFiveSlotsCanBeReset) {
  start();
  for (int slot = 10; slot >= 1; --slot) {
    chooseSlot(slot);
    m_asked.clear();
    clearTrace();
    click("reDefBtn");
    EXPECT_EQ(m_asked.size(), slot <= 5 ? 1U : 0U) << slot;
    EXPECT_EQ(trace().empty(), slot > 5) << slot;
  }
}

TEST_F(MainViewSlots, ResetWithoutAFactoryProfileDoesNothing) {
  const auto folder = home() / "resources";
  std::filesystem::create_directories(folder);
  for (const auto& entry : std::filesystem::directory_iterator(NERIN_RESOURCES)) {
    if (entry.path().filename() != "Profile#1.pro") {
      std::filesystem::create_symlink(entry.path(), folder / entry.path().filename());
    }
  }
  LXPlatform platform = LXPlatform::current();
  platform.resourceFolder = folder;
  LXPlatform::install(platform);
  start();
  clearTrace();
  click("reDefBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningReset", true)));
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(library().getProfileCount(), 0U);
}

TEST_F(MainViewSlots, ResetAsksAndBringsTheFactoryProfileBack) {
  start();
  click("battleModeBtn");
  click("profileNewBtn");
  click("applyBtn");
  m_asked.clear();
  click("reDefBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningReset", true)));
  EXPECT_EQ(mouse().slotName(0), "Profile#1");
  EXPECT_EQ(editState->selProfile().modeType, library().currDefProfile()->profileData().modeType);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_EQ(title(), "Profile#1");
}

TEST_F(MainViewSlots, ResetDeclinedDoesNothing) {
  start();
  m_answer = false;
  clearTrace();
  click("reDefBtn");
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(MainViewSlots, BattleModeIsAnnouncedAndGoesToTheMouseAtOnce) {
  start();
  clearTrace();
  click("battleModeBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningBattle", false)));
  EXPECT_EQ(editState->selProfile().modeType, 1U);
  EXPECT_EQ(editState->currSetProfile().modeType, 1U);
  EXPECT_FALSE(sent().empty());
  EXPECT_TRUE(button("applyBtn").isEnabled());
  clearTrace();
  click("battleModeBtn");
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(MainViewSlots, NormalModeGoesToTheMouseWithoutAWarning) {
  start();
  click("battleModeBtn");
  click("applyBtn");
  m_asked.clear();
  clearTrace();
  click("normalModeBtn");
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_EQ(editState->selProfile().modeType, 0U);
  EXPECT_EQ(sent().size(), 5U);
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(MainViewSlots, LinkSwitchIsAnEditThatApplyStores) {
  start();
  m_chosen = "/usr/bin/true";
  click("linkProBtn");
  click("linkProChk");
  EXPECT_TRUE(editState->isNeedSave());
  click("applyBtn");
  bool isActive = false;
  EXPECT_EQ(library().getLinkAppPath(0, isActive), "/usr/bin/true");
  EXPECT_TRUE(isActive);
  chooseSlot(2);
  EXPECT_FALSE(button("linkProChk").Checked());
  chooseSlot(1);
  EXPECT_TRUE(button("linkProChk").Checked());
}

TEST_F(MainViewSlots, TheLastPrimaryClickCannotBeReassigned) {
  start();
  click("leftClickBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNeedLeft", true)));
  EXPECT_EQ(child(), nullptr);
  editState->edit().btnInfo[5] = editState->selProfile().btnInfo[0];
  click("leftClickBtn");
  EXPECT_NE(child(), nullptr);
  EXPECT_TRUE(view().checkOnlyLeft(5));
  EXPECT_FALSE(view().checkOnlyLeft(-1));
  EXPECT_FALSE(view().checkOnlyLeft(16));
}
