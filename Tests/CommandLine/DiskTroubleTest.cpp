#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/SmallDisk.h"
#include "Tests/CommandLine/TestHome.h"

// Full and write-protected disks. Every command keeps the user's data and reports the failure in
// one line.

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* fileToImport = "import.pro";
constexpr const char* macroToImport = "Fire.mac";

// A library with data for every command.
void fillLibrary(const TestHome& user) {
  user.addMacro("Reload", clickMacro("Reload"));
  user.addProfile(profileNamed("Office"));
  user.addProfile(profileNamed("Game"));
  user.prepare({"apply", "Office", "--slot", "1"});
  ASSERT_FALSE(profileNamed("New").saveToPath(user.files / fileToImport));
  writeFile(user.files / macroToImport, keyedarchive::archive(clickMacro("Fire")));
}

// Runs every command that writes new bytes to the home folder; `settings` cause the failure.
void expectEveryWriteToFailAndLoseNothing(const TestHome& user, const RunSettings& settings) {
  const auto before = user.library();
  const std::string target = (user.home / "new").string();
  for (const Words& command : std::vector<Words>{{"profiles", "add", "More"},
                                                 {"profiles", "copy", "Office"},
                                                 {"profiles", "rename", "Office", "Work"},
                                                 {"profiles", "import", fileToImport},
                                                 {"profiles", "export", "Office", target},
                                                 {"macros", "import", macroToImport},
                                                 {"macros", "rename", "Reload", "Fire"},
                                                 {"macros", "delete", "Reload"},
                                                 {"macros", "export", "Reload", target},
                                                 {"read", "--slot", "1", "--output", target},
                                                 {"backup", target}}) {
    SCOPED_TRACE(command[0] + " " + command[1]);
    expectComplaint(user.runWithMouse(command, settings), 1);
    EXPECT_EQ(user.library(), before);
    std::error_code ignored;
    fs::remove(target, ignored);  // the empty folder of the backup
  }
}

void expectReadingToWork(const TestHome& user, const RunSettings& settings) {
  for (const Words& command : std::vector<Words>{{"profiles", "list"},
                                                 {"show", "Office"},
                                                 {"macros", "list"},
                                                 {"macros", "show", "Reload"},
                                                 {"status"},
                                                 {"read", "--slot", "1"}}) {
    const RunResult result = user.runWithMouse(command, settings);
    EXPECT_EQ(result.exitCode, 0) << command[0] << result.errors;
    EXPECT_NE(result.output, "");
    EXPECT_EQ(result.errors, "");
  }
}

// While it exists, nothing in the folder can change.
class WriteProtection {
 public:
  explicit WriteProtection(fs::path folder) : m_folder(std::move(folder)) {
    change(fs::perm_options::remove);
  }
  ~WriteProtection() { change(fs::perm_options::add); }
  WriteProtection(const WriteProtection&) = delete;
  WriteProtection& operator=(const WriteProtection&) = delete;

 private:
  void change(fs::perm_options how) {
    constexpr fs::perms all =
        fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write;
    const fs::perms changed = how == fs::perm_options::add ? fs::perms::owner_write : all;
    fs::permissions(m_folder, changed, how);
    for (const auto& entry : fs::recursive_directory_iterator(m_folder)) {
      fs::permissions(entry.path(), changed, how);
    }
  }

  fs::path m_folder;
};

TEST(NerinctlReadOnlyHome, LosesNothing) {
  const TestHome user;
  fillLibrary(user);
  RunSettings settings;
  settings.obeysPermissions = true;
  const WriteProtection protection(user.home);
  const auto before = user.library();
  expectReadingToWork(user, settings);
  expectEveryWriteToFailAndLoseNothing(user, settings);
  expectComplaint(user.runWithMouse({"profiles", "delete", "Office"}, settings), 1);
  expectComplaint(user.runWithMouse({"apply", "Office", "--slot", "1"}, settings), 1);
  EXPECT_EQ(user.library(), before);
}

