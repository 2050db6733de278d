#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "Tests/CommandLine/TestHome.h"

// The library on the command line.

namespace {

using nlohmann::json;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;

Words namesIn(const json& list) {
  Words names;
  for (const auto& profile : list) {
    names.push_back(profile["name"]);
  }
  return names;
}

std::string factoryFile(int number) {
  return (std::filesystem::path(NERIN_RESOURCES) / ("Profile#" + std::to_string(number) + ".pro"))
      .string();
}

TEST(NerinctlProfiles, AnswersAnEmptyListForANewUser) {
  const TestHome user;
  EXPECT_TRUE(user.lines({"profiles", "list"}).empty());
  EXPECT_EQ(user.json({"profiles", "list"}), json::array());
}

TEST(NerinctlProfiles, AddsCopiesRenamesAndDeletes) {
  const TestHome user;
  EXPECT_THAT(user.lines({"profiles", "add", "Office"}), ElementsAre("added Office"));
  EXPECT_EQ(user.json({"profiles", "copy", "Office"}),
            json({{"id", 2}, {"name", "Office_1"}, {"factory", false}}));
  EXPECT_THAT(user.lines({"profiles", "rename", "Office_1", "Game"}),
              ElementsAre("renamed to Game"));
  EXPECT_THAT(user.lines({"profiles", "list"}), ElementsAre("1  Office", "2  Game"));
  EXPECT_EQ(readFile(user.profileFolder() / "Game.pro").size(), 5264U);
  EXPECT_THAT(user.lines({"profiles", "delete", "Office"}), ElementsAre("deleted Office"));
  EXPECT_EQ(user.json({"profiles", "list"}),
            json::array({{{"id", 2}, {"name", "Game"}, {"factory", false}}}));
  EXPECT_FALSE(std::filesystem::exists(user.profileFolder() / "Office.pro"));
}

TEST(NerinctlProfiles, ImportsAFactoryProfileAndNumbersASecondOne) {
  const TestHome user;
  EXPECT_THAT(user.lines({"profiles", "import", factoryFile(2)}),
              ElementsAre("imported Profile#2"));
  EXPECT_EQ(user.json({"profiles", "import", factoryFile(2)})["name"], "Profile#2_1");
  EXPECT_THAT(namesIn(user.json({"profiles", "list"})), ElementsAre("Profile#2", "Profile#2_1"));
}

TEST(NerinctlProfiles, ExportsTheBytesOfTheLibrary) {
  const TestHome user;
  user.addProfile(profileNamed("Office"));
  const auto file = user.files / "exported.pro";
  EXPECT_THAT(user.lines({"profiles", "export", "Office", file.string()}),
              ElementsAre("exported Office"));
  EXPECT_EQ(readFile(file), readFile(user.profileFolder() / "Office.pro"));
  EXPECT_EQ(user.json({"profiles", "export", "Office", "relative.pro"})["file"], "relative.pro");
  EXPECT_EQ(readFile(user.files / "relative.pro"), readFile(file));
}

TEST(NerinctlProfiles, ShowsAProfileByNameAndByFile) {
  const TestHome user;
  const json byFile = user.json({"show", factoryFile(2)});
  EXPECT_EQ(byFile["name"], "Profile#2");
  EXPECT_EQ(byFile["factory"], true);
  EXPECT_EQ(byFile["rate"], 1000);
  EXPECT_EQ(byFile["lift"], 15);
  EXPECT_EQ(byFile["mode"], "normal");
  EXPECT_EQ(byFile["activeLevel"], 3);
  EXPECT_EQ(byFile["levels"].size(), 5U);
  EXPECT_EQ(byFile["levels"][1], json({{"x", 800}, {"y", 800}}));
  EXPECT_EQ(byFile["zones"].size(), 4U);
  EXPECT_EQ(byFile["buttons"].size(), 16U);
  EXPECT_EQ(byFile["buttons"][0]["function"], "Left Click");
  EXPECT_EQ(byFile["linkActive"], false);

  user.prepare({"profiles", "import", factoryFile(2)});
  EXPECT_EQ(user.json({"show", "Profile#2"}), byFile);
  const Lines lines = user.lines({"show", "Profile#2"});
  EXPECT_THAT(lines, testing::IsSupersetOf(
                         {"name             Profile#2", "report rate      1000 Hz",
                          "DPI level 3      1600 x 1600 (active)", "left click       Left Click"}));
}

TEST(NerinctlProfiles, ShowsTheProfileRatherThanAFileOfThatName) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  writeFile(user.files / "Office", "no profile");
  EXPECT_EQ(user.json({"show", "Office"})["name"], "Office");
}

TEST(NerinctlProfiles, AnswersFourForAProfileThatIsNotThere) {
  const TestHome user;
  user.addProfile(profileNamed("Office"));
  const auto before = user.library();
  for (const Words& command : std::vector<Words>{{"show", "Game"},
                                                 {"profiles", "copy", "Game"},
                                                 {"profiles", "rename", "Game", "Work"},
                                                 {"profiles", "delete", "Game"},
                                                 {"profiles", "delete", ""},
                                                 {"profiles", "export", "Game", "game.pro"},
                                                 {"apply", "Game", "--slot", "1"}}) {
    expectComplaint(user.runWithMouse(command), 4, "no such profile");
  }
  EXPECT_EQ(user.library(), before);
  EXPECT_FALSE(std::filesystem::exists(user.files / "game.pro"));
}

