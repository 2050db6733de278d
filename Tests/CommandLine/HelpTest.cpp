#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"

// The help, and the answers to a wrong command line.

namespace {

using testing::HasSubstr;
using testing::Not;

const std::vector<Words> everyCommand{
    {"status"},
    {"slots"},
    {"switch"},
    {"apply"},
    {"finish"},
    {"read"},
    {"profiles"},
    {"profiles", "list"},
    {"profiles", "add"},
    {"profiles", "copy"},
    {"profiles", "rename"},
    {"show"},
    {"profiles", "delete"},
    {"rate"},
    {"profiles", "import"},
    {"dpi"},
    {"profiles", "export"},
    {"lift"},
    {"macros"},
    {"leds"},
    {"macros", "list"},
    {"mode"},
    {"macros", "show"},
    {"backup"},
    {"learn"},
    {"doctor"},
    {"report"},
    {"macros", "import"},
    {"restore"},
    {"macros", "export"},
    {"macros", "rename"},
    {"macros", "delete"},
};

std::string joined(const Words& words) {
  std::string text = "nerinctl";
  for (const std::string& word : words) {
    text += ' ' + word;
  }
  return text;
}

TEST(NerinctlHelp, ShowsAnExampleOfEveryCommand) {
  const TestHome user;
  for (Words command : everyCommand) {
    const std::string example = joined(command);
    command.emplace_back("--help");
    const RunResult result = user.run(command);
    EXPECT_EQ(result.exitCode, 0) << example;
    EXPECT_THAT(result.output, HasSubstr("Example:\n  " + example)) << example;
    EXPECT_EQ(result.errors, "");
  }
  EXPECT_TRUE(user.library().empty());
}

TEST(NerinctlHelp, ListsTheCommandsAndTheExitCodes) {
  const RunResult result = TestHome().run({"--help"});
  EXPECT_EQ(result.exitCode, 0);
  for (const Words& command : everyCommand) {
    EXPECT_THAT(result.output, HasSubstr("\n  " + command.front() + " "));
  }
  EXPECT_THAT(result.output, HasSubstr("0 done, 1 failed, 2 usage, 3 no mouse, 4 no such"));
}

TEST(NerinctlHelp, TellsItsVersion) {
  const RunResult result = TestHome().run({"--version"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, testing::MatchesRegex("[0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

TEST(NerinctlUsage, NamesACommandThatItDoesNotKnow) {
  const TestHome user;
  expectComplaint(user.run({"explode"}), 2, "no such command: explode");
  expectComplaint(user.run({"profiles", "explode"}), 2, "no such command: explode");
}

TEST(NerinctlUsage, RefusesALineThatItDoesNotUnderstand) {
  const TestHome user;
  const std::vector<Words> lines{{},
                                 {"profiles"},
                                 {"apply", "Office"},
                                 {"apply", "--slot", "1"},
                                 {"apply", "Office", "--slot", "one"},
                                 {"switch", "99999999999999999999"},
                                 {"status", "now"},
                                 {"status", "--explode"},
                                 {"mode", "peace"},
                                 {"--virtual"}};
  for (const Words& line : lines) {
    const RunResult result = user.run(line);
    EXPECT_EQ(result.exitCode, 2) << joined(line);
    EXPECT_EQ(result.output, "") << joined(line);
    EXPECT_THAT(result.errors, Not("")) << joined(line);
  }
  EXPECT_TRUE(user.library().empty());
}

TEST(NerinctlUsage, TakesItsOptionsBehindTheCommandToo) {
  const TestHome user;
  const RunResult result = user.run({"status", "--virtual", user.mouseFile.string(), "--json"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(nlohmann::json::parse(result.output)["activeSlot"], 1);
}

}  // namespace
