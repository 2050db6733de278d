#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Library/ProfieController.h"
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

}  // namespace
