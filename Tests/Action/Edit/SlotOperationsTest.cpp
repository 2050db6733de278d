#include <cstring>

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/SlotAsRead.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class SlotOperations : public ActionTest {
 protected:
  SlotOperations() { beginProgram(); }

  static ProfieController::Profile addProfile(const std::string& name) {
    return library().addProfileByName(name, nullptr);
  }
};

TEST_F(SlotOperations, LoadingASlotTakesImageNameAndLink) {
  EXPECT_TRUE(library().setLinkAppPath("/app", 4, true));
  editState->setIsHaveNewName(true);
  EXPECT_TRUE(NerinAction::loadSlot(4).value);
  EXPECT_EQ(library().currFWProfileIndex(), 4);
  EXPECT_EQ(library().currFWProfileName(), "Profile#5");
  EXPECT_EQ(library().currActivePath(), "/app");
  EXPECT_TRUE(library().currIsActive());
  EXPECT_EQ(differenceOf(editState->selProfile(), editState->currFWProfile()), "");
  EXPECT_EQ(editState->selProfile().lightColorArr[0].cB, 255U);
  EXPECT_FALSE(editState->isHaveNewName());
  EXPECT_TRUE(NerinAction::loadSlot(5).value);
  EXPECT_EQ(library().currActivePath(), std::nullopt);
  EXPECT_FALSE(library().currIsActive());
}

TEST_F(SlotOperations, LoadingALinkedSlotOverwritesTheLibrarysRecord) {
  const auto profile = addProfile("Profile#5");
  _Nerin_PROFILE record = profile->profileData();
  record.islightOnArr[1] = 1;
  setText(record.btnInfo[3].app_path, "/usr/bin/game");
  profile->setProfileData(record);
  EXPECT_TRUE(NerinAction::loadSlot(4).value);
  EXPECT_EQ(library().currProfile(), profile);
  EXPECT_EQ(library().fwProfileID()[4], profile->profileId());
  EXPECT_EQ(differenceOf(profile->profileData(), editState->selProfile()), "");
  EXPECT_EQ(profile->profileData().islightOnArr[1], 0U);
  EXPECT_EQ(profile->profileData().btnInfo[3].app_path[0], '\0');
  EXPECT_THAT(namesIn(libraryFolder()), IsEmpty()) << "nothing is saved yet";
}

TEST_F(SlotOperations, LoadingASlotWithoutALinkSelectsNoProfile) {
  const auto profile = addProfile("Other");
  library().setCurrProfile(profile);
  const _Nerin_PROFILE before = profile->profileData();
  EXPECT_TRUE(NerinAction::loadSlot(4).value);
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_EQ(library().fwProfileID()[4], ProfieController::notLinked);
  EXPECT_EQ(differenceOf(profile->profileData(), before), "");
}

TEST_F(SlotOperations, ApplyingToANamelessSlotChangesNoOtherProfile) {
  const auto play = library().addProfileByName("Play", nullptr);
  const auto work = library().addProfileByName("Work", nullptr);
  const auto put = [](int slot, const auto& profile) {
    static_cast<void>(NerinAction::loadSlot(slot));
    NerinAction::bindSlot(profile->profileId());
    EXPECT_TRUE(NerinAction::applySlot().isDone());
  };
  put(1, work);
  put(0, play);
  const std::uint32_t before = play->profileData().modeType;
  mouse().clearSlot(1);
  EXPECT_FALSE(NerinAction::loadSlot(1).value);
  editState->edit().modeType = 1 - before;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(play->name(), "Play");
  EXPECT_EQ(play->profileData().modeType, before);
  EXPECT_EQ(work->name(), "Work");
  EXPECT_THAT(namesOf(library().profileArr()), testing::ElementsAre("Play", "Work", "Play_1"));
}

TEST_F(SlotOperations, LoadingANamelessSlotKeepsTheEditedProfile) {
  mouse().clearSlot(4);
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
  const _Nerin_PROFILE before = editState->selProfile();
  EXPECT_TRUE(library().setLinkAppPath("/app", 4, true));
  EXPECT_FALSE(NerinAction::loadSlot(4).value);
  EXPECT_EQ(differenceOf(editState->selProfile(), before), "");
  EXPECT_EQ(library().currFWProfileName(), "Profile#4");
  EXPECT_EQ(library().currFWProfileIndex(), 4);
  EXPECT_EQ(library().currActivePath(), "/app");
}

TEST_F(SlotOperations, ASlotThatDoesNotExistIsPassedOver) {
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
  const _Nerin_PROFILE before = editState->selProfile();
  const auto links = library().fwProfileID();
  clearTrace();
  for (const int slot : {-1, 10, 15, 255, 259}) {
    EXPECT_FALSE(NerinAction::loadSlot(slot).value) << slot;
  }
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(differenceOf(editState->selProfile(), before), "");
  EXPECT_EQ(library().currFWProfileIndex(), 3);
  EXPECT_EQ(library().fwProfileID(), links);
}

