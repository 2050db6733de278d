// The field with the profile's name: what it accepts, when it commits, and the resulting name.

#include <QApplication>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/NerinAction.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class NameField : public ViewTest {
 protected:
  // The slot holds the library's "NewPF_1".
  void startNamed() {
    start();
    QApplication::setActiveWindow(&window());
    click("profileNewBtn");
    click("applyBtn");
    clearTrace();
  }
  void type(const char* text) {
    nameField().setFocus(Qt::MouseFocusReason);
    nameField().selectAll();
    QTest::keyClicks(&nameField(), QString::fromLatin1(text));
  }
  void leave() { button("applyBtn").parentWidget()->setFocus(Qt::MouseFocusReason); }
};

class NameFieldRefuses : public NameField, public testing::WithParamInterface<std::string> {};
class NameFieldTakes : public NameField, public testing::WithParamInterface<std::string> {};

}  // namespace

TEST_F(NameField, ReturnCommits) {
  startNamed();
  type("Office");
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_THAT(trace(), IsEmpty());
  QTest::keyClick(&nameField(), Qt::Key_Return);
  EXPECT_EQ(mouse().slotName(0), "Office");
  EXPECT_EQ(title(), "Office");
  EXPECT_EQ(library().currFWProfileName(), "Office");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Office.pro"));
}

