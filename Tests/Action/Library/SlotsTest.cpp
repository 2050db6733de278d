#include <cstring>

#include <gmock/gmock.h>

#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/PreferenceFile.h"
#include "Tests/Support/ActionTest.h"

// The links between the mouse's slots and the library.

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr std::uint64_t notLinked = ~std::uint64_t{0};

class Slots : public ActionTest {
 protected:
  static std::vector<std::string> names() { return namesOf(library().profileArr()); }
  PreferenceFile preferences() const { return PreferenceFile(preferenceFile()); }
};

TEST_F(Slots, OnlyTheTenExist) {
  library().setCurrFWProfileIndex(7);
  EXPECT_EQ(library().currFWProfileIndex(), 7);
  for (const int index : {-1, 10, 15, 1000}) {
    library().setCurrFWProfileIndex(index);
    library().setFwProfileId(3, index);
    EXPECT_EQ(library().currFWProfileIndex(), 7);
    EXPECT_EQ(library().getProfileByFWProIndex(index), nullptr);
  }
  EXPECT_THAT(library().fwProfileID(), Each(notLinked));
}

TEST_F(Slots, MinusOneIsNoLink) {
  library().setFwProfileId(5, 3);
  EXPECT_EQ(library().fwProfileID()[3], 5U);
  library().setFwProfileId(-1, 3);
  EXPECT_EQ(library().fwProfileID()[3], notLinked);
}

TEST_F(Slots, ALinkLeadsToItsProfile) {
  const auto profile = library().addProfile();
  library().setFwProfileId(1, 3);
  EXPECT_EQ(library().getProfileByFWProIndex(3), profile);
  EXPECT_EQ(library().getProfileByFWProIndex(4), nullptr);
  library().setFwProfileId(99, 3);
  EXPECT_EQ(library().getProfileByFWProIndex(3), nullptr);
}

TEST_F(Slots, HaveTheirFactoryProfiles) {
  EXPECT_THAT(library().defaultProfileArrs(), SizeIs(10));
  EXPECT_EQ(library().currDefProfile(), nullptr);
  for (int slot = 0; slot < 10; ++slot) {
    library().setCurrFWProfileIndex(slot);
    EXPECT_EQ(library().currDefProfile()->name(), "Profile#" + std::to_string(slot + 1));
    EXPECT_EQ(library().defaultProfile(), library().currDefProfile());
  }
}

TEST_F(Slots, AMissingFactoryFileLeavesItsSlotWithoutOne) {
  const auto folder = home() / "resources";
  writeText(folder / "Profile#1.pro", profileBytes(1, "One", 2, true));
  setResourceFolder(folder);
  EXPECT_THAT(library().defaultProfileArrs(), SizeIs(10));
  library().setCurrFWProfileIndex(3);
  EXPECT_EQ(library().defaultProfile(), nullptr);
  EXPECT_EQ(library().currDefProfile(), nullptr);
  const _BTN_INFO zero{};
  const _BTN_INFO info = library().getDefBtnInfoByIndex(0);
  EXPECT_EQ(std::memcmp(&info, &zero, sizeof zero), 0);
  library().setCurrFWProfileIndex(0);
  EXPECT_EQ(library().defaultProfile()->name(), "One");
}

TEST_F(Slots, AFactoryButtonIsThatOfTheCurrentSlot) {
  const _BTN_INFO zero{};
  _BTN_INFO info = library().getDefBtnInfoByIndex(0);
  EXPECT_EQ(std::memcmp(&info, &zero, sizeof zero), 0) << "no slot was chosen yet";
  library().setCurrFWProfileIndex(2);
  info = library().getDefBtnInfoByIndex(15);
  EXPECT_EQ(info.FuncTableId, 1U);
  EXPECT_EQ(info.KeyBit[0], 7U);
  for (const int index : {-1, 16, 100000}) {
    info = library().getDefBtnInfoByIndex(index);
    EXPECT_EQ(std::memcmp(&info, &zero, sizeof zero), 0) << index;
  }
}

TEST_F(Slots, TheCurrentNameFollowsTheSelection) {
  library().setCurrFWProfileName("Typed");
  library().refreshFWCurrName();
  EXPECT_EQ(library().currFWProfileName(), "Typed");
  library().setCurrProfile(library().addProfile());
  library().refreshFWCurrName();
  EXPECT_EQ(library().currFWProfileName(), "NewPF_1");
}

TEST_F(Slots, LinkRecordsAreBooleansUnderTheNextNumber) {
  library().setFwProfileId(4, 2);
  EXPECT_TRUE(library().saveFWProfileIdByIndex(3));
  EXPECT_EQ(preferences().boolFor("Profile_3"), true);
  EXPECT_EQ(library().getFWProfileIdByIndex(3), 1);
  EXPECT_EQ(preferences().boolFor("Profile_2"), std::nullopt);
}

