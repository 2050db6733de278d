// The file that a person sends along with a question, and the mouse that answers from it.

#include <algorithm>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"

namespace {

using testing::Contains;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class Report : public testing::Test {
 protected:
  Report() : file((user.files / "report.txt").string()) {
    ProfileValue profile = profileNamed("Arena");
    user.addMacro("Secret", clickMacro("Secret"));
    user.addProfile(profile);
    user.prepare({"apply", "Arena", "--slot", "3"});
    user.prepare({"switch", "3"});
  }
  std::string written() {
    const RunResult result = user.runWithMouse({"report", file}, RunSettings{});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return readFile(file);
  }
  // With the report in the place of the mouse.
  RunResult replayed(Words arguments) const {
    arguments.insert(arguments.begin(), {"--virtual", file});
    return user.run(arguments);
  }

  TestHome user;
  const std::string file;
};

TEST_F(Report, HoldsWhatTheDoctorSaysAndWhatTheMouseAnswers) {
  const Lines lines = linesOf(written());
  EXPECT_EQ(lines.front(), "NerinOption report 1");
  EXPECT_THAT(lines, Contains("[doctor]"));
  EXPECT_THAT(lines, Contains(HasSubstr("mouse: virtual")));
  EXPECT_THAT(lines, Contains("[trace]"));
  EXPECT_GT(std::count_if(lines.begin(), lines.end(),
                          [](const std::string& line) { return line.starts_with("GET "); }),
            20);
}

TEST_F(Report, SaysNothingOfTheHomeFolderAndOfMacros) {
  ProfileValue profile = profileNamed("Player");
  MacroInfo macro = clickMacro("Secret");
  setMacro(profile, 4, 1, 1);
  user.addProfile(profile);
  user.prepare({"apply", "Player", "--slot", "4"});
  const std::string text = written();
  EXPECT_THAT(text, Not(HasSubstr(user.home.string())));
  EXPECT_THAT(text, HasSubstr("~"));
  // The report of a macro has the number 4.
  EXPECT_THAT(linesOf(text), Not(Contains(StartsWith("GET 0304"))));
  EXPECT_THAT(
      linesOf(user.runWithMouse({"--trace", "/dev/stdout", "read", "--slot", "4", "--output", file},
                                RunSettings{})
                  .output),
      Contains(StartsWith("GET 0304")));
}

TEST_F(Report, AnswersAsTheMouseDid) {
  const std::string status = user.runWithMouse({"status"}, RunSettings{}).output;
  ASSERT_THAT(status, HasSubstr("3 Arena"));
  written();
  user.prepare({"switch", "1"});
  const RunResult result = replayed({"status"});
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.output, status);
}

TEST_F(Report, ATraceAnswersToo) {
  const RunResult before = user.runWithMouse({"--trace", file, "status"}, RunSettings{});
  ASSERT_EQ(before.exitCode, 0);
  user.prepare({"switch", "1"});
  EXPECT_EQ(replayed({"status"}).output, before.output);
}

TEST_F(Report, AMouseThatAnswersNonsenseIsReplayedAsItWas) {
  const RunResult result =
      user.runWithMouse({"--scenario", "garbage", "report", file}, RunSettings{});
  ASSERT_EQ(result.exitCode, 0) << result.errors;
  const RunResult sick = user.runWithMouse({"--scenario", "garbage", "status"}, RunSettings{});
  const RunResult again = replayed({"status"});
  EXPECT_EQ(again.exitCode, sick.exitCode);
  EXPECT_EQ(again.output, sick.output);
}

TEST_F(Report, WhatWasNotAskedThenHasNoAnswer) {
  written();
  EXPECT_NE(replayed({"switch", "5"}).exitCode, 0);
}

TEST_F(Report, BrokenLinesAreLeftOut) {
  const std::string text = written();
  writeFile(file, text + "GET zz 1 00\nGET 0301 1 0\nSET 0300 99999999 00\nGET\n\n" +
                      std::string(9000, 'f') + "\n");
  EXPECT_EQ(replayed({"status"}).exitCode, 0);
  writeFile(file, "NerinOption report 1\n");
  EXPECT_NE(replayed({"status"}).exitCode, 0);
}

TEST_F(Report, DoesNotOverwriteTheMouse) {
  const std::string before = user.mouseMemory();
  const RunResult result = user.runWithMouse({"report", user.mouseFile.string()}, RunSettings{});
  expectComplaint(result, 2, "would overwrite the virtual mouse");
  EXPECT_EQ(user.mouseMemory(), before);
}

TEST_F(Report, SaysThatTheFileCannotBeWritten) {
  const RunResult result = user.runWithMouse({"report", "/nowhere/report.txt"}, RunSettings{});
  expectComplaint(result, 1, "cannot be written");
}

}  // namespace