TEST(NerinctlProfiles, RefusesNamesThatTheMouseCannotKeep) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  const auto before = user.library();
  for (const std::string& name :
       {std::string(), std::string(300, 'x'), std::string(66, 'x'), std::string("a/b"),
        std::string("a:b"), std::string("M\xC3\xBCnchen"), std::string("a\x1B[2Jb")}) {
    expectComplaint(user.run({"profiles", "add", name}), 2, "1 to 65 ASCII characters");
    expectComplaint(user.run({"profiles", "rename", "Office", name}), 2);
  }
  expectComplaint(user.run({"profiles", "add", "Office"}), 1, "already");
  expectComplaint(user.run({"profiles", "add", "pROFILE#10"}), 1, "factory");
  EXPECT_EQ(user.library(), before);
  user.prepare({"profiles", "add", std::string(65, 'x')});
}

TEST(NerinctlProfiles, StopsAtFiftyProfiles) {
  const TestHome user;
  user.prepare({"profiles", "list"});
  for (int number = 1; number <= 50; ++number) {
    ProfileValue profile = profileNamed("P" + std::to_string(number));
    profile.setProfileId(static_cast<std::uint64_t>(number));
    ASSERT_FALSE(profile.saveToPath(user.profileFolder() / (*profile.name() + ".pro")));
  }
  expectComplaint(user.run({"profiles", "add", "Office"}), 1, "Maximum number of profiles reached");
  expectComplaint(user.run({"profiles", "copy", "P1"}), 1, "Maximum number of profiles reached");
  expectComplaint(user.run({"profiles", "import", factoryFile(1)}), 1,
                  "Maximum number of profiles reached");
  EXPECT_EQ(user.json({"profiles", "list"}).size(), 50U);
}

TEST(NerinctlProfiles, HandlesAProfileWithoutAName) {
  const TestHome user;
  user.addProfile(profileNamed(""));
  EXPECT_THAT(namesIn(user.json({"profiles", "list"})), ElementsAre(""));
  expectComplaint(user.runWithMouse({"apply", "", "--slot", "1"}), 1, "needs a name");
  user.prepare({"profiles", "rename", "", "Named"});
  EXPECT_THAT(namesIn(user.json({"profiles", "list"})), ElementsAre("Named"));
}

TEST(NerinctlProfiles, HandlesAProfileWhoseNameIsNoText) {
  const TestHome user;
  std::string bytes = readFile(factoryFile(1));
  bytes[9] = '\xFF';
  writeFile(user.files / "broken-name.pro", bytes);
  user.prepare({"profiles", "import", "broken-name.pro"});
  EXPECT_THAT(namesIn(user.json({"profiles", "list"})), ElementsAre(""));
  user.prepare({"profiles", "delete", ""});
  EXPECT_EQ(user.json({"profiles", "list"}), json::array());
}

TEST(NerinctlProfiles, LosesNothingToASecondOneAtWork) {
  const TestHome user;
  user.prepare({"profiles", "list"});
  std::vector<pid_t> children;
  for (int number = 1; number <= 4; ++number) {
    const pid_t child = fork();
    if (child == 0) {
      _exit(user.run({"profiles", "add", "P" + std::to_string(number)}).exitCode);
    }
    children.push_back(child);
  }
  for (const pid_t child : children) {
    int status = -1;
    waitpid(child, &status, 0);
    EXPECT_EQ(status, 0);
  }
  EXPECT_EQ(user.json({"profiles", "list"}).size(), 4U);
}

TEST(NerinctlProfiles, ShowsTheHistoryOfTheLibrary) {
  const TestHome user;
  EXPECT_EQ(user.json({"profiles", "history"}), json::array());
  user.prepare({"profiles", "add", "Office"});
  user.prepare({"profiles", "rename", "Office", "Work"});
  const json states = user.json({"profiles", "history"});
  ASSERT_EQ(states.size(), 2U);
  EXPECT_EQ(states[0]["number"], 2);
  EXPECT_EQ(states[1]["number"], 1);
  EXPECT_EQ(states[1]["profiles"], 1);
  EXPECT_EQ(states[1]["added"], json::array({"Office"}));
  EXPECT_EQ(states[1]["removed"], json::array({"Work"}));
  EXPECT_EQ(states[0]["changed"], json::array());
  EXPECT_EQ(states[0]["time"].get<std::string>().size(), 20U);
  EXPECT_THAT(
      user.lines({"profiles", "history"}),
      ElementsAre(AllOf(testing::StartsWith("2 "), HasSubstr("1 profile"), HasSubstr("as now")),
                  AllOf(testing::StartsWith("1 "), HasSubstr("+Office -Work"))));
}

TEST(NerinctlProfiles, RecoversAStateOrOneProfileOfIt) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  user.prepare({"profiles", "add", "Game"});
  user.prepare({"profiles", "delete", "Office"});
  EXPECT_THAT(user.lines({"profiles", "recover", "2", "Office"}), ElementsAre("recovered Office"));
  EXPECT_THAT(namesIn(user.json({"profiles", "list"})),
              testing::UnorderedElementsAre("Office", "Game"));
  EXPECT_THAT(user.lines({"profiles", "recover", "1", "Office"}),
              ElementsAre("recovered Office_1"));
  EXPECT_THAT(user.lines({"profiles", "recover", "1"}), ElementsAre("recovered 1 profile"));
  EXPECT_THAT(namesIn(user.json({"profiles", "list"})), ElementsAre("Office"));
  // The state before it is there too.
  const json states = user.json({"profiles", "history"});
  EXPECT_EQ(states[1]["profiles"], 3);
  expectComplaint(user.run({"profiles", "recover", "99"}), 4, "no such state");
  expectComplaint(user.run({"profiles", "recover", "1", "Game"}), 4, "no such profile");
}

}  // namespace
