#include <cstring>

#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"

// Reading, writing and selecting a slot of the mouse.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool isAllZero(const _Nerin_PROFILE& profile) {
  const _Nerin_PROFILE zero{};
  return std::memcmp(&profile, &zero, sizeof zero) == 0;
}

class ProfileRead : public ActionTest {
 protected:
  ProfileRead() { beginProgram(); }

  static std::string ready(int slot) {
    return "SET 0300 0 c40c" + hexOf(Bytes{static_cast<std::uint8_t>(slot)}) + "0000000000";
  }
};

TEST_F(ProfileRead, ReadsNameAndImageEachAfterItsReadyCommand) {
  EXPECT_TRUE(NerinAction::getFWProfileData(2).value);
  EXPECT_THAT(
      trace(),
      ElementsAre(ready(2), "SLEEP 30", "GET 0306 1 " + hexOf(mouse().nameReport(2)), "SLEEP 30",
                  ready(2), "SLEEP 30", "GET 0305 1 " + hexOf(mouse().imageReport(2)), "SLEEP 30"));
  EXPECT_EQ(library().currFWProfileName(), "Profile#3");
  EXPECT_EQ(editState->currFWProfile().dpiLevel, 5U);
}

TEST_F(ProfileRead, ReadsAMacroRightAfterItsButtonAndWithoutAPause) {
  Bytes image(mouse().imageReport(2).begin(), mouse().imageReport(2).end());
  image[58 + 5 * 4] = 6;
  image[58 + 5 * 17] = 6;
  putImage(2, image);
  clearTrace();
  EXPECT_TRUE(NerinAction::getFWProfileDataPro(2).isDone());
  const std::string noMacro = "GET 0304 1 04" + std::string(2 * 2052, '0');
  EXPECT_THAT(trace(),
              ElementsAre(ready(2), "SLEEP 30", "GET 0305 1 " + hexOf(mouse().imageReport(2)),
                          "SLEEP 30", "SET 0300 0 c40b2a0000000000", "SLEEP 30", noMacro,
                          "SET 0300 0 c40b370000000000", "SLEEP 30", noMacro));
}

TEST_F(ProfileRead, LinksTheSlotToTheLibraryProfileOfItsName) {
  library().addProfileByName("Other", nullptr);
  library().addProfileByName("Profile#3", nullptr);
  EXPECT_TRUE(NerinAction::getFWProfileData(2).value);
  EXPECT_EQ(library().fwProfileID()[2], 2U);
}

TEST_F(ProfileRead, ANameThatTheLibraryLacksLeavesTheSlotWithoutALink) {
  library().fwProfileID()[2] = 7;
  EXPECT_TRUE(NerinAction::getFWProfileData(2).value);
  EXPECT_EQ(library().fwProfileID()[2], ProfieController::notLinked);
}

TEST_F(ProfileRead, ASlotWithoutANameHoldsNoProfile) {
  mouse().clearSlot(2);
  library().setCurrFWProfileName("Kept");
  library().fwProfileID()[2] = 7;
  editState->edit().poRate = 3;
  editState->currFWProfile().poRate = 3;
  EXPECT_FALSE(NerinAction::getFWProfileData(2).value);
  EXPECT_TRUE(isAllZero(editState->currFWProfile()));
  EXPECT_EQ(editState->selProfile().poRate, 3U);
  EXPECT_EQ(library().currFWProfileName(), "Kept");
  EXPECT_EQ(library().fwProfileID()[2], 7U);
}

TEST_F(ProfileRead, ASlotThatTheLibraryHasNoLinkForIsReadAllTheSame) {
  const auto links = library().fwProfileID();
  mouse().setScenario({.kind = MouseScenario::Kind::AnswersRandom});
  for (int slot = 10; slot < 256; ++slot) {
    NerinAction::getFWProfileData(static_cast<std::uint8_t>(slot)).value;
  }
  EXPECT_EQ(library().fwProfileID(), links);
}

TEST_F(ProfileRead, WhatTheMouseDoesNotKeepIsEmptyAfterwards) {
  editState->currFWProfile().islightOnArr[0] = 1;
  editState->currFWProfile().btnInfo[0].app_path[0] = 'x';
  EXPECT_TRUE(NerinAction::getFWProfileData(2).value);
  EXPECT_EQ(editState->currFWProfile().islightOnArr[0], 0U);
  EXPECT_EQ(editState->currFWProfile().btnInfo[0].app_path[0], '\0');
}

TEST_F(ProfileRead, DeliveredSlotsAreTheFactoryProfiles) {
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    ASSERT_TRUE(NerinAction::getFWProfileData(static_cast<std::uint8_t>(slot)).value);
    library().setCurrFWProfileIndex(slot);
    const _Nerin_PROFILE& factory = library().defaultProfile()->profileData();
    for (std::size_t index = 0; index < buttonCount; ++index) {
      SCOPED_TRACE(std::to_string(slot) + "/" + std::to_string(index));
      EXPECT_EQ(editState->currFWProfile().btnInfo[index].FuncTableId,
                factory.btnInfo[index].FuncTableId);
      EXPECT_EQ(editState->currFWProfile().btnInfo[index].btnType, factory.btnInfo[index].btnType);
      EXPECT_EQ(editState->currFWProfile().btnInfo[index].KeyBit[0],
                factory.btnInfo[index].KeyBit[0]);
    }
    EXPECT_EQ(editState->currFWProfile().liftHeight, factory.liftHeight);
    EXPECT_EQ(editState->currFWProfile().lightColorArr[3].cG, factory.lightColorArr[3].cG);
  }
}

TEST_F(ProfileRead, WritingTakesTheNameOfTheLibrary) {
  library().setCurrFWProfileName("Game");
  editState->currFWProfile().liftHeight = 4;
  EXPECT_TRUE(NerinAction::setFWProfileData(5).isDone());
  EXPECT_EQ(mouse().slotName(5), "Game");
  EXPECT_EQ(mouse().imageReport(5)[5], 0x24);
  EXPECT_FALSE(mouse().hasUnrefreshedWrites());
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(ProfileRead, WritingUnderAForeignNameLeavesTheOldNameOnTheMouse) {
  library().setCurrFWProfileName("Sp\xC3\xA4ter");
  editState->currFWProfile().liftHeight = 4;
  EXPECT_TRUE(NerinAction::setFWProfileData(5).isDone());
  EXPECT_EQ(sent().size(), 2U);
  EXPECT_EQ(mouse().slotName(5), "Profile#6");
  EXPECT_EQ(mouse().imageReport(5)[5], 0x24);
}

TEST_F(ProfileRead, ChoosingASlotWritesTheMemoryAndTheCommand) {
  EXPECT_TRUE(NerinAction::setProfileIndexToDevice(7).isDone());
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 de19a70000000000", "SLEEP 30",
                                   "SET 0300 0 c407070000000000", "SLEEP 30"));
  EXPECT_EQ(mouse().activeSlot(), 7);
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 7);
}

TEST_F(ProfileRead, TheActiveSlotIsTheLowNibble) {
  for (int value = 0; value < 256; ++value) {
    EXPECT_TRUE(NerinAction::setAdrrData(static_cast<std::uint8_t>(value), 25).isDone());
    EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, value % 16);
  }
}

TEST_F(ProfileRead, RedefaultingHasNoEffect) {
  NerinAction::redefaultFWProfile(3);
  EXPECT_THAT(trace(), IsEmpty());
}

}  // namespace
