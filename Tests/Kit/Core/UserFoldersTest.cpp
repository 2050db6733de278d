#include <cstdlib>
#include <fstream>
#include <map>
#include <optional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Kit/Core/HostEnvironment.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/PreferenceFile.h"
#include "Tests/Support/Scratch.h"

namespace fs = std::filesystem;

namespace {

constexpr const char* program = "com.corvex.NerinOption";

// A user with a home folder of their own and none of the tester's variables.
class UserFoldersOfTheHost : public testing::Test {
 protected:
  UserFoldersOfTheHost() {
    for (const char* name : {"HOME", "XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME"}) {
      const char* value = std::getenv(name);
      m_before[name] = value != nullptr ? std::optional<std::string>(value) : std::nullopt;
      unsetenv(name);
    }
    setenv("HOME", home().c_str(), 1);
  }
  ~UserFoldersOfTheHost() override {
    for (const auto& [name, value] : m_before) {
      if (value) {
        setenv(name.c_str(), value->c_str(), 1);
      } else {
        unsetenv(name.c_str());
      }
    }
    LXPlatform::install({});
  }

  fs::path home() const { return m_scratch.folder(); }
  fs::path libraryFolder() const { return home() / "Library/Application Support" / program; }
  static UserFolders found() { return hostenvironment::userFolders(program); }

 private:
  Scratch m_scratch;
  std::map<std::string, std::optional<std::string>> m_before;
};

}  // namespace

TEST_F(UserFoldersOfTheHost, AreTheStandardsOfTheDesktopWithoutVariables) {
  const UserFolders folders = found();
  EXPECT_EQ(folders.layout, UserFolders::Layout::Xdg);
  EXPECT_EQ(folders.support, home() / ".local/share" / program);
  EXPECT_EQ(folders.preferences, home() / ".config/com.corvex.NerinOption.plist");
  EXPECT_EQ(folders.drafts, home() / ".local/state" / program / "Drafts");
  EXPECT_EQ(folders.log, home() / ".local/state" / program / "com.corvex.NerinOption.log");
  EXPECT_TRUE(fs::is_empty(home())) << "looking makes nothing";
}

TEST_F(UserFoldersOfTheHost, FollowTheVariables) {
  setenv("XDG_DATA_HOME", "/somewhere/data", 1);
  setenv("XDG_CONFIG_HOME", "/somewhere/config", 1);
  setenv("XDG_STATE_HOME", "/somewhere/state", 1);
  const UserFolders folders = found();
  EXPECT_EQ(folders.support, "/somewhere/data/com.corvex.NerinOption");
  EXPECT_EQ(folders.preferences, "/somewhere/config/com.corvex.NerinOption.plist");
  EXPECT_EQ(folders.drafts, "/somewhere/state/com.corvex.NerinOption/Drafts");
  EXPECT_EQ(folders.log, "/somewhere/state/com.corvex.NerinOption/com.corvex.NerinOption.log");
}

TEST_F(UserFoldersOfTheHost, IgnoreVariablesThatAreEmptyOrRelative) {
  setenv("XDG_DATA_HOME", "data", 1);
  setenv("XDG_CONFIG_HOME", "", 1);
  setenv("XDG_STATE_HOME", "./state", 1);
  const UserFolders folders = found();
  EXPECT_EQ(folders.support, home() / ".local/share" / program);
  EXPECT_EQ(folders.preferences, home() / ".config/com.corvex.NerinOption.plist");
  EXPECT_EQ(folders.drafts, home() / ".local/state" / program / "Drafts");
}

TEST_F(UserFoldersOfTheHost, StayBelowLibraryWhereTheSupportFolderIsThere) {
  setenv("XDG_DATA_HOME", "/somewhere/data", 1);
  fs::create_directories(libraryFolder());
  const UserFolders folders = found();
  EXPECT_EQ(folders.layout, UserFolders::Layout::Library);
  EXPECT_EQ(folders.support, libraryFolder());
  EXPECT_EQ(folders.preferences, home() / "Library/Preferences/com.corvex.NerinOption.plist");
  EXPECT_EQ(folders.drafts, libraryFolder() / "Drafts");
  EXPECT_EQ(folders.log, home() / "Library/Logs/com.corvex.NerinOption.log");
}

TEST_F(UserFoldersOfTheHost, StayBelowLibraryWhenItsDiskIsNotThereNow) {
  fs::create_directories(libraryFolder().parent_path());
  fs::create_directory_symlink(home() / "unplugged", libraryFolder());
  EXPECT_EQ(found().layout, UserFolders::Layout::Library);
}

TEST_F(UserFoldersOfTheHost, BelongToOneProgramEach) {
  fs::create_directories(libraryFolder());
  const UserFolders folders = hostenvironment::userFolders("com.corvex.NerinOptionDemo");
  EXPECT_EQ(folders.layout, UserFolders::Layout::Xdg);
  EXPECT_EQ(folders.support, home() / ".local/share/com.corvex.NerinOptionDemo");
}

TEST_F(UserFoldersOfTheHost, AreBelowLibraryInAPlatformThatNamesNone) {
  LXPlatform platform;
  platform.homeFolder = home();
  LXPlatform::install(platform);
  EXPECT_EQ(LXPlatform::current().userFolders.support, libraryFolder());
  platform.userFolders = found();
  LXPlatform::install(platform);
  EXPECT_EQ(LXPlatform::current().userFolders.support, home() / ".local/share" / program);
}

TEST_F(UserFoldersOfTheHost, AreMadeForTheUserAlone) {
  const auto isPrivate = [](const fs::path& folder) {
    struct stat status {};
    return ::stat(folder.c_str(), &status) == 0 && (status.st_mode & 0777U) == 0700U;
  };
  fs::create_directory(home() / ".local");
  fs::permissions(home() / ".local", fs::perms::owner_all | fs::perms::others_exec);
  EXPECT_TRUE(UserFolders::make(found().support));
  EXPECT_TRUE(isPrivate(home() / ".local/share"));
  EXPECT_TRUE(isPrivate(found().support));
  EXPECT_FALSE(isPrivate(home() / ".local")) << "a folder that was there stays as it was";
  EXPECT_TRUE(PreferenceFile(found().preferences).setValue("key", true));
  EXPECT_TRUE(isPrivate(home() / ".config"));
  std::ofstream(home() / "file") << "in the way";
  EXPECT_FALSE(UserFolders::make(home() / "file/below"));
  EXPECT_FALSE(UserFolders::make(home() / "file"));
}
