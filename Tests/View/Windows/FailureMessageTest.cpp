// What the window says when the mouse or the disk did not take what it was given.

#include <gmock/gmock.h>

#include "Action/Record/EditState.h"
#include "Kit/Core/FileLock.h"
#include "Tests/Support/ViewTest.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Failures : public ViewTest {
 protected:
  void misbehave(MouseScenario::Kind kind) { mouse().setScenario({.kind = kind}); }
};

TEST_F(Failures, AHealthyMouseIsNoReasonForAMessage) {
  start();
  chooseSlot(3);
  editState->edit().liftHeight = 4;
  view().applyPro();
  typeName("Office");
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(Failures, AnApplyThatTheMouseDidNotTakeIsTold) {
  start();
  misbehave(MouseScenario::Kind::Absent);
  editState->edit().liftHeight = 4;
  view().applyPro();
  EXPECT_THAT(m_shown, ElementsAre("The mouse did not take all of it. Try again"));
}

TEST_F(Failures, ASlotThatDoesNotAnswerIsTold) {
  start();
  misbehave(MouseScenario::Kind::AnswersShort);
  chooseSlot(3);
  EXPECT_EQ(m_shown.size(), 1U);
}

TEST_F(Failures, AtTheStartOnlyTheQuestionForTheMouseIsAsked) {
  mouse().detach();
  start();
  EXPECT_THAT(m_shown, IsEmpty());
  ASSERT_EQ(m_asked.size(), 1U);
  EXPECT_EQ(m_asked.front().first, "WarningNoDevice");
}

TEST_F(Failures, ALibraryThatCannotBeSavedIsTold) {
  start();
  std::filesystem::remove_all(supportFolder());
  writeText(supportFolder(), "in the way");
  click("profileNewBtn");
  EXPECT_THAT(m_shown, ElementsAre("The profile library could not be saved"));
}

TEST_F(Failures, ALibraryThatAnotherProgramUsesIsTold) {
  start();
  const auto other = FileLock::acquire(supportFolder() / ".lock", std::chrono::milliseconds(0));
  click("profileNewBtn");
  EXPECT_THAT(m_shown, ElementsAre("Another program is using the profile library. Try again"));
}

}  // namespace
