#include <cerrno>
#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Library/ProfieController.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ActionTest.h"

// A library that cannot be saved, and one whose save was interrupted.

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class LibrarySafety : public ActionTest {
 protected:
  LibrarySafety() {
    putProfile("a.pro", 1, "a", 1);
    putProfile("b.pro", 2, "b", 1);
  }
  ~LibrarySafety() override { durable::setFaultInjector({}); }

  static std::vector<std::string> names() { return namesOf(library().profileArr()); }

  fs::path newFolder() const { return supportFolder() / ".Profiles.new"; }
  fs::path oldFolder() const { return supportFolder() / ".Profiles.old"; }
};

TEST_F(LibrarySafety, AStartRemovesWhatKillsLeftLongAgoInEveryFolder) {
  const auto& folders = LXPlatform::current().userFolders;
  const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(2);
  for (const fs::path& folder :
       {folders.support, folders.drafts, folders.preferences.parent_path()}) {
    fs::create_directories(folder);
    writeText(folder / ".nerin-7-old.new", "half");
    fs::last_write_time(folder / ".nerin-7-old.new", longAgo);
    writeText(folder / ".nerin-8-young.new", "half");
  }
  endProgram();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  for (const fs::path& folder :
       {folders.support, folders.drafts, folders.preferences.parent_path()}) {
    EXPECT_FALSE(fs::exists(folder / ".nerin-7-old.new")) << folder;
    EXPECT_TRUE(fs::exists(folder / ".nerin-8-young.new")) << folder;
  }
}

TEST_F(LibrarySafety, AFailureAtAnyStepLeavesTheOldLibraryOrTheNewOne) {
  library().delProByName("a");
  library().addProfileByName("c", nullptr);
  bool isReached = true;
  int failures = 0;
  for (int failing = 0; isReached; ++failing) {
    fs::remove_all(libraryFolder());
    putProfile("a.pro", 1, "a", 1);
    putProfile("b.pro", 2, "b", 1);
    int step = 0;
    durable::setFaultInjector([&](const char*) { return step++ == failing ? ENOSPC : 0; });
    failures += library().saveToSys() ? 1 : 0;
    durable::setFaultInjector({});
    isReached = step > failing;
    SCOPED_TRACE("step " + std::to_string(failing));
    endProgram();
    EXPECT_THAT(names(), AnyOf(ElementsAre("a", "b"), ElementsAre("b", "c")));
    // The file of "a", if it could not be read before it goes.
    fs::remove_all(supportFolder() / "Set aside");
    EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
    library().delProByName("a");
    if (!library().getProfileByName("c")) {
      library().addProfileByName("c", nullptr);
    }
    ASSERT_LT(failing, 1000);
  }
  EXPECT_GT(failures, 6);
  EXPECT_THAT(names(), ElementsAre("b", "c"));
}

TEST_F(LibrarySafety, AFailureIsToldAndLogged) {
  library().delProByName("a");
  std::vector<std::string> lines;
  LXLogger::setObserver([&](LXLogger::Level level, std::string_view line) {
    if (level == LXLogger::Level::Error) {
      lines.emplace_back(line);
    }
  });
  durable::setFaultInjector([](const char*) { return ENOSPC; });
  EXPECT_EQ(library().saveToSys().value(), ENOSPC);
  durable::setFaultInjector({});
  LXLogger::setObserver({});
  EXPECT_THAT(lines, ElementsAre(HasSubstr("not saved")));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_THAT(names(), ElementsAre("b"));
}

TEST_F(LibrarySafety, ANewFolderThatWasNotFinishedIsDropped) {
  writeText(newFolder() / "c.pro", profileBytes(3, "c").substr(0, 100));
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
}

TEST_F(LibrarySafety, ANewFolderThatOnlyLackedItsPlaceTakesIt) {
  fs::rename(libraryFolder(), oldFolder());
  writeText(newFolder() / "c.pro", profileBytes(3, "c"));
  EXPECT_THAT(names(), ElementsAre("c"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
}

TEST_F(LibrarySafety, AnOldFolderWithoutAnythingNewTakesItsPlaceAgain) {
  fs::rename(libraryFolder(), oldFolder());
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
}

TEST_F(LibrarySafety, AnOldFolderThatWasReplacedIsDropped) {
  writeText(oldFolder() / "c.pro", profileBytes(3, "c"));
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
}

TEST_F(LibrarySafety, AFileSystemThatCannotExchangeIsServedInTwoSteps) {
  library().delProByName("a");
  durable::setFaultInjector(
      [](const char* step) { return std::string(step) == "exchange" ? EINVAL : 0; });
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("b.pro"));
  EXPECT_THAT(supportNames(), ElementsAre("Profiles"));
}

TEST_F(LibrarySafety, ALibraryThatVanishedIsMadeAgain) {
  library();
  fs::remove_all(libraryFolder());
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
}

TEST_F(LibrarySafety, AFileInPlaceOfTheFolderIsNoLibrary) {
  fs::remove_all(libraryFolder());
  writeText(libraryFolder(), "a file");
  EXPECT_THAT(names(), IsEmpty());
}

}  // namespace
