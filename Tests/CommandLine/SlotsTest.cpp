#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Action/Edit/SlotDraft.h"
#include "Action/Library/ProfieController.h"
#include "Tests/CommandLine/TestHome.h"
#include "Tests/Support/PrivateBus.h"

// The ten slots of the mouse, with the numbers of the tabs.

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::StartsWith;

// The record that a slot is read as.
class VirtualSlot {
 public:
  explicit VirtualSlot(const TestHome& user) : m_user(user) {}

  _Nerin_PROFILE record(int slot) const {
    const auto file = m_user.files / "read.pro";
    m_user.prepare({"read", "--slot", std::to_string(slot + 1), "--output", file.string()});
    return configOf(readFile(file)).profile;
  }

 private:
  const TestHome& m_user;
};

TEST(NerinctlSlots, TellsTheStateOfAMouseAsDelivered) {
  const TestHome user;
  json status = user.json({"status"});
  status.erase("files");  // NerinctlFolders looks at them
  EXPECT_EQ(status, json({{"mouse", "virtual"},
                          {"activeSlot", 1},
                          {"name", "Profile#1"},
                          {"inLibrary", false},
                          {"profiles", 0},
                          {"macros", 0},
                          {"why", nullptr},
                          {"unfinished", json::array()}}));
  EXPECT_THAT(
      user.lines({"status"}),
      ElementsAre("mouse           virtual", "active slot     1 Profile#1", "in the library  no",
                  "profiles        0", "macros          0", StartsWith("files           ")));
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

TEST(NerinctlDiff, TellsWhatApplyingAProfileWouldChange) {
  const TestHome user;
  ProfileValue profile = profileNamed("Office");
  _Nerin_PROFILE record = VirtualSlot(user).record(1);
  record.poRate = 0;
  record.lightColorArr[2] = {1, 2, 255};
  profile.setProfileData(record);
  user.addProfile(profile);
  const auto library = user.library();
  const std::string memory = user.mouseMemory();
  const json diff = user.json({"diff", "Office", "--slot", "2"});
  EXPECT_EQ(diff["slot"], 2);
  EXPECT_EQ(diff["profile"], "Office");
  ASSERT_EQ(diff["changes"].size(), 3U) << diff;
  EXPECT_EQ(diff["changes"][0],
            json({{"about", "name"}, {"before", "Profile#2"}, {"after", "Office"}}));
  EXPECT_EQ(diff["changes"][1]["after"], "125 Hz");
  EXPECT_EQ(diff["changes"][2]["about"], "zone 3");
  EXPECT_EQ(diff["changes"][2]["after"], "#0102ff");
  EXPECT_THAT(user.lines({"diff", "Office", "--slot", "2"}),
              testing::Contains("name         Profile#2  ->  Office"));
  EXPECT_EQ(user.library(), library);
  EXPECT_EQ(user.mouseMemory(), memory);
  user.prepare({"apply", "Office", "--slot", "2"});
  EXPECT_THAT(user.json({"diff", "Office", "--slot", "2"})["changes"], testing::IsEmpty());
  EXPECT_THAT(user.lines({"diff", "Office", "--slot", "2"}), ElementsAre("no difference"));
}

TEST(NerinctlDiff, ReadsTheActiveSlotUnlessToldAnother) {
  const TestHome user;
  user.prepare({"switch", "4"});
  EXPECT_EQ(user.json({"diff"}),
            json({{"slot", 4}, {"profile", nullptr}, {"changes", json::array()}}));
}

TEST(NerinctlDiff, TellsWhatWasEditedAndNotApplied) {
  const TestHome user;
  SlotDraft draft;
  draft.slot = 1;
  draft.content.profile = VirtualSlot(user).record(1);
  draft.content.profile.liftHeight = 7;
  draft.content.profileId = ProfieController::notLinked;
  setText(draft.content.profileName, "Profile#2");
  setText(draft.content.activeAppPath, "/usr/bin/game");
  draft.content.isActiveApp = 1;
  std::filesystem::create_directories(user.folders().drafts);
  std::ofstream(user.folders().drafts / "slot-2.xml") << documentOf(draft);
  const json changes = user.json({"diff", "--slot", "2"})["changes"];
  ASSERT_EQ(changes.size(), 2U) << changes;
  EXPECT_EQ(changes[0]["about"], "lift height");
  EXPECT_EQ(changes[0]["after"], "7");
  EXPECT_EQ(changes[1],
            json({{"about", "linked program"}, {"before", nullptr}, {"after", "/usr/bin/game"}}));
  EXPECT_EQ(user.json({"diff", "--slot", "2"})["changes"], changes) << "the draft stays";
}

TEST(NerinctlDiff, AnswersFourForWhatIsNotThere) {
  const TestHome user;
  VirtualMouse(user.mouseFile).clearSlot(6);
  expectComplaint(user.runWithMouse({"diff", "--slot", "7"}), 4, "slot 7 holds no profile");
  expectComplaint(user.runWithMouse({"diff", "Nobody"}), 4);
  expectComplaint(user.runWithMouse({"diff", "--slot=11"}), 4, "no such slot: 11");
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
