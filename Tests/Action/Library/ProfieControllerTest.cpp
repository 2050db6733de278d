#include <gmock/gmock.h>

#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileMenuData.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXLogger.h"
#include "Tests/Support/ActionTest.h"

// The list of profiles: names, ids, selection, import.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class Library : public ActionTest {
 protected:
  static ProfieController::Profile add(const std::string& name) {
    return library().addProfileByName(name, nullptr);
  }
  static ProfieController::Profile add(const std::string& name, std::uint64_t id) {
    auto profile = add(name);
    profile->setProfileId(id);
    return profile;
  }
  static std::vector<std::string> names() { return namesOf(library().profileArr()); }
  static std::vector<std::uint64_t> ids() { return idsOf(library().profileArr()); }

  // Adds profiles "0", "1", …; those in `defaults` are factory profiles.
  static void addNumbered(int count, const std::vector<int>& defaults = {}) {
    for (int n = 0; n < count; ++n) {
      add(std::to_string(n));
    }
    for (const int n : defaults) {
      library().profileArr()[static_cast<std::size_t>(n)]->setIsDefault(true);
    }
  }
  static std::string nextWithoutDefault(int n) {
    const auto next =
        library().getNextProfieWithNodef(library().profileArr()[static_cast<std::size_t>(n)]);
    return next ? next->name().value_or("") : "none";
  }

  std::filesystem::path outside(const std::string& bytes) const {
    const auto path = home() / "outside.pro";
    writeText(path, bytes);
    return path;
  }
};

TEST_F(Library, IsOneForTheProcess) {
  EXPECT_EQ(&ProfieController::getShareProCon(), &ProfieController::getShareProCon());
}

TEST_F(Library, AMissingFolderIsAnEmptyLibrary) {
  EXPECT_EQ(library().getProfileCount(), 0U);
  EXPECT_EQ(library().getNewProfileId(), 1U);
  EXPECT_EQ(library().getNewProfileName(), "NewPF_1");
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_TRUE(std::filesystem::is_directory(libraryFolder()));
  EXPECT_EQ(library().sysProPath(), libraryFolder());
}

TEST_F(Library, TheFirstFreeNumberMakesANewName) {
  add("NewPF_1");
  add("NewPF_3");
  EXPECT_EQ(library().getNewProfileName(), "NewPF_2");
}

TEST_F(Library, ACopyTakesTheFirstFreeNumberOfItsName) {
  const auto game = add("Game");
  add("Game_1");
  EXPECT_EQ(library().getNewProfileNameByData(*game), "Game_2");
}

TEST_F(Library, NamesAreComparedExactly) {
  const auto game = add("Game");
  EXPECT_FALSE(library().checkProfileName("Game", nullptr));
  EXPECT_TRUE(library().checkProfileName("game", nullptr));
  EXPECT_TRUE(library().checkProfileName("Game", game));
  add("Game");
  EXPECT_FALSE(library().checkProfileName("Game", game));
}

TEST_F(Library, IdsAreTheLargestPlusOne) {
  add("a", 7);
  add("b", 3);
  EXPECT_EQ(library().getNewProfileId(), 8U);
  EXPECT_FALSE(library().checkProfileId(3, nullptr));
  EXPECT_TRUE(library().checkProfileId(3, library().getProfileByName("b")));
  EXPECT_TRUE(library().checkProfileId(4, nullptr));
}

TEST_F(Library, TheLargestIdIsUsedAgainAfterItsProfileWent) {
  add("a");
  const auto last = add("b");
  library().delProfile(last);
  EXPECT_EQ(add("c")->profileId(), 2U);
}

TEST_F(Library, ANewProfileTakesTheRecordOfItsSource) {
  ProfileValue source;
  source.setProRate(2);
  source.setIsDefault(true);
  const auto profile = library().addProfileByName("Game", std::make_shared<ProfileValue>(source));
  EXPECT_EQ(profile->profileData().poRate, 2U);
  EXPECT_FALSE(profile->isDefault());
  EXPECT_EQ(profile->name(), "Game");
}

TEST_F(Library, ANewProfileWithoutASourceIsTheFactoryProfileOfTheSlot) {
  library().setCurrFWProfileIndex(4);
  const auto profile = library().addProfile();
  EXPECT_EQ(profile->name(), "NewPF_1");
  EXPECT_EQ(profile->profileData().lightColorArr[0].cB, 255U);
  EXPECT_EQ(profile->profileData().lightColorArr[0].cG, 0U);
  EXPECT_FALSE(profile->isDefault());
}

TEST_F(Library, ANewProfileWithoutFactoryFilesIsAllZero) {
  setResourceFolder(home());
  EXPECT_EQ(library().addProfile()->profileData().dpiLevel, 0U);
}

