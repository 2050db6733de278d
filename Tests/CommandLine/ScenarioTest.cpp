#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"

// Bad mice: the right exit code, one clear line, and no loss of the user's data.

namespace {

using nlohmann::json;
using testing::AnyOf;
using testing::HasSubstr;

class NerinctlScenario : public testing::Test {
 protected:
  void SetUp() override {
    user.addMacro("Reload", clickMacro("Reload"));
    ProfileValue office = profileNamed("Office");
    setMacro(office, 3, 1, 1);
    user.addProfile(office);
    user.prepare({"apply", "Office", "--slot", "1"});
    library = user.library();
    memory = user.mouseMemory();
  }

  RunResult run(const std::string& scenario, const Words& command) const {
    Words words{"--scenario", scenario};
    words.insert(words.end(), command.begin(), command.end());
    return user.runWithMouse(words);
  }

  void expectNothingLost() const {
    EXPECT_EQ(user.library(), library);
    EXPECT_EQ(user.mouseMemory(), memory);
  }

  const std::vector<Words> reading{{"status"},
                                   {"slots"},
                                   {"read", "--slot", "1"},
                                   {"read", "--slot", "1", "--output", "read.pro"},
                                   {"backup", "kept"}};
  const std::vector<Words> writing{{"switch", "2"},   {"apply", "Office", "--slot", "1"},
                                   {"rate", "500"},   {"dpi", "--levels", "2"},
                                   {"lift", "3"},     {"leds", "--all", "ffffff"},
                                   {"mode", "battle"}};
  TestHome user;
  std::map<std::string, std::string> library;
  std::string memory;
};

TEST_F(NerinctlScenario, AbsentEndsEveryCommandWithThree) {
  for (const auto& commands : {reading, writing}) {
    for (const Words& command : commands) {
      expectComplaint(run("absent", command), 3, "not plugged in");
    }
  }
  expectNothingLost();
  EXPECT_FALSE(std::filesystem::exists(user.files / "kept"));
  EXPECT_EQ(run("absent", {"profiles", "list"}).exitCode, 0);
}

TEST_F(NerinctlScenario, UnpluggedDuringApplyLeavesTheLibraryWhole) {
  for (const int transfers : {0, 1, 2, 3, 4, 5}) {
    expectComplaint(
        run("unplugged-after=" + std::to_string(transfers), {"apply", "Office", "--slot", "4"}), 3);
    for (const auto& [file, contents] : library) {
      if (file.ends_with(".pro") || file.ends_with(".xml")) {
        EXPECT_EQ(readFile(file), contents) << file << " after " << transfers;
      }
    }
  }
  // The command needs six transfers.
  EXPECT_EQ(run("unplugged-after=6", {"apply", "Office", "--slot", "4"}).exitCode, 0);
}

TEST_F(NerinctlScenario, UnpluggedDuringOtherCommandsEndsWithThree) {
  for (const auto& commands : {reading, writing}) {
    for (const Words& command : commands) {
      if (command[0] != "rate" && command[0] != "apply") {
        expectComplaint(run("unplugged-after=1", command), 3, "the mouse went away");
      }
    }
  }
  EXPECT_EQ(user.library(), library);
  EXPECT_FALSE(std::filesystem::exists(user.files / "read.pro"));
  EXPECT_FALSE(std::filesystem::exists(user.files / "kept"));
}

TEST_F(NerinctlScenario, UnpluggedDuringABackupWritesNoFile) {
  for (const int transfers : {5, 20}) {
    expectComplaint(run("unplugged-after=" + std::to_string(transfers), {"backup", "kept"}), 3);
    EXPECT_FALSE(std::filesystem::exists(user.files / "kept"));
  }
  expectNothingLost();
}

TEST_F(NerinctlScenario, ShortAnswersAreAFailure) {
  for (const Words& command : reading) {
    expectComplaint(run("short", command), 1, "did not answer as it should");
  }
  for (const Words& command :
       std::vector<Words>{{"dpi", "--levels", "2"}, {"lift", "3"}, {"leds", "--all", "ffffff"}}) {
    expectComplaint(run("short", command), 1, "did not answer as it should");
  }
  expectNothingLost();
  EXPECT_FALSE(std::filesystem::exists(user.files / "read.pro"));
}

TEST_F(NerinctlScenario, RandomAnswersHarmNothing) {
  for (const Words& command : reading) {
    const RunResult result = run("random", command);
    EXPECT_THAT(result.exitCode, AnyOf(0, 1, 4)) << command[0] << result.errors;
    expectHarmless(result.output);
    expectHarmless(result.errors);
  }
  expectNothingLost();
}

TEST_F(NerinctlScenario, GarbageIsShownAndKeptButNotBelieved) {
  EXPECT_EQ(run("garbage", {"slots"}).exitCode, 0);
  const RunResult read = run("garbage", {"--json", "read", "--slot", "3"});
  EXPECT_EQ(read.exitCode, 0);
  EXPECT_EQ(json::parse(read.output)["levels"].size(), 5U);
  EXPECT_EQ(run("garbage", {"backup", "kept"}).exitCode, 0);
  // Commands for the active slot fail if the mouse reports a number that it does not have.
  for (const Words& command : std::vector<Words>{
           {"status"}, {"dpi", "--levels", "2"}, {"lift", "3"}, {"leds", "--all", "ffffff"}}) {
    expectComplaint(run("garbage", command), 1, "a slot that it does not have");
  }
  expectNothingLost();
}

TEST_F(NerinctlScenario, ASlowMouseIsWaitedFor) {
  const RunResult slow = run("slow", {"read", "--slot", "1"});
  EXPECT_EQ(slow.exitCode, 0);
  EXPECT_EQ(slow.output, user.runWithMouse({"read", "--slot", "1"}).output);
  EXPECT_EQ(run("slow", {"apply", "Office", "--slot", "1"}).exitCode, 0);
  expectNothingLost();
}

TEST_F(NerinctlScenario, OnlyKnownOnesOfAVirtualMouseAreTaken) {
  for (const std::string& name : Words{"", "explode", "unplugged-after=", "unplugged-after=-1",
                                       "unplugged-after=x", "\x1B[2J"}) {
    expectComplaint(run(name, {"status"}), 2, "no such scenario");
  }
  expectComplaint(user.run({"--scenario", "slow", "status"}), 2, "--virtual");
  EXPECT_EQ(run("healthy", {"status"}).exitCode, 0);
  expectNothingLost();
}

}  // namespace
