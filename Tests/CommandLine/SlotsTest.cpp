#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"
#include "Tests/Support/PrivateBus.h"

// The ten slots of the mouse, with the numbers of the tabs.

namespace {

using nlohmann::json;
using testing::ElementsAre;

TEST(NerinctlSlots, TellsTheStateOfAMouseAsDelivered) {
  const TestHome user;
  EXPECT_EQ(user.json({"status"}), json({{"mouse", "virtual"},
                                         {"activeSlot", 1},
                                         {"name", "Profile#1"},
                                         {"inLibrary", false},
                                         {"profiles", 0},
                                         {"macros", 0},
                                         {"unfinished", json::array()}}));
  EXPECT_THAT(user.lines({"status"}),
              ElementsAre("mouse           virtual", "active slot     1 Profile#1",
                          "in the library  no", "profiles        0", "macros          0"));
}

TEST(NerinctlSlots, ListsTenSlots) {
  const TestHome user;
  VirtualMouse(user.mouseFile).clearSlot(6);
  ProfileValue profile = profileNamed("Profile#3");
  user.addProfile(profile);
  const json slots = user.json({"slots"});
  ASSERT_EQ(slots.size(), 10U);
  EXPECT_EQ(slots[0], json({{"slot", 1},
                            {"active", true},
                            {"name", "Profile#1"},
                            {"inLibrary", false},
                            {"unfinished", false}}));
  EXPECT_EQ(slots[2], json({{"slot", 3},
                            {"active", false},
                            {"name", "Profile#3"},
                            {"inLibrary", true},
                            {"unfinished", false}}));
  EXPECT_EQ(slots[6], json({{"slot", 7},
                            {"active", false},
                            {"name", nullptr},
                            {"inLibrary", false},
                            {"unfinished", false}}));
  const Lines lines = user.lines({"slots"});
  ASSERT_EQ(lines.size(), 10U);
  EXPECT_EQ(lines[0], "*  1   Profile#1");
  EXPECT_EQ(lines[2], "   3   Profile#3     in the library");
  EXPECT_EQ(lines[6], "   7   (no profile)");
}

TEST(NerinctlSlots, SwitchesAndTellsTheService) {
  PrivateBus bus;
  const TestHome user;
  RunSettings settings;
  settings.environment["DBUS_SESSION_BUS_ADDRESS"] = getenv("DBUS_SESSION_BUS_ADDRESS");
  const RunResult result =
      user.runWithMouse({"--trace", (user.files / "trace").string(), "switch", "10"}, settings);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.output, "slot 10 is active\n");
  EXPECT_THAT(linesOf(readFile(user.files / "trace")),
              ElementsAre("SET 0300 0 de19a90000000000", "SLEEP 30", "SET 0300 0 c407090000000000",
                          "SLEEP 30"));
  EXPECT_EQ(VirtualMouse(user.mouseFile).activeSlot(), 9);
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->member, "NerinSettingChange");
  EXPECT_EQ(message->body, "s:111 {value1=i:1 value2=i:9}");
}

TEST(NerinctlSlots, KnowsTheSlotsOneToTen) {
  const TestHome user;
  EXPECT_EQ(user.json({"switch", "1"}), json({{"activeSlot", 1}, {"unfinished", false}}));
  for (const std::string& slot : Words{"1", "5", "10"}) {
    EXPECT_EQ(user.json({"read", "--slot", slot})["name"], "Profile#" + slot);
  }
  const std::string before = user.mouseMemory();
  for (const std::string& slot : Words{"0", "11"}) {
    expectComplaint(user.runWithMouse({"switch", "--", slot}), 4, "no such slot: " + slot);
    expectComplaint(user.runWithMouse({"read", "--slot=" + slot}), 4);
    expectComplaint(user.runWithMouse({"apply", "Office", "--slot=" + slot}), 4);
  }
  EXPECT_EQ(user.mouseMemory(), before);
}

TEST(NerinctlSlots, AnswersFourForASlotWithoutAProfile) {
  const TestHome user;
  VirtualMouse(user.mouseFile).clearSlot(6);
  expectComplaint(user.runWithMouse({"read", "--slot", "7"}), 4, "slot 7 holds no profile");
}

TEST(NerinctlSlots, ReadsWithoutChangingAnything) {
  const TestHome user;
  user.addProfile(profileNamed("Profile#4"));
  const auto library = user.library();
  const std::string memory = user.mouseMemory();
  const Lines lines = user.lines({"read", "--slot", "4"});
  EXPECT_THAT(lines, testing::IsSupersetOf(
                         {"slot  4", "name  Profile#4", "report rate      1000 Hz",
                          "left click       Left Click", "DPI level 5      8200 x 8200"}));
  EXPECT_EQ(user.library(), library);
  EXPECT_EQ(user.mouseMemory(), memory);
}

TEST(NerinctlSlots, KeepsWhatTheMouseHoldsBetweenTwoRuns) {
  const TestHome user;
  EXPECT_FALSE(std::filesystem::exists(user.mouseFile));
  user.prepare({"switch", "4"});
  EXPECT_EQ(user.json({"status"})["activeSlot"], 4);
}

TEST(NerinctlTrace, ShowsAnswersToo) {
  const TestHome user;
  const Lines trace = user.trace({"status"});
  ASSERT_EQ(trace.size(), 7U);
  EXPECT_EQ(trace[0], "SET 0300 0 df19000000000000");
  EXPECT_EQ(trace[1], "SLEEP 30");
  EXPECT_THAT(trace[2], testing::MatchesRegex("GET 0300 0 [0-9a-f]{8}a0[0-9a-f]{6}"));
  EXPECT_EQ(trace[3], "SET 0300 0 c40c000000000000");
  EXPECT_EQ(trace[4], "SLEEP 30");
  EXPECT_EQ(trace[5], "GET 0306 1 " + hex(VirtualMouse(user.mouseFile).nameReport(0)));
  EXPECT_EQ(trace[6], "SLEEP 30");
}

TEST(NerinctlUsbMouse, IsMissedInOneLine) {
  const TestHome user;
  for (const Words& command :
       std::vector<Words>{{"status"}, {"slots"}, {"read", "--slot", "1"}, {"backup", "folder"}}) {
    expectComplaint(user.run(command), 3, "264a:1001");
  }
  EXPECT_THAT(std::filesystem::directory_iterator(user.files),
              testing::Eq(std::filesystem::directory_iterator()));
  EXPECT_TRUE(user.json({"profiles", "list"}).empty());
}

}  // namespace
