#include <cerrno>
#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include "Action/Library/LibraryHistory.h"
#include "Action/Library/ProfieController.h"
#include "Kit/Core/DurableFile.h"
#include "Tests/Support/ActionTest.h"

// The last states of the library.

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class History : public ActionTest {
 protected:
  ~History() override { durable::setFaultInjector({}); }

  LibraryHistory history() const { return LibraryHistory(libraryFolder()); }
  static std::vector<std::string> namesIn(const LibraryHistory::State& state) {
    return namesOf(LibraryHistory::profilesIn(state));
  }
  static void add(const std::string& name) {
    library().addProfileByName(name, nullptr);
    EXPECT_FALSE(library().saveToSys());
  }
  std::vector<std::vector<std::string>> states() const {
    std::vector<std::vector<std::string>> all;
    for (const auto& state : history().states()) {
      all.push_back(namesIn(state));
    }
    return all;
  }
};

TEST_F(History, BeginsWithTheLibraryThatWasThere) {
  putProfile("a.pro", 1, "a");
  add("b");
  EXPECT_THAT(states(), ElementsAre(ElementsAre("a", "b"), ElementsAre("a")));
}

TEST_F(History, OfANewLibraryBeginsWithItsFirstProfile) {
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(states(), IsEmpty());
  add("a");
  EXPECT_THAT(states(), ElementsAre(ElementsAre("a")));
}

TEST_F(History, GrowsOnlyWhenSomethingChanges) {
  add("a");
  for (int n = 0; n < 3; ++n) {
    EXPECT_FALSE(library().saveToSys());
  }
  EXPECT_THAT(states(), SizeIs(1));
  library().profileArr().front()->setProRate(1);
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(states(), SizeIs(2));
}

TEST_F(History, KeepsWhatAnotherProgramLeftBeforeItIsReplaced) {
  add("a");
  putProfile("b.pro", 7, "b");
  add("c");
  EXPECT_THAT(states().at(0), ElementsAre("a", "b", "c"));
  EXPECT_THAT(states().at(1), ElementsAre("a", "b"));
}

TEST_F(History, KeepsTheLastTenAndCountsOn) {
  for (int n = 1; n <= 14; ++n) {
    add(std::to_string(n));
  }
  const auto all = history().states();
  ASSERT_THAT(all, SizeIs(10));
  EXPECT_EQ(all.front().number, 14U);
  EXPECT_EQ(all.back().number, 5U);
  EXPECT_THAT(namesIn(all.back()), SizeIs(5));
  EXPECT_LT(std::abs(std::difftime(all.front().time, std::time(nullptr))), 60);
}

TEST_F(History, SharesTheFilesThatDidNotChange) {
  add("a");
  add("b");
  const auto all = history().states();
  ASSERT_THAT(all, SizeIs(2));
  EXPECT_TRUE(fs::equivalent(all[0].folder / "a.pro", all[1].folder / "a.pro"));
  EXPECT_TRUE(fs::equivalent(all[0].folder / "a.pro", libraryFolder() / "a.pro"));
}

TEST_F(History, CopiesWhereTheFileSystemHasNoLinks) {
  durable::setFaultInjector(
      [](const char* step) { return std::string_view(step).starts_with("link") ? EPERM : 0; });
  add("a");
  durable::setFaultInjector({});
  EXPECT_THAT(states(), ElementsAre(ElementsAre("a")));
  EXPECT_FALSE(
      fs::equivalent(history().states().at(0).folder / "a.pro", libraryFolder() / "a.pro"));
}

TEST_F(History, ThatCannotBeWrittenDoesNotStopASave) {
  add("a");
  for (const char* failing : {"make a copy", "name a copy"}) {
    durable::setFaultInjector(
        [&](const char* step) { return std::string_view(step) == failing ? ENOSPC : 0; });
    add(failing);
    durable::setFaultInjector({});
  }
  EXPECT_THAT(::namesIn(libraryFolder()), SizeIs(3));
  EXPECT_THAT(states(), SizeIs(1));
  EXPECT_THAT(::namesIn(supportFolder() / "History"), SizeIs(1));
}

TEST_F(History, IgnoresWhatIsNoState) {
  add("a");
  for (const char* name : {"notes", "2026-11-22T01-33-36Z", "2026-11-22T01-33-36Z-x"}) {
    fs::create_directories(supportFolder() / "History" / name);
  }
  EXPECT_THAT(states(), SizeIs(1));
}

TEST_F(History, TellsWhatARecoveryWouldDo) {
  putProfile("a.pro", 1, "a");
  putProfile("b.pro", 2, "b");
  putProfile("c.pro", 3, "c");
  EXPECT_FALSE(library().saveToSys());
  library().delProByName("a");
  library().getProfileByName("b")->setProRate(3);
  add("d");
  const auto differences = LibraryHistory::differences(
      LibraryHistory::profilesIn(history().states().at(1)), library().profileArr());
  EXPECT_THAT(differences.added, ElementsAre("a"));
  EXPECT_THAT(differences.removed, ElementsAre("d"));
  EXPECT_THAT(differences.changed, ElementsAre("b"));
}

TEST_F(History, BringsBackAWholeState) {
  putProfile("a.pro", 1, "a");
  putProfile("b.pro", 2, "b");
  EXPECT_FALSE(library().saveToSys());
  library().delProByName("a");
  add("d");
  library().fwProfileID()[2] = 2;
  library().fwProfileID()[3] = 3;
  library().setSelectById(2);
  library().replaceProfiles(LibraryHistory::profilesIn(history().states().at(1)));
  EXPECT_FALSE(library().saveToSys());
  EXPECT_THAT(::namesIn(libraryFolder()), ElementsAre("a.pro", "b.pro"));
  EXPECT_EQ(library().currProfile(), library().getProfileByName("b"));
  EXPECT_EQ(library().fwProfileID()[2], 2U);
  EXPECT_EQ(library().fwProfileID()[3], ProfieController::notLinked);
  EXPECT_THAT(states(),
              ElementsAre(ElementsAre("a", "b"), ElementsAre("b", "d"), ElementsAre("a", "b")));
}

TEST_F(History, KeepsTheSaveOfFiftyProfilesFast) {
  for (int n = 0; n < 50; ++n) {
    library().addProfileByName("p" + std::to_string(n), nullptr);
  }
  EXPECT_FALSE(library().saveToSys());
  const auto begin = std::chrono::steady_clock::now();
  library().profileArr().front()->setProRate(1);
  EXPECT_FALSE(library().saveToSys());
  const auto time = std::chrono::duration_cast<std::chrono::milliseconds>(
      std::chrono::steady_clock::now() - begin);
  RecordProperty("milliseconds", static_cast<int>(time.count()));
  EXPECT_LT(time.count(), 2000);
}

}  // namespace
