// What the layers below a command warn of reaches the user on standard error, and nothing else.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"

namespace {

using testing::AllOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::StartsWith;

class NerinctlWarnings : public testing::Test {
 protected:
  void SetUp() override {
    user.addProfile(profileNamed("Office"));
    // The second of two files of one name is passed over.
    ASSERT_FALSE(profileNamed("Office").saveToPath(user.profileFolder() / "other\x1B[2J.pro"));
  }

  TestHome user;
};

TEST_F(NerinctlWarnings, ReachTheUserAndLeaveTheAnswerAlone) {
  for (const Words& command : {Words{"profiles", "list"}, Words{"--json", "profiles", "list"}}) {
    const RunResult result = user.run(command);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(linesOf(result.errors),
                ElementsAre(AllOf(StartsWith("nerinctl: warning: "),
                                  EndsWith("other?[2J.pro is passed over: its name is taken"))));
    expectHarmless(result.errors);
  }
  const RunResult result = user.run({"--json", "profiles", "list"});
  EXPECT_EQ(nlohmann::json::parse(result.output).size(), 1U);
}

TEST_F(NerinctlWarnings, ComeBeforeTheErrorOfTheCommand) {
  const RunResult result = user.run({"show", "nowhere"});
  EXPECT_EQ(result.exitCode, 4);
  EXPECT_THAT(linesOf(result.errors),
              ElementsAre(StartsWith("nerinctl: warning: "), StartsWith("nerinctl: no such")));
}

TEST(NerinctlWarningsOfAFailure, AreNotRepeated) {
  const TestHome user;
  user.prepare({"profiles", "list"});
  RunSettings settings;
  settings.fileSizeLimit = 0;
  const RunResult result = user.run({"profiles", "add", "Office"}, settings);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(linesOf(result.errors), ElementsAre(StartsWith("nerinctl: the library could not")));
}

TEST(NerinctlWarningsOfAFailure, GiveTheReasonThatTheErrorLacks) {
  const TestHome user;
  user.addMacro("Reload", clickMacro("Reload"));
  RunSettings settings;
  settings.fileSizeLimit = 0;
  const RunResult result = user.run({"macros", "delete", "Reload"}, settings);
  EXPECT_EQ(result.exitCode, 1);
  EXPECT_THAT(linesOf(result.errors),
              ElementsAre("nerinctl: warning: the catalogue was not saved: File too large",
                          StartsWith("nerinctl: the macros could not be saved")));
}

}  // namespace
