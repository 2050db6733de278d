#include <gmock/gmock.h>

#include "Action/Edit/Differences.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Tests/Support/ActionTest.h"

// What would Apply change?

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Differences : public ActionTest {
 protected:
  Differences() {
    beginProgram();
    EXPECT_TRUE(NerinAction::loadSlot(0).value);
  }

  static std::vector<std::string> pending() {
    std::vector<std::string> lines;
    for (const Difference& one : NerinAction::pendingDifferences()) {
      std::string line = one.about;
      line.append(": ").append(one.before).append(" -> ").append(one.after);
      lines.push_back(line);
    }
    return lines;
  }
};

TEST_F(Differences, AreNoneAfterASlotWasRead) {
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(Differences, TellEveryPlaceInWords) {
  _Nerin_PROFILE& profile = editState->edit();
  profile.poRate = 0;
  profile.liftHeight = 9;
  profile.modeType = 1;
  profile.lightColorArr[1] = {1, 2, 255};
  profile.btnInfo[3] = button(255, {}, ButtonTypeDisabled);
  const auto lines = pending();
  ASSERT_EQ(lines.size(), 5U);
  EXPECT_THAT(lines[0], testing::EndsWith("-> 125 Hz"));
  EXPECT_THAT(lines[1], testing::EndsWith("-> 9"));
  EXPECT_EQ(lines[2], "LED mode: normal -> battle");
  EXPECT_THAT(lines[3], testing::StartsWith("zone 2: "));
  EXPECT_THAT(lines[3], testing::EndsWith("-> #0102ff"));
  EXPECT_THAT(lines[4], testing::StartsWith("side rear: "));
  EXPECT_THAT(lines[4], testing::EndsWith("-> Disable"));
}

TEST_F(Differences, ALevelThatIsNotInUseHasNoValue) {
  editState->edit().dpiLevel = 2;
  editState->edit().currSelectDPI = 0;
  editState->settle();
  editState->edit().dpiLevel = 3;
  editState->edit().xSensArr[2] = limits::minimumSensitivity;
  editState->edit().ySensArr[2] = limits::maximumSensitivity;
  EXPECT_THAT(pending(), ElementsAre("DPI level 3:  -> 100 x 8200"));
  editState->settle();
  editState->edit().dpiLevel = 2;
  EXPECT_THAT(pending(), ElementsAre("DPI level 3: 100 x 8200 -> "));
}

TEST_F(Differences, AButtonThatReadsTheSameIsStillADifference) {
  editState->edit().btnInfo[3].KeyBit[3] ^= 1U;
  EXPECT_EQ(pending().size(), 1U);
}

TEST_F(Differences, AreGoneAfterApply) {
  editState->edit().liftHeight = 9;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(pending(), IsEmpty());
}

TEST_F(Differences, AreUnknownForASlotWithoutAProfile) {
  mouse().clearSlot(4);
  EXPECT_FALSE(NerinAction::loadSlot(4).value);
  editState->edit().liftHeight = 9;
  EXPECT_THAT(pending(), IsEmpty());
}

}  // namespace