TEST_F(NameField, LeavingItCommitsOnceAndOnlyAChange) {
  startNamed();
  nameField().setFocus(Qt::MouseFocusReason);
  leave();
  EXPECT_THAT(trace(), IsEmpty());
  type("Office");
  leave();
  EXPECT_EQ(mouse().slotName(0), "Office");
  clearTrace();
  nameField().setFocus(Qt::MouseFocusReason);
  leave();
  EXPECT_THAT(trace(), IsEmpty());
  type("Desk");
  QTest::keyClick(&nameField(), Qt::Key_Return);
  EXPECT_EQ(mouse().slotName(0), "Desk");
  clearTrace();
  leave();
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(NameField, FillingItCommitsNothing) {
  startNamed();
  nameField().setFocus(Qt::MouseFocusReason);
  mouse().pressSlotButton(4);
  report(1, 4);
  EXPECT_EQ(shownName(), mouse().slotName(4));
  clearTrace();
  leave();
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(library().getProfileCount(), 1U);
}

TEST_F(NameField, ARenameSendsTheNameOnlyAndIsNoEdit) {
  startNamed();
  typeName("Office");
  const auto lines = sent();
  ASSERT_EQ(lines.size(), 2U);
  EXPECT_THAT(lines[0], testing::StartsWith("SET 0306 1 0600"));
  EXPECT_THAT(lines[1], testing::StartsWith("SET 0300 0 c400"));
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(button("applyBtn").isEnabled());
  EXPECT_EQ(library().getProfileCount(), 1U);
  click("currProfileBtn");
  ASSERT_NE(openList(), nullptr);
}

TEST_P(NameFieldRefuses, AndShowsTheOldNameAgain) {
  startNamed();
  typeName(GetParam());
  EXPECT_EQ(shownName(), "NewPF_1");
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_EQ(title(), "NewPF_1");
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro"));
}

INSTANTIATE_TEST_SUITE_P(Names, NameFieldRefuses,
                         testing::Values("", "a/b", "a:b", "\xF0\x9F\x8E\xAE", "profile#1",
                                         "Profile#1", "PROFILE#10", "pROFILE#7"));

TEST_P(NameFieldTakes, AndTheMouseHasIt) {
  startNamed();
  typeName(GetParam());
  EXPECT_EQ(shownName(), GetParam());
  EXPECT_EQ(mouse().slotName(0), GetParam());
  EXPECT_EQ(title(), GetParam());
}

INSTANTIATE_TEST_SUITE_P(Names, NameFieldTakes,
                         testing::Values("profile#11", "Profile#0", "Profile#", "x", "!#$%~ (1)",
                                         std::string(65, 'x'), "NewPF_1"));

TEST_F(NameField, WhatTheMouseCannotHoldIsSpelledAndTheUserSeesIt) {
  startNamed();
  const std::pair<std::string, std::string> spellings[] = {
      {"m\xC3\xBCll", "mull"},
      {"\xD0\x98\xD0\xB3\xD1\x80\xD0\xB0", "Igra"},
      {"tab\there", "tabhere"},
      {std::string(66, 'x'), std::string(65, 'x')}};
  for (const auto& [typed, spelled] : spellings) {
    typeName(typed);
    EXPECT_EQ(shownName(), spelled);
    EXPECT_EQ(mouse().slotName(0), spelled);
    EXPECT_EQ(library().currProfile()->name(), spelled);
    EXPECT_THAT(status(), testing::EndsWith("is now " + spelled));
    EXPECT_THAT(status(), testing::HasSubstr(typed));
  }
  setPreferredLanguage("de");
  typeName("B\xC3\xBCro");
  EXPECT_EQ(shownName(), "Buero");
}

TEST_F(NameField, AnotherWindowIsNoCommitAndCancelIsNone) {
  startNamed();
  type("Office");
  nameField().clearFocus();  // as the window system does it
  QTest::keyClick(&nameField(), Qt::Key_Escape);
  typeName("NewPF_1");
  clearTrace();
  type("Office");
  QFocusEvent leaves(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
  QApplication::sendEvent(&nameField(), &leaves);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  for (const char* name : {"cancelBtn", "closeBtn"}) {
    nameField().setFocus(Qt::MouseFocusReason);
    type("Office");
    button(name).setFocus(Qt::MouseFocusReason);
    EXPECT_THAT(trace(), IsEmpty()) << name;
  }
}

TEST_F(NameField, EscapeTakesBackWhatIsTypedAndOnlyThenGoesOn) {
  startNamed();
  type("Office");
  QKeyEvent first(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  QApplication::sendEvent(&nameField(), &first);
  EXPECT_TRUE(first.isAccepted());
  EXPECT_EQ(shownName(), "NewPF_1");
  QKeyEvent second(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
  second.ignore();
  QApplication::sendEvent(&nameField(), &second);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
}

TEST_F(NameField, ALowerCaseTwinIsRefusedInAnyCase) {
  startNamed();
  typeName("game");
  chooseSlot(2);
  typeName("fresh");
  for (const char* name : {"game", "Game", "GAME"}) {
    typeName(name);
    EXPECT_EQ(mouse().slotName(1), "fresh") << name;
  }
}

TEST_F(NameField, ATwinWithCapitalsPassesAndOnlyAnExactOneTakesANumber) {
  startNamed();
  typeName("Game");
  chooseSlot(2);
  typeName("game");
  EXPECT_EQ(mouse().slotName(1), "game");
  typeName("Game");
  EXPECT_EQ(mouse().slotName(1), "Game_1");
  EXPECT_EQ(mouse().slotName(0), "Game");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Game.pro", "Game_1.pro"));
}

TEST_F(NameField, ARenameStoresAnUnlinkedSlotInTheLibrary) {
  startNamed();
  chooseSlot(2);
  EXPECT_EQ(title(), "");
  typeName("Second");
  EXPECT_EQ(library().getProfileCount(), 2U);
  EXPECT_EQ(title(), "Second");
  EXPECT_EQ(library().fwProfileID()[1], library().getProfileByName("Second")->profileId());
}

TEST_F(NameField, ApplySettlesAMissingName) {
  startNamed();
  mouse().clearSlot(1);
  chooseSlot(2);
  library().setCurrFWProfileName(std::nullopt);
  editState->raiseNeedSave();
  view().refreshApplyBtn();
  click("applyBtn");
  EXPECT_EQ(mouse().slotName(1), "NewPF_2");
  EXPECT_EQ(shownName(), "NewPF_2");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro", "NewPF_2.pro"));
}

TEST_F(NameField, OkSettlesANameThatIsTaken) {
  startNamed();
  chooseSlot(2);
  click("profileNewBtn");
  library().setCurrFWProfileName("NewPF_1");
  click("okBtn");
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_EQ(mouse().slotName(1), "NewPF_1_1");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro", "NewPF_1_1.pro"));
}

TEST_F(NameField, ApplyOfALinkedSlotKeepsItsName) {
  startNamed();
  editState->raiseNeedSave();
  view().refreshApplyBtn();
  click("applyBtn");
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_EQ(library().getProfileCount(), 1U);
}

TEST_F(NameField, WhatIsTypedWhenTheProgramEndsIsNotCommitted) {
  startNamed();
  type("Office");
  termination::terminate();
  destroyWindow();
  process();
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro"));
}
