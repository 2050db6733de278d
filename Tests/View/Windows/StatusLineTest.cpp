// What the line in the footer says when the mouse or the disk did not take what it was given.

#include <QApplication>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Record/EditState.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/FileLock.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/StatusLine.h"
#include "View/Windows/Termination.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class Status : public ViewTest {
 protected:
  void misbehave(MouseScenario::Kind kind) { mouse().setScenario({.kind = kind}); }
  void unplugAfter(std::uint32_t transfers) {
    mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = transfers});
  }
  void edit() {
    editState->edit().liftHeight = 4;
    view().refreshApplyBtn();
  }
};

TEST_F(Status, AnApplySaysToWhichSlot) {
  start();
  chooseSlot(3);
  EXPECT_EQ(status(), "");
  edit();
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 3");
  EXPECT_THAT(m_shown, IsEmpty());
  auto* label = view().findChild<QLabel*>(QStringLiteral("statusText"));
  EXPECT_EQ(label->accessibleName(), QStringLiteral("Applied to slot 3"));
}

TEST_F(Status, AnApplyThatWasCutOffSaysWhereAndStaysToBeDone) {
  start();
  for (std::uint32_t taken = 0; taken < 4; ++taken) {
    edit();
    unplugAfter(taken);
    click("applyBtn");
    EXPECT_EQ(status(),
              "Not applied: the mouse did not take report " + std::to_string(taken + 1) + " of 4");
    EXPECT_TRUE(button("applyBtn").isEnabled());
    EXPECT_TRUE(editState->isNeedSave());
    mouse().setScenario({});
    mouse().attach();
  }
  EXPECT_THAT(m_shown, IsEmpty()) << "nothing pops up";
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 1");
  EXPECT_FALSE(button("applyBtn").isEnabled());
}

TEST_F(Status, AFullDiskIsNamedAndApplyStays) {
  start();
  edit();
  durable::setFaultInjector([](const char*) { return ENOSPC; });
  click("applyBtn");
  durable::setFaultInjector({});
  EXPECT_EQ(status(), "Applied, but the library could not be saved: the disk is full");
  EXPECT_TRUE(button("applyBtn").isEnabled());
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 1");
}

