#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"

// Settings that change at once: the commands, and the content of the active slot afterwards.

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::ElementsAreArray;

// Setting commands, each followed by its pause.
Lines paused(const Lines& commands) {
  Lines lines;
  for (const std::string& command : commands) {
    lines.push_back("SET 0300 0 " + command);
    lines.emplace_back("SLEEP 30");
  }
  return lines;
}

// The commands after the active slot was read.
Lines sentAfterReading(const Lines& trace) {
  // Three lines and one pause fewer for the slot's number, four lines for its image.
  constexpr std::ptrdiff_t reading = 3 + 4;
  return trace.size() < static_cast<std::size_t>(reading)
             ? Lines{}
             : Lines(trace.begin() + reading, trace.end());
}

std::string image(const TestHome& user, int slot = 0) {
  return hex(VirtualMouse(user.mouseFile).imageReport(slot));
}

// Bytes of an image, with the positions of the report.
std::string bytesOf(const std::string& image, std::size_t first, std::size_t count) {
  return image.substr(2 * first, 2 * count);
}

// The image without its checksum and the bytes that a setting may change.
std::string without(std::string image, std::size_t first, std::size_t count) {
  image.replace(2 * first, 2 * count, 2 * count, '.');
  return image.replace(6, 2, "..");
}

TEST(NerinctlSettings, SetTheReportRate) {
  const TestHome user;
  const std::string before = (user.prepare({"status"}), image(user));
  const std::vector<std::pair<std::string, std::string>> rates{
      {"125", "08"}, {"250", "04"}, {"500", "02"}, {"1000", "01"}};
  for (const auto& [hertz, byte] : rates) {
    EXPECT_THAT(user.trace({"rate", hertz}),
                ElementsAre("SET 0300 0 c40f0000" + byte + "000000", "SLEEP 30", "SLEEP 30"));
    EXPECT_EQ(bytesOf(image(user), 4, 1), byte);
    EXPECT_EQ(user.json({"read", "--slot", "1"})["rate"], std::stoi(hertz));
  }
  EXPECT_EQ(without(image(user), 4, 1), without(before, 4, 1));
  EXPECT_EQ(user.json({"rate", "500"}), json({{"rate", 500}}));
  EXPECT_THAT(user.lines({"rate", "500"}), ElementsAre("report rate 500 Hz"));
  expectComplaint(user.runWithMouse({"rate", "333"}), 2, "125, 250, 500 or 1000");
}

TEST(NerinctlSettings, SetTheLiftHeight) {
  const TestHome user;
  const std::string before = (user.prepare({"status"}), image(user));
  const Lines sent = sentAfterReading(user.trace({"lift", "7"}));
  ASSERT_EQ(sent.size(), 28U);
  EXPECT_THAT(Lines(sent.end() - 4, sent.end()),
              ElementsAreArray(paused({"c40f000127000000", "c5002e0700000000"})));
  EXPECT_EQ(bytesOf(image(user), 5, 1), "27");
  EXPECT_EQ(without(image(user), 5, 1), without(before, 5, 1));
  EXPECT_EQ(user.json({"lift", "31"}), json({{"lift", 31}}));
  EXPECT_THAT(user.lines({"lift", "0"}), ElementsAre("lift height 0"));
  for (const std::string& height : Words{"32", "-1"}) {
    expectComplaint(user.runWithMouse({"lift", "--", height}), 2, "0 to 31");
  }
}

TEST(NerinctlSettings, SetTheDpiLevels) {
  const TestHome user;
  const std::string before = (user.prepare({"switch", "2"}), image(user, 1));
  const Lines trace = user.trace(
      {"dpi", "--levels", "3", "--set", "1=100", "--set", "3=8200x150", "--active", "2"});
  // Unused levels keep their values: x, then y of each.
  EXPECT_THAT(sentAfterReading(trace),
              ElementsAreArray(paused({"c40f000402000000", "c40f000302000000", "c40f000910000000",
                                       "c40f000810000000", "c40f000ea4000000", "c40f000d03000000",
                                       "c40f001340000000", "c40f001240000000", "c40f0018a4000000",
                                       "c40f0017a4000000", "c40f000231000000", "c40f010100000000",
                                       "c40f00012f000000", "c5002e0f00000000"})));
  const json slot = user.json({"read", "--slot", "2"});
  EXPECT_EQ(
      slot["levels"],
      json::array({{{"x", 100}, {"y", 100}}, {{"x", 800}, {"y", 800}}, {{"x", 8200}, {"y", 150}}}));
  EXPECT_EQ(slot["activeLevel"], 2);
  EXPECT_EQ(bytesOf(image(user, 1), 6, 3), "310202");
  // The settings do not include the colors of the levels.
  EXPECT_EQ(without(image(user, 1), 6, 23), without(before, 6, 23));
}