TEST_F(Slots, LinkRecordsHoldTheLowByteOnly) {
  library().setFwProfileId(256, 2);
  EXPECT_TRUE(library().saveFWProfileIdByIndex(3));
  EXPECT_EQ(preferences().boolFor("Profile_3"), false);
  EXPECT_EQ(library().getFWProfileIdByIndex(3), 0);
}

TEST_F(Slots, ASlotWithoutALinkIsStoredAsTrue) {
  library().setFwProfileId(-1, 4);
  EXPECT_TRUE(library().saveFWProfileIdByIndex(5));
  EXPECT_EQ(library().getFWProfileIdByIndex(5), 1);
}

TEST_F(Slots, LinkRecordsAreNumberedFromOneToTen) {
  for (const int k : {-1, 0, 11, 100}) {
    EXPECT_TRUE(library().saveFWProfileIdByIndex(k));
    EXPECT_EQ(library().getFWProfileIdByIndex(k), -1);
  }
  EXPECT_FALSE(std::filesystem::exists(preferenceFile()));
  EXPECT_TRUE(library().saveFWProfileIdByIndex(10));
  EXPECT_EQ(library().getFWProfileIdByIndex(10), 1);
  EXPECT_EQ(library().getFWProfileIdByIndex(9), -1);
}

TEST_F(Slots, TheTableAfterAReloadIsShiftedByOne) {
  library().fwProfileID() = {1, 2, 3, 4, 256, 6, 7, 8, 9, 10};
  for (int k = 1; k <= 10; ++k) {
    EXPECT_TRUE(library().saveFWProfileIdByIndex(k));
  }
  endProgram();
  EXPECT_THAT(library().fwProfileID(), ElementsAre(notLinked, 1, 1, 1, 1, 0, 1, 1, 1, 1));
}

TEST_F(Slots, SavingASlotWithoutALinkCreatesOneProfile) {
  library().setCurrFWProfileIndex(3);
  library().setFwProfileId(-1, 3);
  library().setCurrFWProfileName("Game");
  editState->edit().poRate = 2;
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  ASSERT_THAT(names(), ElementsAre("Game"));
  const auto profile = library().profileArr().front();
  EXPECT_EQ(library().currProfile(), profile);
  EXPECT_EQ(library().fwProfileID()[3], profile->profileId());
  // The edited record replaces the whole factory record.
  EXPECT_EQ(std::memcmp(&profile->profileData(), &editState->selProfile(),
                        sizeof editState->selProfile()),
            0);
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Game.pro"));
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_THAT(names(), ElementsAre("Game"));
  // The link is stored under the slot's own number, which belongs to the slot before.
  EXPECT_EQ(library().getFWProfileIdByIndex(3), 1);
  EXPECT_EQ(library().getFWProfileIdByIndex(4), -1);
}

TEST_F(Slots, SavingALinkedSlotRenamesTheSelection) {
  library().setCurrFWProfileIndex(3);
  library().setCurrProfile(library().addProfileByName("Old", nullptr));
  library().setFwProfileId(1, 3);
  library().setCurrFWProfileName("New");
  editState->edit().poRate = 2;
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_THAT(names(), ElementsAre("New"));
  EXPECT_EQ(library().currProfile()->profileData().poRate, 2U);
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("New.pro"));
}

TEST_F(Slots, SavingALinkedSlotWithoutASelectionStoresNothing) {
  library().addProfileByName("Old", nullptr)->setProRate(1);
  library().setFwProfileId(1, 0);
  library().setCurrFWProfileName("New");
  editState->edit().poRate = 2;
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_THAT(names(), ElementsAre("Old"));
  EXPECT_EQ(library().profileArr().front()->profileData().poRate, 1U);
}

TEST_F(Slots, SavingTheFirstSlotWritesNoLinkRecord) {
  library().setCurrFWProfileIndex(0);
  library().setFwProfileId(-1, 0);
  library().setCurrFWProfileName("Game");
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_FALSE(std::filesystem::exists(preferenceFile()));
}

TEST_F(Slots, SavingUnderATakenNameMakesTwoProfilesOfOneName) {
  library().addProfileByName("Game", nullptr);
  library().setCurrFWProfileName("Game");
  library().setFwProfileId(-1, 0);
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_THAT(names(), ElementsAre("Game", "Game"));
  EXPECT_THAT(namesIn(libraryFolder()), SizeIs(2));
}

TEST_F(Slots, ChoosingAProfileForASlotHasNoEffectInTheLibrary) {
  library().addProfile();
  library().setFWProfileByIndex(0);
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}

}  // namespace