TEST_F(SlotOperations, LoadingStartsTheCountOfGeneratedNamesAfresh) {
  editState->setIsHaveNewName(true);
  addMacro(1, "m", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  library().setCurrFWProfileName("Game");
  EXPECT_TRUE(NerinAction::writeSlot(2).isDone());
  NerinAction::macroStore->macroListArrs.clear();
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  ASSERT_NE(NerinAction::getMacroByName("m"), nullptr);
  EXPECT_FALSE(NerinAction::getMacroByName("m")->isNoDisplay());
}

TEST_F(SlotOperations, LoadingNeverSavesTheMacroCatalogue) {
  const std::string before = textOfFile(supportFolder() / "MenuInfo.xml");
  addMacro(1, "m", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  library().setCurrFWProfileName("Game");
  EXPECT_TRUE(NerinAction::writeSlot(2).isDone());
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(textOfFile(supportFolder() / "MenuInfo.xml"), before);
}

TEST_F(SlotOperations, AnEditedMacroThatWasNotAppliedIsRevertedByLoading) {
  const auto macro = addMacro(1, "m", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  library().setCurrFWProfileName("Game");
  EXPECT_TRUE(NerinAction::writeSlot(2).isDone());
  macro->keyInfoArr().front()->setKeyCode(36);
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(eventsOf(*macro), (Events{{49, 0, 0}}));
}

TEST_F(SlotOperations, BindingASlotTakesTheProfileAsTheEditedOne) {
  const auto profile = addProfile("Game");
  profile->setProRate(2);
  library().setCurrFWProfileIndex(6);
  NerinAction::bindSlot(profile->profileId());
  EXPECT_EQ(library().fwProfileID()[6], profile->profileId());
  EXPECT_EQ(library().currProfile(), profile);
  EXPECT_EQ(library().currFWProfileName(), "Game");
  EXPECT_EQ(differenceOf(editState->selProfile(), profile->profileData()), "");
}

TEST_F(SlotOperations, BindingKeepsAllBitsOfTheId) {
  const auto profile = addProfile("Game");
  profile->setProfileId(0x1122334455667788);
  NerinAction::bindSlot(profile->profileId());
  EXPECT_EQ(library().fwProfileID()[0], 0x1122334455667788U);
  EXPECT_EQ(library().getProfileByFWProIndex(0), profile);
}

TEST_F(SlotOperations, BindingDoesNotTakeTheLinkOfTheProfile) {
  const auto profile = addProfile("Game");
  profile->setActiveAppPath("/profile");
  library().setCurrActivePath("/slot");
  NerinAction::bindSlot(profile->profileId());
  EXPECT_EQ(library().currActivePath(), "/slot");
  EXPECT_TRUE(NerinAction::saveLinkApp().isDone());
  EXPECT_EQ(profile->activeAppPath(), "/slot");
}

TEST_F(SlotOperations, TheLinkIsSavedWithProfileAndPreferences) {
  const auto profile = addProfile("Game");
  library().setCurrProfile(profile);
  library().setCurrFWProfileIndex(6);
  library().setCurrActivePath("/app");
  library().setCurrIsActive(true);
  EXPECT_TRUE(NerinAction::saveLinkApp().isDone());
  EXPECT_EQ(profile->activeAppPath(), "/app");
  EXPECT_TRUE(profile->isActiveApp());
  bool isActive = false;
  EXPECT_EQ(library().getLinkAppPath(6, isActive), "/app");
  EXPECT_TRUE(isActive);
}

TEST_F(SlotOperations, WithoutASelectionTheLinkIsSavedInThePreferencesOnly) {
  library().setCurrIsActive(true);
  EXPECT_TRUE(NerinAction::saveLinkApp().isDone());
  bool isActive = false;
  EXPECT_EQ(library().getLinkAppPath(0, isActive), "");
  EXPECT_TRUE(isActive);
}

TEST_F(SlotOperations, RenamingAProfileOfTwoSlotsLosesTheOtherSlotsLink) {
  const auto profile = addProfile("Profile#2");
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  library().fwProfileID()[5] = profile->profileId();
  library().setCurrFWProfileName("Profile#6");
  EXPECT_TRUE(NerinAction::setFWProfileName(5, "Profile#2").isDone());
  library().setCurrFWProfileIndex(1);
  library().setCurrFWProfileName("Renamed");
  EXPECT_TRUE(NerinAction::setFWProfileName(1, "Renamed").isDone());
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_TRUE(NerinAction::loadSlot(5).value);
  EXPECT_EQ(library().fwProfileID()[5], ProfieController::notLinked);
}

}  // namespace
