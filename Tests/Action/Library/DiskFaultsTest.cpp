#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>

#include <gmock/gmock.h>
#include <unistd.h>

#include "Action/Library/LibraryHistory.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/DurableFile.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/FailingDisk.h"

// A disk that fails at each single step of everything that writes to it.

namespace {

namespace fs = std::filesystem;

using testing::AnyOf;
using testing::Eq;

using Files = std::map<std::string, std::string>;

// In the memory where there is a folder of it: the faults are the same, and real syncs only make
// this slow.
const bool isInMemory = ::access("/dev/shm", W_OK) == 0 && ::setenv("TMPDIR", "/dev/shm", 1) == 0;

struct Job {
  const char* name;
  void (*run)(const fs::path& import);
};

// What a user does. Whether it succeeded is told by the disk here.
const std::vector<Job> jobs{
    {"Save",
     [](const fs::path&) {
       ProfieController::getShareProCon().addProfileByName("c", nullptr);
       static_cast<void>(ProfieController::getShareProCon().saveToSys());
     }},
    {"Apply",
     [](const fs::path&) {
       editState->edit().xSensArr[0] = 1200;
       static_cast<void>(NerinAction::applySlot());
     }},
    {"Rename", [](const fs::path&) { static_cast<void>(NerinAction::renameSlot("z")); }},
    {"Reset", [](const fs::path&) { static_cast<void>(NerinAction::resetSlot()); }},
    {"Delete", [](const fs::path&) { static_cast<void>(NerinAction::deleteSelectedProfile()); }},
    {"UndoDelete",
     [](const fs::path&) {
       static_cast<void>(NerinAction::deleteSelectedProfile());
       static_cast<void>(NerinAction::undoDelete());
     }},
    {"Import",
     [](const fs::path& import) {
       static_cast<void>(ProfieController::getShareProCon().addByPath(import, true));
       static_cast<void>(ProfieController::getShareProCon().saveToSys());
     }},
    {"Recover",
     [](const fs::path&) {
       ProfieController& library = ProfieController::getShareProCon();
       library.replaceProfiles(
           LibraryHistory::profilesIn(LibraryHistory(library.sysProPath()).states().back()));
       static_cast<void>(library.saveToSys());
     }},
    {"Macros",
     [](const fs::path&) {
       static_cast<void>(NerinAction::addMacorByName("new"));
       static_cast<void>(NerinAction::saveMenuList());
     }},
    {"Preferences",
     [](const fs::path&) {
       static_cast<void>(ProfieController::getShareProCon().setLinkAppPath("/opt/game", 1, true));
     }},
};

class DiskFaults : public ActionTest, public testing::WithParamInterface<Job> {
 protected:
  ~DiskFaults() override { durable::setFaultInjector({}); }

  // Two profiles, one of them on slot 1, and an earlier state.
  void makeHome() {
    putProfile("old.pro", 5, "old", 1);
    EXPECT_FALSE(library().saveToSys());
    endProgram();
    fs::remove(libraryFolder() / "old.pro");
    putProfile("a.pro", 1, "a", 1);
    putProfile("b.pro", 2, "b", 2);
    beginProgram();
    EXPECT_TRUE(library().setIsOSD(true));
    EXPECT_FALSE(library().saveToSys());
    endProgram();
    writeText(import(), profileBytes(9, "imported", 3));
    fs::rename(home() / "Library", home() / "model");
  }
  // The same home each time.
  void prepare() {
    endProgram();
    fs::remove_all(home() / "Library");
    fs::copy(home() / "model", home() / "Library", fs::copy_options::recursive);
    beginProgram();
    library().setCurrFWProfileIndex(1);
    library().setCurrFWProfileName("b");
    NerinAction::bindSlot(2);
    library().refreshFWCurrName();
  }
  fs::path import() const { return home() / "import.pro"; }

  Files profiles() const {
    Files files;
    for (const std::string& name : namesIn(libraryFolder())) {
      files[name] = textOfFile(libraryFolder() / name);
    }
    return files;
  }
  std::string macros() const { return textOfFile(supportFolder() / "MenuInfo.xml"); }
  std::string preferences() const { return textOfFile(preferenceFile()); }

  // The next start finds what is on the disk, and can save it.
  void expectHealth() {
    endProgram();
    beginProgram();
    EXPECT_EQ(library().profileArr().size(), profiles().size());
    library().addProfileByName("next", nullptr);
    EXPECT_FALSE(library().saveToSys());
    EXPECT_TRUE(fs::exists(libraryFolder() / "next.pro"));
    EXPECT_TRUE(NerinAction::saveMenuList());
    EXPECT_TRUE(library().setIsOSD(false));
    std::vector<std::string> names = supportNames();
    // What could not be read is kept there.
    std::erase(names, "Set aside");
    std::erase_if(names, [](const std::string& name) { return !name.starts_with("."); });
    EXPECT_THAT(names, testing::IsEmpty());
  }
};

TEST_P(DiskFaults, LeaveWhatWasThereOrWhatWasWanted) {
  makeHome();
  prepare();
  const Files profilesBefore = profiles();
  const std::string macrosBefore = macros();
  const std::string preferencesBefore = preferences();
  GetParam().run(import());
  const Files profilesAfter = profiles();
  const std::string macrosAfter = macros();
  const std::string preferencesAfter = preferences();
  const bool isUndo = std::string_view(GetParam().name) == "UndoDelete";
  Files withoutSelected = profilesBefore;
  withoutSelected.erase("b.pro");
  int cases = 0;
  const bool isPreferences = std::string_view(GetParam().name) == "Preferences";
  for (const FailingDisk& disk :
       {FailingDisk{ENOSPC}, FailingDisk{ENOSPC, true}, FailingDisk{EROFS, true}, FailingDisk{EIO},
        FailingDisk{EACCES}}) {
    cases += disk.failEachStep(
        [this] { prepare(); }, [this] { GetParam().run(import()); },
        [&](const std::string& step) {
          SCOPED_TRACE(step + ", error " + std::to_string(disk.error));
          // An undo is two deeds.
          EXPECT_THAT(profiles(), AnyOf(Eq(profilesBefore), Eq(profilesAfter),
                                        Eq(isUndo ? withoutSelected : profilesAfter)));
          EXPECT_THAT(macros(), AnyOf(Eq(macrosBefore), Eq(macrosAfter)));
          // The others change several preferences, each in one step.
          if (isPreferences) {
            EXPECT_THAT(preferences(), AnyOf(Eq(preferencesBefore), Eq(preferencesAfter)));
          }
          EXPECT_TRUE(library().isOSD());
          EXPECT_THAT(preferences(), testing::EndsWith("</plist>\n"));
          expectHealth();
        });
  }
  RecordProperty("cases", cases);
  RecordProperty("inMemory", isInMemory ? 1 : 0);
  std::cout << GetParam().name << ": " << cases << " cases\n";
  EXPECT_GT(cases, 20);
}

INSTANTIATE_TEST_SUITE_P(Everything, DiskFaults, testing::ValuesIn(jobs),
                         [](const auto& test) { return std::string(test.param.name); });

}  // namespace
