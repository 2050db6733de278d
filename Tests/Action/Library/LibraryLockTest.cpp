#include <chrono>

#include <gmock/gmock.h>

#include "Action/Library/LibraryLock.h"
#include "Action/Library/ProfieController.h"
#include "Tests/Support/ActionTest.h"

// Two programs at once. The other one is a second descriptor of the lock file.

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;

class LibraryLock : public ActionTest {
 protected:
  LibraryLock() { putProfile("a.pro", 1, "a"); }

  std::unique_ptr<FileLock> lockOfAnother(const char* file = ".lock") const {
    return FileLock::acquire(supportFolder() / file, 0ms);
  }
};

TEST_F(LibraryLock, IsSharedInsideTheProcessAndExcludesOthers) {
  auto first = librarylock::acquire();
  auto second = librarylock::acquire(0ms);
  EXPECT_TRUE(first);
  EXPECT_TRUE(second);
  first.reset();
  EXPECT_FALSE(lockOfAnother());
  second.reset();
  EXPECT_TRUE(lockOfAnother());
}

TEST_F(LibraryLock, ASaveGivesItBack) {
  library().addProfileByName("b", nullptr);
  EXPECT_FALSE(library().saveToSys());
  EXPECT_TRUE(lockOfAnother());
}

TEST_F(LibraryLock, ASaveInsideAHolderOfTheProcessWorks) {
  library().addProfileByName("b", nullptr);
  const auto lock = librarylock::acquire();
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_FALSE(lockOfAnother());
}

TEST_F(LibraryLock, HeldByAnotherStopsASaveSoonAndLosesNothing) {
  for (const char* file : {".lock", ".Profiles.lock"}) {
    SCOPED_TRACE(file);
    library().addProfileByName(file, nullptr);
    const auto before = namesIn(libraryFolder());
    auto other = lockOfAnother(file);
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(library().saveToSys(), std::errc::device_or_resource_busy);
    // The limit is 200 ms; the rest is for a busy machine.
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
    EXPECT_EQ(namesIn(libraryFolder()), before);
    EXPECT_TRUE(library().getProfileByName(file));
    other.reset();
    EXPECT_FALSE(library().saveToSys());
    EXPECT_NE(namesIn(libraryFolder()), before);
  }
}

TEST_F(LibraryLock, HeldByAnotherDoesNotKeepALibraryFromBeingRead) {
  const auto other = lockOfAnother();
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("a"));
}

}  // namespace
