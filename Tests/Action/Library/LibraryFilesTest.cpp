#include <filesystem>
#include <random>

#include <gmock/gmock.h>

#include "Action/Library/ProfieController.h"
#include "Action/Library/ProfileFileNames.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Record/EditState.h"
#include "Tests/Support/ActionTest.h"

// The library's folder: loading it and saving it.

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class LibraryFiles : public ActionTest {
 protected:
  static std::vector<std::string> names() { return namesOf(library().profileArr()); }
  static std::vector<std::uint64_t> ids() { return idsOf(library().profileArr()); }
  static ProfieController::Profile add(const std::string& name) {
    return library().addProfileByName(name, nullptr);
  }
  // Saves the library and loads it again, as at the next start.
  void restart() {
    EXPECT_FALSE(library().saveToSys());
    endProgram();
  }
};

TEST_F(LibraryFiles, AreLoadedSortedById) {
  putProfile("a.pro", 5, "Five");
  putProfile("b.pro", 2, "Two");
  putProfile("c.pro", 9, "Nine");
  EXPECT_THAT(names(), ElementsAre("Two", "Five", "Nine"));
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_EQ(library().profileArr().front()->pathName(), "b.pro");
}

TEST_F(LibraryFiles, CountByTheirExtensionInAnyCase) {
  putProfile("a.PRO", 1, "Upper");
  putProfile("b.Pro", 2, "Mixed");
  putProfile("c.txt", 3, "Text");
  putProfile("d.pro.bak", 4, "Backup");
  putProfile("pro", 5, "None");
  EXPECT_THAT(names(), ElementsAre("Upper", "Mixed"));
}

TEST_F(LibraryFiles, OfOneNameOnlyTheFirstIsLoadedAndTheOtherGoesWithTheNextSave) {
  putProfile("b.pro", 1, "Game", 1);
  putProfile("a.pro", 2, "Game", 2);
  EXPECT_THAT(ids(), ElementsAre(2));
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Game.pro"));
  EXPECT_EQ(textOfFile(libraryFolder() / "Game.pro")[4996], 2);
  EXPECT_EQ(textOfFile(supportFolder() / "Set aside" / "b.pro")[4996], 1);
}

TEST_F(LibraryFiles, OfOneIdBothAreLoadedWithIdsOfTheirOwn) {
  putProfile("b.pro", 4, "Second");
  putProfile("a.pro", 4, "First");
  EXPECT_THAT(names(), ElementsAre("First", "Second"));
  EXPECT_THAT(ids(), ElementsAre(4, 5));
  // The file keeps the old id until the library is saved.
  EXPECT_EQ(textOfFile(libraryFolder() / "b.pro")[0], 4);
}

TEST_F(LibraryFiles, AreTakenInByteOrderOfTheirNames) {
  putProfile("Z.pro", 4, "Upper");
  putProfile("a.pro", 4, "Lower");
  putProfile("\xC3\xA4.pro", 4, "Umlaut");
  EXPECT_THAT(names(), ElementsAre("Upper", "Lower", "Umlaut"));
  EXPECT_THAT(ids(), ElementsAre(4, 5, 6));
}

TEST_F(LibraryFiles, ANewIdCanPushTheIdOfALaterFileAway) {
  putProfile("a.pro", 1, "a");
  putProfile("b.pro", 1, "b");
  putProfile("c.pro", 2, "c");
  EXPECT_THAT(names(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(ids(), ElementsAre(1, 2, 3));
}

TEST_F(LibraryFiles, AnEmptyOneKeepsTheIdZero) {
  writeText(libraryFolder() / "a.pro", "");
  EXPECT_THAT(ids(), ElementsAre(0));
  EXPECT_THAT(names(), ElementsAre(""));
}

TEST_F(LibraryFiles, OfAllOnesGetAnotherId) {
  putProfile("a.pro", ~std::uint64_t{0}, "a");
  putProfile("b.pro", 1, "b");
  EXPECT_THAT(ids(), ElementsAre(1, 2));
  EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(LibraryFiles, ReloadingClearsTheSelectionAndTakesUpTheFolder) {
  putProfile("a.pro", 1, "a");
  library().setSelectByIndex(0);
  putProfile("b.pro", 2, "b");
  library().refreshProfile();
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  fs::remove_all(libraryFolder());
  library().refreshProfile();
  EXPECT_THAT(names(), IsEmpty());
}

TEST_F(LibraryFiles, SavingLeavesExactlyTheList) {
  writeText(libraryFolder() / "notes.txt", "mine");
  writeText(libraryFolder() / "sub" / "deep.pro", "deep");
  putProfile("X.pro", 3, "Y");
  add("Game");
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Game.pro", "Y.pro"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles", "Set aside"));
}

TEST_F(LibraryFiles, SavingAnEmptyListLeavesAnEmptyFolder) {
  putProfile("a.pro", 1, "a");
  library().delProByName("a");
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), IsEmpty());
}

TEST_F(LibraryFiles, SavingIntoAFolderKeepsWhatIsThere) {
  const fs::path folder = home() / "export";
  writeText(folder / "notes.txt", "mine");
  add("a");
  add("b");
  EXPECT_FALSE(library().saveToPath(folder));
  EXPECT_THAT(namesIn(folder), ElementsAre("a.pro", "b.pro", "notes.txt"));
  EXPECT_TRUE(library().saveToPath(home() / "missing"));
}