TEST_F(Library, ANewProfileIsAppendedWithoutSorting) {
  add("a", 7);
  add("b", 3);
  EXPECT_THAT(ids(), ElementsAre(7, 3));
  library().sortProfile();
  EXPECT_THAT(ids(), ElementsAre(3, 7));
}

TEST_F(Library, ImportingAMissingFileIsToldApart) {
  EXPECT_EQ(library().addByPath(home() / "missing.pro"), ProfieController::NoFile);
  EXPECT_EQ(library().addByPath(home() / "missing.pro", true), ProfieController::NoFile);
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Library, ImportingATakenNameRenamesOnlyWhenAsked) {
  add("Game");
  add("Game_1");
  const auto path = outside(profileBytes(9, "Game", 3));
  EXPECT_EQ(library().addByPath(path), ProfieController::NameTaken);
  EXPECT_EQ(library().addByPath(path, false), ProfieController::NameTaken);
  EXPECT_THAT(names(), SizeIs(2));
  EXPECT_EQ(library().addByPath(path, true), ProfieController::Added);
  EXPECT_THAT(names(), ElementsAre("Game", "Game_1", "Game_2"));
  EXPECT_EQ(library().profileArr().back()->profileId(), 9U);
}

TEST_F(Library, ImportingATakenIdGivesANewOne) {
  add("Game", 9);
  EXPECT_EQ(library().addByPath(outside(profileBytes(9, "Other"))), ProfieController::Added);
  EXPECT_THAT(ids(), ElementsAre(9, 10));
}

TEST_F(Library, ImportingStopsAtFiftyButWhatLiesInTheFolderIsTakenIn) {
  for (std::size_t n = 1; n < limits::profiles; ++n) {
    library().addProfile();
  }
  const auto path = outside(profileBytes(999, "Game"));
  EXPECT_EQ(library().addByPath(path, true), ProfieController::Added);
  EXPECT_EQ(library().addByPath(path, true), ProfieController::Full);
  EXPECT_EQ(library().getProfileCount(), limits::profiles);
  EXPECT_EQ(library().addByPath(outside(profileBytes(998, "Other"))), ProfieController::Added);
  EXPECT_EQ(library().getProfileCount(), limits::profiles + 1);
}

TEST_F(Library, ImportingLessThanAWholeProfileAddsNothing) {
  const std::string whole = profileBytes(9, "Game");
  EXPECT_EQ(library().addByPath(outside(""), true), ProfieController::NoFile);
  EXPECT_EQ(library().addByPath(outside(whole.substr(0, whole.size() - 1)), true),
            ProfieController::NoFile);
  EXPECT_EQ(library().addByPath(home(), true), ProfieController::NoFile);
  EXPECT_EQ(library().addByPath("/dev/zero", true), ProfieController::NoFile);
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_EQ(library().addByPath(outside(whole + "more"), true), ProfieController::Added);
}

TEST_F(Library, AShortFileOfTheFolderMakesANamelessProfile) {
  EXPECT_EQ(library().addByPath(outside("")), ProfieController::Added);
  EXPECT_EQ(library().profileArr().back()->profileId(), 0U);
  EXPECT_EQ(library().profileArr().back()->name(), "");
}

TEST_F(Library, AnAllOnesIdCountsAsTaken) {
  EXPECT_EQ(library().addByPath(outside(profileBytes(~std::uint64_t{0}, "Game"))),
            ProfieController::Added);
  EXPECT_THAT(ids(), ElementsAre(1));
}

TEST_F(Library, AnIdBesideAllOnesDoesNotMakeTheNextOneWrap) {
  add("a", ~std::uint64_t{0} - 1);
  const auto next = add("b");
  EXPECT_NE(next->profileId(), ProfieController::notLinked);
  EXPECT_NE(next->profileId(), 0U);
  EXPECT_TRUE(library().checkProfileId(next->profileId(), next));
}

TEST_F(Library, SelectsByNameIndexAndId) {
  const auto a = add("a", 5);
  const auto b = add("b", 6);
  library().setSelectByName("b");
  EXPECT_EQ(library().currProfile(), b);
  EXPECT_EQ(library().getCurrProfileIndex(), 1U);
  library().setSelectByIndex(0);
  EXPECT_EQ(library().currProfile(), a);
  library().setSelectById(6);
  EXPECT_EQ(library().currProfile(), b);
  EXPECT_EQ(library().currFWProfileName(), "b");
  library().setSelectById(99);
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_EQ(library().currFWProfileName(), "b");
  library().setSelectByName("missing");
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_EQ(library().getCurrProfileIndex(), ProfieController::notFound);
}

TEST_F(Library, AnIndexOutsideTheListSelectsNothingElse) {
  const auto a = add("a");
  library().setSelectByIndex(0);
  library().setSelectByIndex(-1);
  EXPECT_EQ(library().currProfile(), a);
  library().setSelectByIndex(1);
  EXPECT_EQ(library().currProfile(), a);
}

