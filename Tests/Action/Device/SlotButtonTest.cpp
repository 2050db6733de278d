#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"

// Setting one button of the active profile at once.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SlotButton : public ActionTest {
 protected:
  SlotButton() { NerinAction::startListenDev(); }
};

TEST_F(SlotButton, EveryButtonHasItsPosition) {
  for (int index = 0; index < 16; ++index) {
    clearTrace();
    EXPECT_TRUE(NerinAction::setBtnInfoToDevicePro(index, button(1, {4, 5, 6, 7})).isDone());
    const auto position = static_cast<std::uint8_t>(index > 13 ? index + 3 : index);
    EXPECT_THAT(trace(),
                ElementsAre("SET 0300 0 c40e" + hexOf(Bytes{position}) + "0104050607", "SLEEP 30"));
  }
  EXPECT_EQ(mouse().imageReport(0)[58 + 5 * 18 + 1], 4);
}

TEST_F(SlotButton, IndexesThatDoNotExistArePassedOver) {
  for (const int index : {-1, 16, 100}) {
    EXPECT_TRUE(NerinAction::setBtnInfoToDevicePro(index, button(6, {1})).isDone());
  }
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(SlotButton, FollowsTheRulesOfTheImage) {
  std::array<std::uint8_t, 8> buffer{0xAA, 0xBB, 0xCC};
  NerinAction::setBtnInfoDataPro(buffer, button(1, {242}));
  EXPECT_THAT(buffer, ElementsAre(0xAA, 0xBB, 0xCC, 2, 8, 0x50, 0, 0));
  NerinAction::setBtnInfoDataPro(buffer, button(2, {56}));
  EXPECT_THAT(buffer, ElementsAre(0xAA, 0xBB, 0xCC, 2, 2, 0, 0, 0));
  NerinAction::setBtnInfoDataPro(buffer, button(255, {1, 2, 3, 4}));
  EXPECT_THAT(buffer, ElementsAre(0xAA, 0xBB, 0xCC, 255, 1, 2, 3, 4));
}

TEST_F(SlotButton, AMacroIsWrittenFirstIntoTheCurrentSlot) {
  addMacro(5, "Five", {{0, 0, 0}});
  mouse().pressSlotButton(8);
  library().setCurrFWProfileIndex(2);
  editState->currSetProfile().liftHeight = 6;
  EXPECT_TRUE(NerinAction::setBtnInfoToDevicePro(15, macroButton(5, 1, 9)).isDone());
  const int macroSlot = 2 * 19 + 18;
  ASSERT_EQ(mouse().macroReport(macroSlot)[0], 0xB0);
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c40b380100000000", "SLEEP 30",
                                   testing::StartsWith("SET 0304 1 040038"), "SLEEP 30",
                                   "SET 0300 0 c40e120601090000", "SLEEP 30"));
  // The button goes to the mouse's active profile.
  EXPECT_EQ(mouse().imageReport(8)[58 + 5 * 18], 6);
  EXPECT_NE(mouse().imageReport(2)[58 + 5 * 18], 6);
  EXPECT_EQ(editState->currSetProfileID(), 2U);
  EXPECT_EQ(editState->currFWProfile().liftHeight, 6U);
  EXPECT_EQ(editState->currFWProfile().btnInfo[15].MacroID, 5U);
  EXPECT_EQ(editState->currSetProfile().btnInfo[15].MacroID, 0U);
}

TEST_F(SlotButton, AMacroThatIsMissingLeavesTwoParametersBehind) {
  _BTN_INFO info = macroButton(77, 2, 5);
  info.KeyBit[2] = 0x33;
  info.KeyBit[3] = 0x44;
  EXPECT_TRUE(NerinAction::setBtnInfoToDevicePro(3, info).isDone());
  EXPECT_THAT(sent(), ElementsAre("SET 0300 0 c40b030100000000", "SET 0300 0 c40e03ff00003344"));
}

TEST_F(SlotButton, OtherFunctionsLeaveTheSlotImageAlone) {
  editState->currFWProfile().liftHeight = 3;
  editState->currSetProfile().liftHeight = 6;
  EXPECT_TRUE(NerinAction::setBtnInfoToDevicePro(3, button(1, {1})).isDone());
  EXPECT_EQ(editState->currFWProfile().liftHeight, 3U);
}

}  // namespace