TEST_F(LibraryFiles, SavingTheSelectionWritesOneFileWithTheEditedRecord) {
  EXPECT_FALSE(library().saveSelProfile());
  EXPECT_THAT(namesIn(libraryFolder()), IsEmpty());
  add("a");
  library().setCurrProfile(add("b"));
  editState->edit().poRate = 2;
  EXPECT_FALSE(library().saveSelProfile());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("b.pro"));
  EXPECT_EQ(textOfFile(libraryFolder() / "b.pro"), profileBytes(2, "b", 2));
  EXPECT_EQ(library().currProfile()->profileData().poRate, 2U);
  const fs::path folder = home() / "export";
  fs::create_directories(folder);
  EXPECT_FALSE(library().saveSeltoPath(folder));
  EXPECT_THAT(namesIn(folder), ElementsAre("b.pro"));
}

TEST_F(LibraryFiles, TheSelectionIsSavedUnderTheNameThatSavingAllGivesIt) {
  add("Game");
  library().setCurrProfile(add("Game"));
  EXPECT_FALSE(library().saveToSys());
  const auto before = namesIn(libraryFolder());
  EXPECT_FALSE(library().saveSelProfile());
  EXPECT_EQ(namesIn(libraryFolder()), before);
  EXPECT_THAT(before, SizeIs(2));
}

TEST_F(LibraryFiles, ClearingEmptiesTheFolder) {
  putProfile("a.pro", 1, "a");
  writeText(libraryFolder() / "sub" / "x", "x");
  library().clearAllProfile();
  EXPECT_THAT(namesIn(libraryFolder()), IsEmpty());
  EXPECT_TRUE(fs::is_directory(libraryFolder()));
  EXPECT_THAT(names(), ElementsAre("a"));
}

TEST_F(LibraryFiles, ClearingRefusesAFolderThatIsNotTheLibrary) {
  putProfile("a.pro", 1, "a");
  library();
  *sysPath = (home() / "elsewhere").string();
  library().clearAllProfile();
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro"));
}

TEST_F(LibraryFiles, OrdinaryNamesAreFileNames) {
  for (const char* name :
       {"Game", "Sp\xC3\xA4ter", "a b", "Profile#1", ".hidden", "a.pro", "..x"}) {
    EXPECT_EQ(ProfileFileNames().next(name), std::string(name) + ".pro");
  }
}

TEST_F(LibraryFiles, EveryNameSurvivesARestart) {
  const std::vector<std::string> all{"",
                                     ".",
                                     "..",
                                     "/",
                                     "a/b",
                                     "a:b",
                                     "a_b",
                                     "../../escape",
                                     "/etc/passwd",
                                     "tab\there",
                                     "line\nfeed",
                                     "\x7F",
                                     "_",
                                     "_.",
                                     "a~2",
                                     std::string(255, 'n'),
                                     std::string(254, 'n') + "m",
                                     std::string(253, 'n') + "\xC3\xA4",
                                     std::string(255, '/')};
  for (const std::string& name : all) {
    add(name);
  }
  const auto before = ids();
  restart();
  EXPECT_EQ(names(), all);
  EXPECT_EQ(ids(), before);
  EXPECT_THAT(namesIn(libraryFolder()), SizeIs(all.size()));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
  EXPECT_THAT(namesIn(home()), ElementsAre("Library"));
  for (const std::string& file : namesIn(libraryFolder())) {
    EXPECT_LE(file.size(), 255U);
    EXPECT_TRUE(file.ends_with(".pro"));
  }
}

TEST_F(LibraryFiles, TwoProfilesOfOneNameHaveTwoFiles) {
  add("Game")->setProRate(1);
  add("Game")->setProRate(2);
  EXPECT_FALSE(library().saveToSys());
  const auto files = namesIn(libraryFolder());
  ASSERT_THAT(files, SizeIs(2));
  EXPECT_EQ(textOfFile(libraryFolder() / "Game.pro")[4996], 1);
  EXPECT_EQ(
      textOfFile(libraryFolder() / files[1])[4996] + textOfFile(libraryFolder() / files[0])[4996],
      3);
  for (const std::string& file : files) {
    EXPECT_EQ(textOfFile(libraryFolder() / file).substr(9, 5), std::string("Game\0", 5));
  }
}

TEST_F(LibraryFiles, ANameThatIsNoTextHasAFileToo) {
  putProfile("a.pro", 1, "\xFF\xFE");
  library();
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), SizeIs(1));
  endProgram();
  EXPECT_EQ(library().profileArr().front()->name(), std::nullopt);
}

TEST_F(LibraryFiles, ImportedNamesStayInsideTheFolder) {
  for (const char* name : {"../../../../escape", "/etc/escape", "..", "a/../../b"}) {
    const fs::path path = home() / "outside.pro";
    writeText(path, profileBytes(1, name));
    ASSERT_EQ(library().addByPath(path, true), ProfieController::Added);
    library().setCurrProfile(library().profileArr().back());
    EXPECT_FALSE(library().saveSelProfile());
    fs::remove(path);
  }
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), SizeIs(4));
  EXPECT_THAT(namesIn(home()), ElementsAre("Library"));
  EXPECT_THAT(namesIn(home() / "Library"), ElementsAre("Application Support"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
}

TEST_F(LibraryFiles, GarbageIsLoadedWithoutHarm) {
  std::minstd_rand noise(4711);
  for (int n = 0; n < 40; ++n) {
    std::string bytes(static_cast<std::size_t>(noise() % 6000), '\0');
    for (char& byte : bytes) {
      byte = static_cast<char>(noise() >> 8U);
    }
    writeText(libraryFolder() / (std::to_string(n) + ".pro"), bytes);
  }
  EXPECT_GT(library().getProfileCount(), 0U);
  restart();
  EXPECT_GT(library().getProfileCount(), 0U);
}

}  // namespace