TEST(NerinctlReadOnlyHome, IsNoHomeForANewUser) {
  const TestHome user;
  RunSettings settings;
  settings.obeysPermissions = true;
  const WriteProtection protection(user.home);
  expectComplaint(user.run({"profiles", "list"}, settings), 1, "cannot be made");
  EXPECT_THAT(user.library(), IsEmpty());
}

TEST(NerinctlReadOnlyHome, IsNoReasonToForgetALibraryThatCannotBeRead) {
  const TestHome user;
  fillLibrary(user);
  const auto before = user.library();
  RunSettings settings;
  settings.obeysPermissions = true;
  fs::permissions(user.profileFolder(), fs::perms::none);
  expectComplaint(user.run({"profiles", "list"}, settings), 1, "cannot be read");
  expectComplaint(user.run({"profiles", "add", "More"}, settings), 1, "cannot be read");
  fs::permissions(user.profileFolder(), fs::perms::owner_all);
  EXPECT_EQ(user.library(), before);
}

TEST(NerinctlReadOnlyLibrary, DoesNotBlockTheSavesAfterIt) {
  const TestHome user;
  fillLibrary(user);
  RunSettings settings;
  settings.obeysPermissions = true;
  fs::permissions(user.profileFolder(), fs::perms::owner_read | fs::perms::owner_exec);
  static_cast<void>(user.run({"profiles", "add", "One"}, settings));
  fs::permissions(user.profileFolder(), fs::perms::owner_all);
  for (const char* name : {"Two", "Three"}) {
    const RunResult result = user.run({"profiles", "add", name}, settings);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
  }
  EXPECT_TRUE(fs::exists(user.profileFolder() / "Three.pro"));
  EXPECT_TRUE(fs::exists(user.profileFolder() / "Office.pro"));
  EXPECT_FALSE(fs::exists(user.supportFolder() / ".Profiles.new"));
}

TEST(NerinctlReadOnlyLibrary, LeavesNothingThatBlocksASaveEvenIfItCannotBeRemoved) {
  const TestHome user;
  fillLibrary(user);
  RunSettings settings;
  settings.obeysPermissions = true;
  const fs::path leftover = user.supportFolder() / ".Profiles.new";
  writeText(leftover / "folder" / "file", "");
  fs::permissions(leftover / "folder", fs::perms::owner_read | fs::perms::owner_exec);
  for (const char* name : {"Two", "Three"}) {
    const RunResult result = user.run({"profiles", "add", name}, settings);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
  }
  EXPECT_TRUE(fs::exists(user.profileFolder() / "Three.pro"));
  EXPECT_FALSE(fs::exists(leftover));
  EXPECT_TRUE(fs::exists(user.supportFolder() / ".Profiles.new.left-1"));
  fs::permissions(user.supportFolder() / ".Profiles.new.left-1" / "folder", fs::perms::owner_all);
  EXPECT_EQ(user.run({"profiles", "add", "Four"}, settings).exitCode, 0);
  EXPECT_FALSE(fs::exists(user.supportFolder() / ".Profiles.new.left-1"));
}

TEST(NerinctlFileThatMayNotBeRead, IsNamed) {
  const TestHome user;
  fillLibrary(user);
  RunSettings settings;
  settings.obeysPermissions = true;
  fs::permissions(user.files / fileToImport, fs::perms::none);
  for (const Words& command :
       std::vector<Words>{{"show", fileToImport}, {"profiles", "import", fileToImport}}) {
    expectComplaint(user.run(command, settings), 1, "cannot be read: import.pro");
  }
}

// No byte can be written, but files can still be created and removed.
TEST(NerinctlFullDisk, LosesNothing) {
  const TestHome user;
  fillLibrary(user);
  RunSettings settings;
  settings.fileSizeLimit = 0;
  expectReadingToWork(user, settings);
  expectEveryWriteToFailAndLoseNothing(user, settings);
}