TEST_F(Status, OkStaysOpenUntilAllArrived) {
  start();
  edit();
  unplugAfter(1);
  click("okBtn");
  EXPECT_FALSE(termination::isTerminating());
  mouse().setScenario({});
  mouse().attach();
  click("okBtn");
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(Status, ASlotThatDoesNotAnswerIsTold) {
  start();
  misbehave(MouseScenario::Kind::AnswersShort);
  chooseSlot(3);
  EXPECT_EQ(status(), "The slot could not be read. Nothing was changed.");
  EXPECT_THAT(m_shown, IsEmpty());
}

TEST_F(Status, AtTheStartOnlyTheQuestionForTheMouseIsAsked) {
  mouse().detach();
  start();
  EXPECT_EQ(status(), "");
  EXPECT_THAT(m_shown, IsEmpty());
  ASSERT_EQ(m_asked.size(), 1U);
  EXPECT_EQ(m_asked.front().first, "WarningNoDevice");
}

TEST_F(Status, ALibraryThatCannotBeSavedIsTold) {
  start();
  std::filesystem::remove_all(supportFolder());
  writeText(supportFolder(), "in the way");
  click("profileNewBtn");
  EXPECT_THAT(status(), testing::StartsWith("The library could not be saved: "));
}

TEST_F(Status, ALibraryThatAnotherProgramUsesIsTold) {
  start();
  const auto other = FileLock::acquire(supportFolder() / ".lock", std::chrono::milliseconds(0));
  click("profileNewBtn");
  EXPECT_EQ(status(), "Another program is using the profile library. Try again.");
}

TEST_F(Status, AChildWindowSaysItToo) {
  start();
  click("preformanceBtn");
  ASSERT_NE(child(), nullptr);
  auto* line = child()->findChild<StatusLine*>(QStringLiteral("statusLine"));
  ASSERT_NE(line, nullptr);
  misbehave(MouseScenario::Kind::Absent);
  child()->findChild<LXButton*>(QStringLiteral("applyBtn"))->click();
  EXPECT_EQ(line->text(), QStringLiteral("The mouse did not take all of it. Try again."));
  EXPECT_EQ(status(), line->text().toStdString());
  mouse().setScenario({});
  child()->findChild<LXButton*>(QStringLiteral("applyBtn"))->click();
  EXPECT_EQ(line->text(), QString());
}

TEST_F(Status, AfterApplyTheFocusIsNotOnCancel) {
  start();
  QApplication::setActiveWindow(&window());
  edit();
  button("applyBtn").setFocus(Qt::TabFocusReason);
  QTest::keyClick(&button("applyBtn"), Qt::Key_Space);
  EXPECT_EQ(status(), "Applied to slot 1");
  EXPECT_EQ(QApplication::focusWidget(), &button("profile1Btn"));
  QTest::keyClick(QApplication::focusWidget(), Qt::Key_Return);
  EXPECT_FALSE(termination::isTerminating());
}

TEST_F(Status, WithoutALeftClickApplyAsks) {
  start();
  editState->edit().btnInfo[0] = editState->selProfile().btnInfo[1];
  view().refreshApplyBtn();
  clearTrace();
  m_answer = false;
  click("applyBtn");
  EXPECT_THAT(m_shown, ElementsAre("No button has the left click. Apply anyway?"));
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(editState->isNeedSave());
  m_answer = true;
  click("applyBtn");
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(Status, ANameFromTheLibraryIsSpelledWhenItIsApplied) {
  start();
  const auto profile = library().addProfileByName("B\xC3\xBCro", nullptr);
  view().setSelectedProfileProById(profile->profileId(), profile->name());
  edit();
  click("applyBtn");
  EXPECT_EQ(mouse().slotName(0), "Buro");
  EXPECT_EQ(shownName(), "Buro");
  EXPECT_EQ(title(), "Buro");
  EXPECT_THAT(status(), HasSubstr("Buro"));
}

TEST_F(Status, ADeletedProfileCanBeBroughtBack) {
  start();
  click("profileNewBtn");
  click("applyBtn");
  click("profileDelBtn");
  EXPECT_EQ(status(), "Deleted: NewPF_1");
  EXPECT_EQ(library().getProfileCount(), 0U);
  EXPECT_EQ(title(), "");
  takeOffer();
  EXPECT_EQ(status(), "");
  EXPECT_EQ(title(), "NewPF_1");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro"));
  EXPECT_EQ(library().currProfile(), library().getProfileByName("NewPF_1"));
}

TEST_F(Status, AnImportedNameIsSpelledAndSaidSo) {
  start();
  writeText(home() / "import.pro", profileBytes(9, "B\xC3\xBCro"));
  m_chosen = (home() / "import.pro").string();
  click("profileImportBtn");
  EXPECT_THAT(status(), testing::EndsWith("B\xC3\xBCro is now Buro"));
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("Buro"));
}

TEST_F(Status, AFullLibraryTakesNoNewProfileByAnyRoad) {
  start();
  for (int n = 1; n <= 50; ++n) {
    library().addProfileByName("P" + std::to_string(n), nullptr);
  }
  edit();
  clearTrace();
  click("applyBtn");
  EXPECT_EQ(status(), "Maximum number of profiles reached");
  EXPECT_TRUE(button("applyBtn").isEnabled());
  click("reDefBtn");
  typeName("Fresh");
  EXPECT_THAT(trace(), IsEmpty()) << "the mouse would hold a profile that is in no library";
  EXPECT_EQ(library().getProfileCount(), 50U);
  EXPECT_EQ(status(), "Maximum number of profiles reached");
  view().setSelectedProfileProById(library().getProfileByName("P7")->profileId(), "P7");
  edit();
  click("applyBtn");
  EXPECT_EQ(status(), "Applied to slot 1");
}

TEST_F(Status, TextsOfUsersAreNoMarkup) {
  start();
  statusline::say(QStringLiteral("<b>Deleted</b>"));
  EXPECT_EQ(view().findChild<QLabel*>(QStringLiteral("statusText"))->textFormat(), Qt::PlainText);
}

}  // namespace
