// Single operations on profiles.

#include <gmock/gmock.h>

#include "Tests/View/Main/ProfileDeeds.h"

using testing::ElementsAre;
using testing::Pair;

TEST_F(MainViewDeeds, NewRewritesTheOldProfileAsItWasRead) {
  startLinked();
  edit();
  click("profileNewBtn");
  EXPECT_EQ(redOnDisk("A.pro"), OfSlotA);
}

TEST_F(MainViewDeeds, NewTwiceProposesOneNameAndMakesNothing) {
  startLinked();
  click("profileNewBtn");
  click("profileNewBtn");
  EXPECT_EQ(state(), (State{"", "", "NewPF_1", "", OfSlotA, true}));
  EXPECT_THAT(disk(), ElementsAre("A.pro", "B.pro"));
}

TEST_F(MainViewDeeds, DuplicatingTwiceHasNothingToDuplicate) {
  startLinked();
  click("profileSaveBtn");
  click("profileSaveBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoItem", false)));
  EXPECT_EQ(state(), (State{"", "", "A_1", "", OfSlotA, true}));
}

TEST_F(MainViewDeeds, ANewProfileRenamedIsStoredAtOnceAndOnlyNamedOnTheMouse) {
  startLinked();
  edit();
  click("profileNewBtn");
  typeName("Fresh");
  EXPECT_EQ(state(), (State{"Fresh", "Fresh", "Fresh", "Fresh", Edited, true}));
  EXPECT_EQ(library().fwProfileID()[0], 10U);
  EXPECT_THAT(disk(), ElementsAre("A.pro", "B.pro", "Fresh.pro"));
  EXPECT_EQ(mouse().slotName(0), "Fresh");
  EXPECT_EQ(redOnMouse(0), OfSlotA);
}

TEST_F(MainViewDeeds, ANewProfileGivesWayToAChosenOne) {
  startLinked();
  edit();
  click("profileNewBtn");
  choose("B");
  EXPECT_EQ(state(), (State{"B", "B", "B", "B", OfFileB, true}));
  EXPECT_EQ(library().fwProfileID()[0], idOfB);
}

TEST_F(MainViewDeeds, DeletingIsNoEditByItself) {
  startLinked();
  click("profileDelBtn");
  EXPECT_EQ(state(), (State{"", "", "A", "", OfSlotA, false}));
  EXPECT_FALSE(button("applyBtn").isEnabled());
}

TEST_F(MainViewDeeds, ResetTakesAFreeNameWhenTheFactorysIsTaken) {
  putProfile("P.pro", 12, "Profile#1");
  startLinked();
  click("reDefBtn");
  EXPECT_EQ(state(), (State{"Profile#1_1", "Profile#1_1", "Profile#1_1", "Profile#1_1",
                            m_factoryRed, false}));
  EXPECT_EQ(mouse().slotName(0), "Profile#1_1");
  EXPECT_THAT(disk(), ElementsAre("B.pro", "Profile#1.pro", "Profile#1_1.pro"));
}
