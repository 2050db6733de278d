#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/FileLock.h"
#include "Tests/Support/ActionTest.h"

// What another program, or the user, did in the library's folder since it was read.

namespace fs = std::filesystem;

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class LibraryChanges : public ActionTest {
 protected:
  LibraryChanges() {
    putProfile("a.pro", 1, "a", 1);
    putProfile("b.pro", 2, "b", 2);
    library();
  }

  fs::path aside() const { return supportFolder() / "Set aside"; }
  static std::vector<std::string> names() { return namesOf(library().profileArr()); }
  static std::uint32_t rateOf(const std::string& name) {
    return library().getProfileByName(name)->profileData().poRate;
  }
  static void save() { EXPECT_FALSE(library().saveToSys()); }
};

TEST_F(LibraryChanges, NoneMeanThatASaveWritesTheList) {
  save();
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_FALSE(fs::exists(aside()));
}

TEST_F(LibraryChanges, AProfileThatAppearedJoinsTheList) {
  putProfile("c.pro", 3, "c", 3);
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro", "c.pro"));
  EXPECT_EQ(rateOf("c"), 3U);
}

TEST_F(LibraryChanges, AProfileThatWasDeletedLeavesTheList) {
  fs::remove(libraryFolder() / "b.pro");
  save();
  EXPECT_THAT(names(), ElementsAre("a"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro"));
}

TEST_F(LibraryChanges, AProfileThatWasDeletedAndEditedHereStays) {
  fs::remove(libraryFolder() / "b.pro");
  library().getProfileByName("b")->setProRate(3);
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
}

TEST_F(LibraryChanges, AProfileThatWasChangedIsTakenOver) {
  putProfile("b.pro", 2, "b", 3);
  save();
  EXPECT_EQ(rateOf("b"), 3U);
  EXPECT_EQ(ProfileValue::initWithPath(libraryFolder() / "b.pro")->profileData().poRate, 3U);
}

TEST_F(LibraryChanges, OfAProfileThatBothChangedOursIsSavedAndTheirsSetAside) {
  putProfile("b.pro", 2, "b", 3);
  library().getProfileByName("b")->setProRate(0);
  save();
  EXPECT_EQ(ProfileValue::initWithPath(libraryFolder() / "b.pro")->profileData().poRate, 0U);
  EXPECT_EQ(ProfileValue::initWithPath(aside() / "b.pro")->profileData().poRate, 3U);
}

TEST_F(LibraryChanges, WhatTheLibraryCannotTakeIsSetAside) {
  putProfile("c.pro", 3, "a", 3);  // the name of another profile
  writeText(libraryFolder() / "notes.txt", "mine");
  writeText(libraryFolder() / "folder" / "inside", "mine");
  save();
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_THAT(namesIn(aside()), ElementsAre("c.pro", "folder", "notes.txt"));
  EXPECT_EQ(textOfFile(aside() / "folder" / "inside"), "mine");
}

TEST_F(LibraryChanges, WhatIsSetAsideReplacesNothingThatIsThere) {
  for (const char* text : {"first", "second"}) {
    writeText(libraryFolder() / "notes.txt", text);
    save();
  }
  EXPECT_EQ(textOfFile(aside() / "notes.txt"), "first");
  EXPECT_EQ(textOfFile(aside() / "notes~2.txt"), "second");
}

TEST_F(LibraryChanges, AFileThatCannotBeReadIsNoProfileAndSurvivesASave) {
  endProgram();
  fs::create_directory(libraryFolder() / "c.pro");
  library();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(namesIn(aside()), ElementsAre("c.pro"));
}

TEST_F(LibraryChanges, AFolderThatIsGoneDeletesNothing) {
  fs::remove_all(libraryFolder());
  save();
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
}

TEST_F(LibraryChanges, AreCountedFromTheLastSave) {
  save();
  putProfile("c.pro", 3, "c", 3);
  save();
  fs::remove(libraryFolder() / "c.pro");
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(LibraryChanges, ASlotWhoseProfileWasDeletedIsStoredAnew) {
  library().setCurrFWProfileIndex(4);
  library().fwProfileID()[4] = 2;
  library().setCurrFWProfileName("b");
  fs::remove(libraryFolder() / "b.pro");
  save();
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
}

TEST_F(LibraryChanges, AProfileThatIsGoneLeavesNoSlotLinkedToItsId) {
  library().fwProfileID()[3] = 2;
  library().fwProfileID()[4] = 1;
  fs::remove(libraryFolder() / "b.pro");
  save();
  EXPECT_EQ(library().fwProfileID()[3], ProfieController::notLinked);
  EXPECT_EQ(library().fwProfileID()[4], 1U);
  // The id is free again, and the slot must not find the new owner.
  library().addProfileByName("c", nullptr);
  EXPECT_EQ(library().getProfileByFWProIndex(3), nullptr);
}

TEST_F(LibraryChanges, AProfileThatWasRenamedStaysTheSameOne) {
  library().setCurrFWProfileIndex(4);
  library().fwProfileID()[4] = 2;
  library().setSelectById(2);
  const auto profile = library().currProfile();
  fs::remove(libraryFolder() / "b.pro");
  putProfile("z.pro", 2, "z", 2);
  save();
  EXPECT_THAT(names(), ElementsAre("a", "z"));
  EXPECT_EQ(library().currProfile(), profile);
  EXPECT_EQ(library().getProfileByFWProIndex(4), profile);
  EXPECT_EQ(library().currFWProfileName(), "z");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "z.pro"));
}

TEST_F(LibraryChanges, ANameThatWasTypedHereStaysWhenTheProfileWasRenamedThere) {
  library().setSelectById(2);
  library().setCurrFWProfileName("mine");
  fs::remove(libraryFolder() / "b.pro");
  putProfile("z.pro", 2, "z", 2);
  save();
  EXPECT_EQ(library().currFWProfileName(), "mine");
}

TEST_F(LibraryChanges, AnotherProfileWithTheIdOfADeletedOneIsNoRename) {
  library().fwProfileID()[4] = 2;
  fs::remove(libraryFolder() / "b.pro");
  putProfile("z.pro", 2, "z", 3);
  save();
  EXPECT_THAT(names(), ElementsAre("a", "z"));
  EXPECT_EQ(library().fwProfileID()[4], ProfieController::notLinked);
}

TEST_F(LibraryChanges, ANewIdOfAProfileIsFollowedByItsSlots) {
  library().fwProfileID()[4] = 2;
  putProfile("b.pro", 9, "b", 3);
  save();
  EXPECT_EQ(library().fwProfileID()[4], 9U);
}

TEST_F(LibraryChanges, AProfileThatWasDeletedHereAndChangedThereIsSetAside) {
  putProfile("b.pro", 2, "b", 3);
  library().delProByName("b");
  save();
  EXPECT_THAT(names(), ElementsAre("a"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro"));
  EXPECT_EQ(ProfileValue::initWithPath(aside() / "b.pro")->profileData().poRate, 3U);
}

TEST_F(LibraryChanges, NamesThatWereExchangedLoseNothing) {
  putProfile("a.pro", 2, "a", 2);
  putProfile("b.pro", 1, "b", 1);
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_THAT(namesIn(aside()), ElementsAre("a.pro", "b.pro"));
}

TEST_F(LibraryChanges, WhatWasSetAsideStaysInALibraryThatCouldNotBeSaved) {
  putProfile("b.pro", 2, "b", 3);
  putProfile("c.pro", 3, "a", 3);
  library().getProfileByName("b")->setProRate(0);
  for (int attempt = 0; attempt < 2; ++attempt) {
    durable::setFaultInjector(
        [](const char* step) { return std::string_view(step) == "make folder" ? ENOSPC : 0; });
    EXPECT_EQ(library().saveToSys().value(), ENOSPC);
    durable::setFaultInjector({});
    EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro", "c.pro"));
    EXPECT_THAT(namesIn(aside()), ElementsAre("b.pro", "c.pro"));
  }
  save();
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_THAT(namesIn(aside()), ElementsAre("b.pro", "c.pro"));
}

TEST_F(LibraryChanges, AProfileThatJoinedBeforeASaveThatFailedIsNotSetAside) {
  putProfile("c.pro", 3, "c", 3);
  durable::setFaultInjector(
      [](const char* step) { return std::string_view(step) == "make folder" ? ENOSPC : 0; });
  EXPECT_TRUE(library().saveToSys());
  durable::setFaultInjector({});
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b", "c"));
  EXPECT_FALSE(fs::exists(aside()));
}

TEST_F(LibraryChanges, StopTheSaveWhenTheyCannotBeSetAside) {
  putProfile("c.pro", 3, "a", 3);
  writeText(aside(), "a file in the way");
  EXPECT_TRUE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro", "c.pro"));
}

// --- What was read from the mouse --------------------------------------------------------------

// The profile holds what the mouse holds, and the library does not yet.
void readFromMouse(std::uint64_t id, std::uint32_t rate) {
  ProfieController& library = ProfieController::getShareProCon();
  library.setSelectById(id);
  editState->bind(library.currProfile()->profileData());
  editState->edit().poRate = rate;
  library.takeSelProfileFromMouse();
}

TEST_F(LibraryChanges, AProfileThatWasOnlyReadFromTheMouseIsDeletedByAnother) {
  readFromMouse(2, 3);
  fs::remove(libraryFolder() / "b.pro");
  save();
  EXPECT_THAT(names(), ElementsAre("a"));
  EXPECT_EQ(library().currProfile(), nullptr);
}

TEST_F(LibraryChanges, AProfileThatWasOnlyReadFromTheMouseIsChangedByAnother) {
  readFromMouse(2, 3);
  putProfile("b.pro", 2, "b", 1);
  save();
  EXPECT_EQ(rateOf("b"), 1U);
  EXPECT_FALSE(fs::exists(aside()));
}

TEST_F(LibraryChanges, WhatWasReadFromTheMouseIsSavedIfNobodyElseChangedIt) {
  readFromMouse(2, 3);
  save();
  EXPECT_EQ(ProfileValue::initWithPath(libraryFolder() / "b.pro")->profileData().poRate, 3U);
}

TEST_F(LibraryChanges, AnEditThatWasNotSavedStaysOneWhenTheMouseIsRead) {
  library().getProfileByName("b")->setName("mine");
  readFromMouse(2, 3);
  fs::remove(libraryFolder() / "b.pro");
  save();
  EXPECT_THAT(names(), ElementsAre("a", "mine"));
}

TEST_F(LibraryChanges, AnApplyOfWhatWasReadBringsBackAProfileThatAnotherDeleted) {
  library().setCurrFWProfileIndex(4);
  library().fwProfileID()[4] = 2;
  library().setCurrFWProfileName("b");
  readFromMouse(2, 3);
  fs::remove(libraryFolder() / "b.pro");
  EXPECT_FALSE(library().saveCurrFWProfileToList());
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_EQ(library().getProfileByFWProIndex(4), library().getProfileByName("b"));
}

// --- While the program runs ---------------------------------------------------------------------

TEST_F(LibraryChanges, AreFollowedWithoutASave) {
  using enum ProfieController::FolderNews;
  EXPECT_EQ(library().takeInFromDisk(), None);
  putProfile("c.pro", 3, "c", 3);
  fs::remove(libraryFolder() / "a.pro");
  EXPECT_EQ(library().takeInFromDisk(), Taken);
  EXPECT_THAT(names(), ElementsAre("b", "c"));
  EXPECT_EQ(library().takeInFromDisk(), None);
  fs::remove(libraryFolder() / "b.pro");
  putProfile("z.pro", 2, "z", 2);
  EXPECT_EQ(library().takeInFromDisk(), Taken);
  EXPECT_THAT(names(), ElementsAre("z", "c"));
  putProfile("c.pro", 3, "c", 2);
  EXPECT_EQ(library().takeInFromDisk(), Taken);
  EXPECT_EQ(rateOf("c"), 2U);
}

TEST_F(LibraryChanges, LeaveToASaveWhatOnlyASaveCanSettle) {
  putProfile("c.pro", 3, "a", 3);
  putProfile("b.pro", 2, "b", 3);
  library().getProfileByName("b")->setProRate(0);
  EXPECT_EQ(library().takeInFromDisk(), ProfieController::FolderNews::None);
  EXPECT_EQ(rateOf("b"), 0U);
  EXPECT_FALSE(fs::exists(aside()));
}

TEST_F(LibraryChanges, AreNotLookedForWhileAnotherProgramIsAtWork) {
  putProfile("c.pro", 3, "c", 3);
  {
    const auto other = FileLock::acquire(supportFolder() / ".lock", std::chrono::milliseconds(0));
    EXPECT_EQ(library().takeInFromDisk(), ProfieController::FolderNews::Busy);
    EXPECT_THAT(names(), ElementsAre("a", "b"));
  }
  EXPECT_EQ(library().takeInFromDisk(), ProfieController::FolderNews::Taken);
}

}  // namespace