TEST_F(Library, LooksUpTheFirstMatch) {
  const auto first = add("Game", 4);
  add("Game", 4);
  EXPECT_EQ(library().getProfileByName("Game"), first);
  EXPECT_EQ(library().getProValueByProid(4), first);
  EXPECT_EQ(library().getProfileByName("game"), nullptr);
  EXPECT_EQ(library().getProfileByName(std::nullopt), nullptr);
  EXPECT_EQ(library().getProValueByProid(5), nullptr);
}

TEST_F(Library, CopiesTheEditedRecordInAndOutOfTheSelection) {
  editState->edit().poRate = 2;
  library().saveSelProfileToData();
  library().refreshSelProfileFromData();
  EXPECT_EQ(editState->selProfile().poRate, 2U);
  const auto a = add("a");
  library().setCurrProfile(a);
  library().saveSelProfileToData();
  EXPECT_EQ(a->profileData().poRate, 2U);
  editState->edit().poRate = 1;
  library().refreshSelProfileFromData();
  EXPECT_EQ(editState->selProfile().poRate, 2U);
}

TEST_F(Library, DeletingTheSelectionClearsIt) {
  const auto a = add("a");
  const auto b = add("b");
  library().setCurrProfile(a);
  library().delProfile(b);
  EXPECT_EQ(library().currProfile(), a);
  library().delProfile(library().currProfile());
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(Library, DeletesByName) {
  add("a");
  add("b");
  library().delProByName("a");
  library().delProByName("missing");
  library().delProByName(std::nullopt);
  EXPECT_THAT(names(), ElementsAre("b"));
}

TEST_F(Library, TheNextProfileOfTheLastIsTheOneBefore) {
  EXPECT_EQ(library().getNextProfie(nullptr), nullptr);
  const auto a = add("a");
  EXPECT_EQ(library().getNextProfie(a), nullptr);
  const auto b = add("b");
  EXPECT_EQ(library().getNextProfie(a), b);
  EXPECT_EQ(library().getNextProfie(b), a);
}

TEST_F(Library, TheNextOwnProfileNeedsSevenProfiles) {
  addNumbered(6);
  EXPECT_EQ(nextWithoutDefault(0), "none");
}

TEST_F(Library, TheNextOwnProfileIsTheOneAfterTheNext) {
  addNumbered(8);
  EXPECT_EQ(nextWithoutDefault(0), "2");
  EXPECT_EQ(nextWithoutDefault(5), "7");
}

TEST_F(Library, TheNextOwnProfileSkipsFactoryProfiles) {
  addNumbered(9, {2, 4});
  EXPECT_EQ(nextWithoutDefault(0), "6");
}

TEST_F(Library, TheNextOwnProfileNeverLooksPastTheList) {
  addNumbered(7);
  EXPECT_EQ(nextWithoutDefault(5), "none");
  // From the last profile, the rule finds the profile itself.
  EXPECT_EQ(nextWithoutDefault(6), "none");
}

TEST_F(Library, TheNextOwnProfileOfAStrangerIsTheSecond) {
  addNumbered(7);
  const auto next = library().getNextProfieWithNodef(std::make_shared<ProfileValue>());
  ASSERT_NE(next, nullptr);
  EXPECT_EQ(next->name(), "1");
}

TEST_F(Library, OwnProfilesAreListedRemovedAndReplaced) {
  addNumbered(4, {1});
  ProfieController::Profiles own;
  library().getNoDefaultProArr(own);
  EXPECT_THAT(namesOf(own), ElementsAre("0", "2", "3"));
  own.pop_back();
  library().setNoDefaultProArr(own);
  EXPECT_THAT(names(), ElementsAre("1", "0", "2"));
  library().removeAllNoDefault();
  EXPECT_THAT(names(), ElementsAre("1"));
}

TEST_F(Library, LogsItsProfiles) {
  add("a", 5);
  std::vector<std::string> lines;
  LXLogger::setObserver([&](LXLogger::Level, std::string_view line) { lines.emplace_back(line); });
  library().des();
  LXLogger::setObserver({});
  EXPECT_THAT(lines, ElementsAre("a=5"));
}

TEST_F(Library, AMenuEntryCarriesItsProfile) {
  const auto profile = add("Game", ~std::uint64_t{0} - 4);
  const auto entry = ProfileMenuData::initWithProfileValue(profile);
  EXPECT_EQ(entry->titleStr(), "Game");
  EXPECT_EQ(entry->profileName(), "Game");
  EXPECT_EQ(entry->profileId(), -5);
  EXPECT_EQ(entry->profileData(), profile);
  // It keeps a profile after the library has deleted it.
  library().delProfile(profile);
  EXPECT_EQ(entry->profileData()->name(), "Game");
  profile->setName(std::nullopt);
  EXPECT_EQ(ProfileMenuData::initWithProfileValue(profile)->titleStr(), "");
}

}  // namespace
