// Undo and redo of what is edited in a slot.

#include <gmock/gmock.h>

#include "Action/Edit/Differences.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/EditHistory.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Tests/Support/ActionTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class EditUndo : public ActionTest {
 protected:
  EditUndo() {
    beginProgram();
    // A slot with a library profile, as it is read.
    static_cast<void>(NerinAction::loadSlot(1));
    NerinAction::bindSlot(library().addProfileByName("Work", nullptr)->profileId());
    EXPECT_TRUE(NerinAction::applySlot().isDone());
    EXPECT_TRUE(NerinAction::loadSlot(1).value);
    m_lift = editState->selProfile().liftHeight;
  }

  static void lift(std::uint32_t height) {
    editState->edit().liftHeight = height;
    NerinAction::recordEdit();
  }
  static std::uint32_t lift() { return editState->selProfile().liftHeight; }
  static std::vector<std::string> changed() {
    std::vector<std::string> places;
    for (const Difference& one : NerinAction::pendingDifferences()) {
      places.push_back(one.about);
    }
    return places;
  }
  static void takeBack(std::string_view about) {
    for (const Difference& one : NerinAction::pendingDifferences()) {
      if (one.about == about) {
        NerinAction::takeBack(one);
        return;
      }
    }
    FAIL() << about << " is no difference";
  }

  std::uint32_t m_lift = 0;
};

TEST_F(EditUndo, GoesBackAndForthStepByStep) {
  EXPECT_FALSE(NerinAction::canUndoEdit());
  lift(7);
  lift(8);
  EXPECT_TRUE(NerinAction::undoEdit());
  EXPECT_EQ(lift(), 7U);
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_TRUE(NerinAction::undoEdit());
  EXPECT_EQ(lift(), m_lift);
  EXPECT_FALSE(NerinAction::undoEdit());
  EXPECT_TRUE(NerinAction::redoEdit());
  EXPECT_TRUE(NerinAction::redoEdit());
  EXPECT_EQ(lift(), 8U);
  EXPECT_FALSE(NerinAction::redoEdit());
}