// Writing the same library again needs no room.
TEST(NerinctlFullDisk, LetsAStoredProfileBeAppliedAgain) {
  const TestHome user;
  fillLibrary(user);
  const auto before = user.library();
  RunSettings settings;
  settings.fileSizeLimit = 0;
  EXPECT_EQ(user.runWithMouse({"apply", "Office", "--slot", "1"}, settings).exitCode, 0);
  EXPECT_EQ(user.library(), before);
}

// The remaining profiles are not written again, so the user can make room.
TEST(NerinctlFullDisk, LetsAProfileBeDeleted) {
  const TestHome user;
  fillLibrary(user);
  RunSettings settings;
  settings.fileSizeLimit = 0;
  EXPECT_EQ(user.runWithMouse({"profiles", "delete", "Office"}, settings).exitCode, 0);
  EXPECT_EQ(user.runWithMouse({"show", "Game"}, {}).exitCode, 0);
  expectComplaint(user.runWithMouse({"show", "Office"}, {}), 4);
}

TEST(NerinctlFullDisk, LosesNothingWhenItFillsUpHalfwayThroughAFile) {
  const TestHome user;
  fillLibrary(user);
  const auto before = user.library();
  RunSettings settings;
  settings.fileSizeLimit = 4000;
  expectComplaint(user.run({"profiles", "add", "More"}, settings), 1, "could not be saved");
  expectComplaint(user.run({"macros", "delete", "Reload"}, settings), 1, "could not be saved");
  EXPECT_EQ(user.library(), before);
}

TEST(NerinctlFullDisk, StopsANewUserInOneLine) {
  const TestHome user;
  RunSettings settings;
  settings.fileSizeLimit = 0;
  expectComplaint(user.run({"profiles", "add", "Office"}, settings), 1, "could not be saved");
  EXPECT_EQ(user.run({"macros", "list"}, settings).exitCode, 0);
  EXPECT_FALSE(fs::exists(user.supportFolder() / "MenuInfo.xml"));
  expectComplaint(user.runWithMouse({"status"}, settings), 1, "cannot make the memory file");
  EXPECT_FALSE(fs::exists(user.mouseFile));
  // With enough room, everything works again.
  user.prepare({"profiles", "add", "Office"});
  EXPECT_EQ(user.json({"macros", "list"}).size(), 0U);
}

TEST(NerinctlFullDisk, LeavesTheMouseAsItWas) {
  const TestHome user;
  fillLibrary(user);
  const std::string before = user.mouseMemory();
  RunSettings settings;
  settings.fileSizeLimit = 0;
  expectComplaint(user.runWithMouse({"apply", "Game", "--slot", "2"}, settings), 1,
                  "did not answer as it should");
  EXPECT_EQ(user.mouseMemory(), before);
}

// Fills the rest of the disk.
void fillUp(const fs::path& file) {
  std::ofstream filler(file, std::ios::binary);
  filler << std::unitbuf;
  for (const std::size_t block : {4096U, 1U}) {
    while (filler << std::string(block, 'x')) {
    }
    filler.clear();
  }
}

TEST(NerinctlFullDisk, LosesNothingOnAVerySmallOne) {
  if (!canMountSmallDisk()) {
    GTEST_SKIP() << "no file system can be mounted here; the tests with a file size limit stand "
                    "for this one";
  }
  const TestHome user;
  // The catalogue takes half a megabyte of it.
  constexpr std::size_t size = 2 * 1024 * 1024;
  onSmallDisk(user.home, size, [&] {
    fillLibrary(user);
    fillUp(user.home / "filler");
    expectReadingToWork(user, {});
    expectEveryWriteToFailAndLoseNothing(user, {});
    fs::remove(user.home / "filler");
    user.prepare({"profiles", "add", "More"});
    EXPECT_EQ(user.json({"profiles", "list"}).size(), 3U);
  });
}

TEST(NerinctlFullDisk, IsNoticedBehindTheAnswerAndTheTrace) {
  const TestHome user;
  const RunResult result = user.runWithMouse({"--trace", "/dev/full", "status"});
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(result.errors, HasSubstr("nerinctl: done, but the trace could not be written"));
}

}  // namespace