TEST(NerinctlSettings, AnswerTheDpiLevelsInUse) {
  const TestHome user;
  EXPECT_EQ(user.json({"dpi", "--levels", "1"}),
            json({{"levels", json::array({{{"x", 400}, {"y", 400}}})}, {"activeLevel", 1}}));
  EXPECT_THAT(user.lines({"dpi", "--levels", "2", "--active", "2"}), ElementsAre("DPI levels set"));
}

TEST(NerinctlSettings, RefuseDpiLevelsThatTheMouseDoesNotHave) {
  const TestHome user;
  user.prepare({"dpi", "--levels", "2"});
  const std::string before = user.mouseMemory();
  for (const Words& options : std::vector<Words>{{},
                                                 {"--levels", "0"},
                                                 {"--levels", "6"},
                                                 {"--active", "0"},
                                                 {"--active", "6"},
                                                 {"--active", "3"},
                                                 {"--set", "0=800"},
                                                 {"--set", "6=800"},
                                                 {"--set", "1=50"},
                                                 {"--set", "1=8250"},
                                                 {"--set", "1=825"},
                                                 {"--set", "1=800x"},
                                                 {"--set", "1=800x-800"},
                                                 {"--set", "1"},
                                                 {"--set", "1=fast"},
                                                 {"--set", "=800"}}) {
    Words command{"dpi"};
    command.insert(command.end(), options.begin(), options.end());
    expectComplaint(user.runWithMouse(command), 2);
  }
  EXPECT_EQ(user.mouseMemory(), before);
}

TEST(NerinctlSettings, SetTheColors) {
  const TestHome user;
  const std::string before = (user.prepare({"status"}), image(user));
  const Lines trace = user.trace({"leds", "--all", "#e5262f", "--zone", "3=0000ff"});
  EXPECT_THAT(sentAfterReading(trace),
              ElementsAreArray(paused({"c40f0027e5000000", "c40f002826000000", "c40f00292f000000",
                                       "c40f002be5000000", "c40f002c26000000", "c40f002d2f000000",
                                       "c40f002f00000000", "c40f003000000000", "c40f0031ff000000",
                                       "c40f0033e5000000", "c40f003426000000", "c40f00352f000000",
                                       "c403030300000000"})));
  EXPECT_EQ(bytesOf(image(user), 42, 16), "01e5262f01e5262f010000ff01e5262f");
  EXPECT_EQ(without(image(user), 42, 16), without(before, 42, 16));
  EXPECT_EQ(user.json({"leds", "--zone", "1=00ff00", "2=ffffff"})["zones"][1]["colour"], "#ffffff");
  EXPECT_THAT(user.lines({"leds", "--all", "010203"}), ElementsAre("colours set"));
}

TEST(NerinctlSettings, RefuseWhatIsNoColor) {
  const TestHome user;
  user.prepare({"status"});
  const std::string before = user.mouseMemory();
  for (const Words& options : std::vector<Words>{{},
                                                 {"--all", "red"},
                                                 {"--all", "-00001"},
                                                 {"--all", "1234567"},
                                                 {"--all", "12345g"},
                                                 {"--zone", "0=ffffff"},
                                                 {"--zone", "5=ffffff"},
                                                 {"--zone", "ffffff"}}) {
    Words command{"leds"};
    command.insert(command.end(), options.begin(), options.end());
    expectComplaint(user.runWithMouse(command), 2);
  }
  EXPECT_EQ(user.mouseMemory(), before);
}

TEST(NerinctlSettings, SetTheLedMode) {
  const TestHome user;
  EXPECT_THAT(user.trace({"mode", "battle"}),
              ElementsAreArray(paused({"c40f002603000000", "c40f002a03000000", "c40f002e03000000",
                                       "c40f003203000000", "c403030300000000"})));
  EXPECT_EQ(user.json({"read", "--slot", "1"})["mode"], "battle");
  EXPECT_THAT(user.trace({"mode", "normal"}),
              ElementsAreArray(paused({"c40f002601000000", "c40f002a01000000", "c40f002e02000000",
                                       "c40f003201000000", "c403030300000000"})));
  EXPECT_EQ(user.json({"read", "--slot", "1"})["mode"], "normal");
  EXPECT_EQ(user.json({"mode", "battle"}), json({{"mode", "battle"}}));
  EXPECT_THAT(user.lines({"mode", "normal"}), ElementsAre("LED mode normal"));
}

TEST(NerinctlSettings, ChangeTheActiveSlotOnlyAndNoLibrary) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  user.prepare({"switch", "5"});
  const auto library = user.library();
  const std::string first = image(user, 0);
  const std::string fifth = image(user, 4);
  user.prepare({"leds", "--all", "123456"});
  EXPECT_EQ(image(user, 0), first);
  EXPECT_NE(image(user, 4), fifth);
  EXPECT_EQ(user.library(), library);
}

}  // namespace