TEST_F(EditUndo, LeavesNothingToApplyWhereItBegan) {
  lift(7);
  NerinAction::keepDraft();
  NerinAction::undoEdit();
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(NerinAction::hasDraft(1));
  NerinAction::redoEdit();
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(EditUndo, StaysToBeAppliedWhileTheMouseHasTriedSettings) {
  lift(7);
  NerinAction::noteTrial();
  NerinAction::undoEdit();
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  lift(7);
  NerinAction::undoEdit();
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(EditUndo, ANewEditEndsTheRedo) {
  lift(7);
  NerinAction::undoEdit();
  lift(9);
  EXPECT_FALSE(NerinAction::canRedoEdit());
  NerinAction::undoEdit();
  EXPECT_EQ(lift(), m_lift);
}

TEST_F(EditUndo, TakesStepsThatNobodyRecorded) {
  editState->edit().liftHeight = 7;
  EXPECT_TRUE(NerinAction::undoEdit());
  EXPECT_EQ(lift(), m_lift);
}

TEST_F(EditUndo, ReachesTheNameAndTheLinkedProgram) {
  library().setCurrActivePath("/usr/bin/game");
  library().setCurrIsActive(true);
  editState->raiseNeedSave();
  NerinAction::recordEdit();
  EXPECT_TRUE(NerinAction::beginProfile("Play").isDone());
  NerinAction::undoEdit();
  EXPECT_EQ(library().currFWProfileName(), "Work");
  EXPECT_EQ(library().currProfile(), library().getProfileByName("Work"));
  EXPECT_EQ(library().currActivePath(), "/usr/bin/game");
  NerinAction::undoEdit();
  EXPECT_EQ(library().currActivePath().value_or(""), "");
  EXPECT_FALSE(library().currIsActive());
  NerinAction::redoEdit();
  EXPECT_TRUE(library().currIsActive());
}

TEST_F(EditUndo, ReachesBeyondAnApply) {
  lift(7);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_TRUE(NerinAction::undoEdit());
  EXPECT_EQ(lift(), m_lift);
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_THAT(changed(), ElementsAre("lift height"));
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(mouse().imageReport(1)[5] & 0x1FU, m_lift);
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("Work")) << "no second profile";
}

TEST_F(EditUndo, OfAProfileThatApplyMadeKeepsItsProfile) {
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  lift(7);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  const auto count = library().getProfileCount();
  NerinAction::undoEdit();
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(library().getProfileCount(), count);
}

TEST_F(EditUndo, ReachesAReset) {
  lift(7);
  EXPECT_TRUE(NerinAction::resetSlot().isDone());
  EXPECT_NE(library().currFWProfileName(), "Work");
  NerinAction::undoEdit();
  EXPECT_EQ(lift(), 7U);
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(EditUndo, OfARenameIsToBeApplied) {
  EXPECT_TRUE(NerinAction::renameSlot("Office").isDone());
  EXPECT_TRUE(NerinAction::undoEdit());
  EXPECT_EQ(library().currFWProfileName(), "Work");
  EXPECT_THAT(changed(), ElementsAre("name"));
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("Work"));
}

TEST_F(EditUndo, StopsAtTheSlot) {
  lift(7);
  EXPECT_TRUE(NerinAction::loadSlot(0).value);
  EXPECT_FALSE(NerinAction::canUndoEdit());
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(lift(), 7U) << "the draft";
  EXPECT_TRUE(NerinAction::undoEdit());
  EXPECT_EQ(lift(), m_lift);
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(EditUndo, ADeletedProfileStaysDeleted) {
  lift(7);
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  NerinAction::undoEdit();
  EXPECT_EQ(lift(), m_lift);
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_THAT(namesOf(library().profileArr()), IsEmpty());
}

TEST_F(EditUndo, KeepsABoundedNumberOfSteps) {
  EditHistory history;
  _Nerin_CONFIG content{};
  history.begin(content, content);
  for (std::uint32_t i = 1; i <= UndoSteps<_Nerin_CONFIG>::maximum + 5; ++i) {
    content.profile.liftHeight = i;
    history.note(content);
  }
  std::size_t steps = 0;
  while (history.canUndo()) {
    content = history.undo();
    ++steps;
  }
  EXPECT_EQ(steps, UndoSteps<_Nerin_CONFIG>::maximum);
  EXPECT_EQ(content.profile.liftHeight, 5U);
}

TEST_F(EditUndo, TakesOneDifferenceBackAndKeepsTheOthers) {
  _Nerin_PROFILE& profile = editState->edit();
  profile.poRate ^= 1U;
  profile.liftHeight = 9;
  profile.modeType ^= 1U;
  profile.lightColorArr[1] = {1, 2, 254};
  profile.btnInfo[3] = button(255, {}, ButtonTypeDisabled);
  library().setCurrActivePath("/usr/bin/game");
  EXPECT_THAT(changed(), ElementsAre("report rate", "lift height", "LED mode", "zone 2",
                                     "side rear", "linked program"));
  takeBack("zone 2");
  takeBack("side rear");
  EXPECT_THAT(changed(), ElementsAre("report rate", "lift height", "LED mode", "linked program"));
  EXPECT_TRUE(editState->isNeedSave());
  takeBack("report rate");
  takeBack("LED mode");
  takeBack("linked program");
  takeBack("lift height");
  EXPECT_THAT(changed(), IsEmpty());
  EXPECT_FALSE(editState->isNeedSave());
  NerinAction::undoEdit();
  EXPECT_THAT(changed(), ElementsAre("lift height")) << "a step like any other";
}

TEST_F(EditUndo, TakesTheNameBackWithItsProfile) {
  EXPECT_TRUE(NerinAction::beginProfile("Play").isDone());
  takeBack("name");
  EXPECT_EQ(library().currProfile(), library().getProfileByName("Work"));
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(EditUndo, TakesLevelsBack) {
  _Nerin_PROFILE profile = editState->selProfile();
  profile.dpiLevel = 3;
  profile.currSelectDPI = 1;
  editState->edit() = profile;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  // More levels: those above the one that is taken back go with it.
  editState->edit().dpiLevel = 5;
  takeBack("DPI level 5");
  EXPECT_EQ(editState->selProfile().dpiLevel, 4U);
  editState->edit().dpiLevel = 5;
  takeBack("DPI level 4");
  EXPECT_EQ(editState->selProfile().dpiLevel, 3U);
  // Fewer: those below come with it.
  editState->edit().dpiLevel = 1;
  editState->edit().currSelectDPI = 0;
  takeBack("DPI level 3");
  EXPECT_EQ(editState->selProfile().dpiLevel, 3U);
  // The other active level.
  EXPECT_THAT(changed(), ElementsAre("DPI level 1", "DPI level 2"));
  takeBack("DPI level 2");
  EXPECT_THAT(changed(), IsEmpty());
  editState->edit().xSensArr[1] = 20;
  takeBack("DPI level 2");
  EXPECT_EQ(editState->selProfile().xSensArr[1], profile.xSensArr[1]);
}

TEST_F(EditUndo, TakesNothingBackWhileTheSlotIsUnknown) {
  mouse().clearSlot(4);
  EXPECT_FALSE(NerinAction::loadSlot(4).value);
  lift(9);
  NerinAction::takeBack({});
  EXPECT_EQ(lift(), 9U);
}

}  // namespace
