// Where the program keeps the user's files.

#include <gmock/gmock.h>

#include "Kit/Core/DurableFile.h"
#include "Tests/CommandLine/TestHome.h"

namespace fs = std::filesystem;

using testing::Contains;
using testing::HasSubstr;
using testing::UnorderedElementsAre;

namespace {

std::vector<std::string> namesBelow(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder)) {
    names.push_back(entry.path().filename().string());
  }
  return names;
}

}  // namespace

TEST(NerinctlFolders, AreThoseOfTheDesktop) {
  const TestHome user;
  user.addProfile(profileNamed("Office"));
  EXPECT_THAT(namesBelow(user.home), UnorderedElementsAre(".local"));
  EXPECT_TRUE(fs::exists(user.home / ".local/share/com.corvex.NerinOption/Profiles/Office.pro"));
  EXPECT_THAT(user.lines({"status"}), Contains("files           " + user.supportFolder().string()));
  const auto files = user.json({"status"})["files"];
  EXPECT_EQ(files["layout"], "xdg");
  EXPECT_EQ(files["support"], user.supportFolder().string());
  EXPECT_EQ(files["preferences"], user.preferences().string());
  EXPECT_EQ(files["drafts"], user.folders().drafts.string());
  EXPECT_EQ(files["log"], user.folders().log.string());
}

TEST(NerinctlFolders, FollowTheVariablesOfTheDesktop) {
  const TestHome user;
  RunSettings settings;
  settings.environment = {{"XDG_DATA_HOME", (user.files / "data").string()},
                          {"XDG_CONFIG_HOME", "relative"},
                          {"XDG_STATE_HOME", (user.files / "state").string()}};
  const RunResult result = user.runWithMouse({"--json", "status"}, settings);
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  const auto files = nlohmann::json::parse(result.output)["files"];
  EXPECT_EQ(files["support"], (user.files / "data/com.corvex.NerinOption").string());
  EXPECT_EQ(files["preferences"], user.preferences().string());
  EXPECT_EQ(files["drafts"], (user.files / "state/com.corvex.NerinOption/Drafts").string());
  EXPECT_TRUE(fs::exists(user.files / "data/com.corvex.NerinOption/MenuInfo.xml"));
  EXPECT_FALSE(fs::exists(user.files / "relative"));
}

TEST(NerinctlFolders, AreUsedWhereTheyLayAlready) {
  const TestHome user;
  const fs::path library = user.home / "Library/Application Support/com.corvex.NerinOption";
  fs::create_directories(library);
  user.addProfile(profileNamed("Office"));
  EXPECT_TRUE(fs::exists(library / "Profiles/Office.pro"));
  EXPECT_THAT(namesBelow(user.home), UnorderedElementsAre("Library"));
  EXPECT_THAT(user.lines({"status"}),
              Contains("files           " + library.string() + " (where it was already)"));
  const auto files = user.json({"status"})["files"];
  EXPECT_EQ(files["layout"], "library");
  EXPECT_EQ(files["preferences"],
            (user.home / "Library/Preferences/com.corvex.NerinOption.plist").string());
  EXPECT_EQ(files["drafts"], (library / "Drafts").string());
  // A program link is a preference, and an Apply that is on its way a draft.
  ProfileValue linked = profileNamed("Linked");
  linked.setIsActiveApp(true);
  linked.setActiveAppPath("/usr/bin/true");
  user.addProfile(linked);
  user.prepare({"apply", "Linked", "--slot", "2"});
  EXPECT_THAT(namesBelow(user.home), UnorderedElementsAre("Library"));
  EXPECT_TRUE(fs::exists(user.home / "Library/Preferences/com.corvex.NerinOption.plist"));
}
