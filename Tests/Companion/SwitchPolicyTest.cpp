#include <chrono>

#include <gtest/gtest.h>

#include "Companion/Policy/SwitchPolicy.h"

namespace {

using namespace std::chrono_literals;
using Wanted = std::optional<int>;

// A mouse that does what it is told, and a clock that the test sets.
class SwitchPolicyTest : public testing::Test {
 protected:
  SwitchPolicyTest() { policy.mouseCame(0); }

  static SwitchPolicy::Program linked(const std::string& name, int slot) {
    return {name, name, slot};
  }
  static SwitchPolicy::Program other(const std::string& name) { return {name, name, std::nullopt}; }

  void after(std::chrono::milliseconds time) { now += time; }
  // The program comes to the front and stays there long enough; what was wanted is written.
  Wanted bring(const SwitchPolicy::Program& program) {
    policy.inFront(program, now);
    after(2s);
    return obey();
  }
  Wanted obey() {
    const Wanted wanted = policy.wanted(now);
    if (wanted) {
      policy.wrote(*wanted, true, now);
    }
    return wanted;
  }

  SwitchPolicy policy;
  SwitchPolicy::Time now{std::chrono::hours(1)};
};

TEST_F(SwitchPolicyTest, ALinkedProgramGetsItsSlotAfterTwoHundredMilliseconds) {
  policy.inFront(linked("Blender", 2), now);
  after(199ms);
  EXPECT_EQ(policy.wanted(now), std::nullopt);
  EXPECT_EQ(policy.due(now), now + 1ms);
  after(1ms);
  EXPECT_EQ(obey(), 2);
  EXPECT_EQ(policy.slot(), 2);
  EXPECT_EQ(policy.due(now), std::nullopt);
  EXPECT_EQ(policy.explanation(), "Slot 3, because Blender is in front");
}

TEST_F(SwitchPolicyTest, AGlimpseOfAProgramChangesNothing) {
  bring(linked("Blender", 2));
  policy.inFront(other("Files"), now);
  after(150ms);
  policy.inFront(linked("Blender", 2), now);
  after(10s);
  EXPECT_EQ(policy.wanted(now), std::nullopt);
  EXPECT_EQ(policy.slot(), 2);
}

TEST_F(SwitchPolicyTest, TheTimeOfAProgramIsNotBegunAnewByItsOwnWindows) {
  policy.inFront(linked("Blender", 2), now);
  after(150ms);
  policy.inFront(linked("Blender", 2), now);
  after(50ms);
  EXPECT_EQ(policy.wanted(now), 2);
}

TEST_F(SwitchPolicyTest, AnotherProgramBringsTheSlotBackThatAPersonChose) {
  policy.personChose(4, now);
  bring(linked("Blender", 2));
  EXPECT_EQ(bring(other("Files")), 4);
  EXPECT_EQ(policy.explanation(), "Slot 5, the last one chosen by hand");
}

TEST_F(SwitchPolicyTest, FromOneLinkedProgramToAnotherAndBackToTheBase) {
  EXPECT_EQ(bring(linked("Blender", 2)), 2);
  EXPECT_EQ(bring(linked("Krita", 5)), 5);
  EXPECT_EQ(bring(other("Files")), 0);
}

TEST_F(SwitchPolicyTest, NothingIsWrittenForTheSlotThatIsThere) {
  policy.personChose(2, now);
  EXPECT_EQ(bring(linked("Blender", 2)), std::nullopt);
  EXPECT_EQ(bring(other("Files")), std::nullopt);
  EXPECT_EQ(policy.slot(), 2);
}

TEST_F(SwitchPolicyTest, APersonsChoiceStaysUntilAnotherProgramComes) {
  bring(linked("Blender", 2));
  policy.personChose(7, now);
  after(10s);
  EXPECT_EQ(policy.wanted(now), std::nullopt);
  EXPECT_EQ(policy.explanation(), "Slot 8, chosen by hand while Blender is in front");
  // It is the base from now on.
  EXPECT_EQ(bring(linked("Krita", 5)), 5);
  EXPECT_EQ(bring(other("Files")), 7);
}

TEST_F(SwitchPolicyTest, APressThatNobodyHeardOfIsFoundByTheReadBeforeTheWrite) {
  policy.inFront(linked("Blender", 2), now);
  after(200ms);
  ASSERT_EQ(policy.wanted(now), 2);
  policy.mouseHas(6);
  EXPECT_EQ(obey(), 2);
  EXPECT_EQ(bring(other("Files")), 6);
}

TEST_F(SwitchPolicyTest, ASlotThatIsNoLongerOursIsNotTakenAway) {
  bring(linked("Blender", 2));
  policy.inFront(other("Files"), now);
  after(2s);
  ASSERT_EQ(policy.wanted(now), 0);
  policy.mouseHas(6);
  EXPECT_EQ(policy.wanted(now), std::nullopt);
  EXPECT_EQ(policy.slot(), 6);
}

TEST_F(SwitchPolicyTest, WritesAtMostOncePerSecond) {
  policy.inFront(linked("Blender", 2), now);
  after(200ms);
  ASSERT_EQ(obey(), 2);
  policy.inFront(linked("Krita", 5), now);
  after(999ms);
  EXPECT_EQ(policy.wanted(now), std::nullopt);
  EXPECT_EQ(policy.due(now), now + 1ms);
  after(1ms);
  EXPECT_EQ(policy.wanted(now), 5);
}

TEST_F(SwitchPolicyTest, AFailedWriteIsTriedAgainAfterASecond) {
  policy.inFront(linked("Blender", 2), now);
  after(200ms);
  ASSERT_EQ(policy.wanted(now), 2);
  policy.wrote(2, false, now);
  EXPECT_EQ(policy.slot(), 0);
  EXPECT_EQ(policy.explanation(), "Slot 1: slot 3 could not be chosen and is tried again");
  EXPECT_EQ(policy.due(now), now + 1s);
  after(1s);
  EXPECT_EQ(obey(), 2);
  EXPECT_EQ(policy.explanation(), "Slot 3, because Blender is in front");
}

TEST_F(SwitchPolicyTest, TheWindowsEchoIsNoChoiceOfAPerson) {
  bring(linked("Blender", 2));
  policy.personChose(2, now);
  EXPECT_EQ(bring(other("Files")), 0);
}

TEST_F(SwitchPolicyTest, ALateEchoOfTheSlotBeforeIsNoChoiceEither) {
  bring(linked("Blender", 2));
  policy.inFront(linked("Krita", 5), now);
  after(1s);
  ASSERT_EQ(obey(), 5);
  policy.personChose(2, now);
  // The window has set it, so that it is set right again.
  after(1s);
  EXPECT_EQ(obey(), 5);
  EXPECT_EQ(bring(other("Files")), 0);
}

TEST_F(SwitchPolicyTest, WritesNothingWhileTheWindowHasEdits) {
  policy.pause(SwitchPolicy::Pause::WindowHasEdits);
  EXPECT_EQ(bring(linked("Blender", 2)), std::nullopt);
  EXPECT_EQ(policy.due(now), std::nullopt);
  EXPECT_NE(policy.explanation().find("edits that are not applied"), std::string::npos);
  policy.pause(SwitchPolicy::Pause::None);
  EXPECT_EQ(obey(), 2);
}

TEST_F(SwitchPolicyTest, WritesNothingWithoutAMouse) {
  policy.mouseGone();
  EXPECT_EQ(bring(linked("Blender", 2)), std::nullopt);
  EXPECT_EQ(policy.explanation(), "No mouse is there");
  policy.mouseCame(1);
  EXPECT_EQ(obey(), 2);
  EXPECT_EQ(bring(other("Files")), 1);
}

TEST_F(SwitchPolicyTest, AMouseThatComesBackWithAProgramsSlotKeepsItsBase) {
  bring(linked("Blender", 2));
  policy.mouseGone();
  policy.mouseCame(2);
  EXPECT_EQ(bring(other("Files")), 0);
}

TEST_F(SwitchPolicyTest, ANewLinkActsOnTheProgramInFront) {
  bring(other("Blender"));
  policy.relinked(3);
  EXPECT_EQ(obey(), 3);
  after(2s);
  policy.relinked(std::nullopt);
  EXPECT_EQ(obey(), 0);
}

TEST_F(SwitchPolicyTest, SaysThatTheDesktopTellsNothing) {
  policy.setSight(SwitchPolicy::Sight::None);
  EXPECT_EQ(bring(linked("Blender", 2)), std::nullopt);
  EXPECT_EQ(policy.explanation(),
            "Slot 1: this desktop does not tell programs which window is in front");
}

TEST_F(SwitchPolicyTest, SaysThatTheProgramRunsWhereTheDesktopTellsNoMore) {
  policy.setSight(SwitchPolicy::Sight::Running);
  EXPECT_EQ(bring(linked("Blender", 2)), 2);
  EXPECT_EQ(policy.explanation(), "Slot 3, because Blender is running");
  EXPECT_EQ(bring(other("")), 0);
  EXPECT_EQ(policy.explanation(),
            "This desktop does not tell programs which window is in front: switching while the "
            "program runs instead");
}

TEST_F(SwitchPolicyTest, WritesNothingWhileItIsSwitchedOff) {
  policy.setIsOn(false);
  EXPECT_EQ(bring(linked("Blender", 2)), std::nullopt);
  EXPECT_EQ(policy.due(now), std::nullopt);
  EXPECT_EQ(policy.reason().kind, SlotReason::SwitchedOff);
  policy.setIsOn(true);
  EXPECT_EQ(obey(), 2);
}

TEST_F(SwitchPolicyTest, ExplainsNoProgramsWhileNoneIsLinked) {
  policy.setHasLinks(false);
  EXPECT_EQ(policy.reason().kind, SlotReason::NothingLinked);
  EXPECT_EQ(policy.explanation(), "Slot 1, the last one chosen by hand");
}

TEST_F(SwitchPolicyTest, TheExplanationHasNoLineBreak) {
  bring(linked("Blen\nder\x1b[2J", 2));
  EXPECT_EQ(policy.explanation(), "Slot 3, because Blen der [2J is in front");
}

}  // namespace
