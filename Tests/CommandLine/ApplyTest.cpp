#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"
#include "Tests/Support/PrivateBus.h"

// Applying a profile to a slot makes exactly the transfers of the main window's Apply.

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

constexpr const char* refreshCommand = "SET 0300 0 c400000000000000";
constexpr const char* pause = "SLEEP 30";

// A user with the profile "Office" whose buttons 4 and 16 play the macro "Reload".
class NerinctlApply : public testing::Test {
 protected:
  void SetUp() override {
    user.addMacro("Reload", clickMacro("Reload"));
    ProfileValue office = profileNamed("Office");
    setMacro(office, 3, 1, 1);
    setMacro(office, 15, 1, 2, 5);
    user.addProfile(office);
  }

  static std::string macroReportLine(const VirtualMouse& mouse, int macroSlot) {
    auto report = MouseHost::copyOf(mouse.macroReport(macroSlot));
    EXPECT_EQ(report[0], 0xB0);
    report[0] = 4;
    return "SET 0304 1 " + hex(report);
  }

  TestHome user;
};

TEST_F(NerinctlApply, SendsExactlyWhatTheMainWindowSends) {
  const Lines trace = user.trace({"apply", "Office", "--slot", "3"});
  const VirtualMouse mouse(user.mouseFile);
  EXPECT_EQ(mouse.slotName(2), "Office");
  const std::string name = "SET 0306 1 " + hex(mouse.nameReport(2));
  const std::string image = "SET 0305 1 " + hex(mouse.imageReport(2));
  // Two slots of 19 macros come first; the wheel's buttons are the last two of this slot.
  EXPECT_THAT(
      trace,
      ElementsAre(name, pause, refreshCommand, pause, "SET 0300 0 c40b290100000000", pause,
                  macroReportLine(mouse, 2 * 19 + 3), pause, "SET 0300 0 c40b380100000000", pause,
                  macroReportLine(mouse, 2 * 19 + 18), pause, image, pause, refreshCommand, pause));
}

TEST_F(NerinctlApply, WritesTheMacroAsTheMousePlaysIt) {
  user.prepare({"apply", "Office", "--slot", "1"});
  const VirtualMouse mouse(user.mouseFile);
  const std::string once = hex(mouse.macroReport(3));
  // Played once; 10 bytes; the name in 12 bytes.
  EXPECT_EQ(once.substr(8, 12), "05ff010a000c");
  EXPECT_EQ(once.substr(20, 24), "520065006c006f0061006400");
  // R down, 50 ms, R up, left button down, 20 ms, left button up.
  EXPECT_EQ(once.substr(104, 22),
            "1501320095780114"
            "00f800");
  // Repeated four times after the first run.
  EXPECT_EQ(hex(mouse.macroReport(18)).substr(8, 4), "0404");
}

TEST_F(NerinctlApply, SendsNoMacroOfAProfileWithoutMacros) {
  user.prepare({"profiles", "add", "Plain"});
  const Lines trace = user.trace({"apply", "Plain", "--slot", "10"});
  const VirtualMouse mouse(user.mouseFile);
  EXPECT_THAT(trace,
              ElementsAre("SET 0306 1 " + hex(mouse.nameReport(9)), pause, refreshCommand, pause,
                          "SET 0305 1 " + hex(mouse.imageReport(9)), pause, refreshCommand, pause));
}

TEST_F(NerinctlApply, IsReadBackAsItWasApplied) {
  user.prepare({"apply", "Office", "--slot", "2"});
  json written = user.json({"show", "Office"});
  const json read = user.json({"read", "--slot", "2"});
  EXPECT_EQ(read["slot"], 2);
  EXPECT_EQ(read["name"], "Office");
  for (const char* part : {"rate", "lift", "mode", "levels", "activeLevel"}) {
    EXPECT_EQ(read[part], written[part]) << part;
  }
  for (std::size_t zone = 0; zone < 4; ++zone) {
    EXPECT_EQ(read["zones"][zone]["colour"], written["zones"][zone]["colour"]);
  }
  for (std::size_t button = 0; button < 16; ++button) {
    EXPECT_EQ(read["buttons"][button]["function"], written["buttons"][button]["function"]);
  }
  EXPECT_EQ(read["buttons"][3]["function"], "Macro Reload, once");
  EXPECT_EQ(read["buttons"][15]["function"], "Macro Reload, 5 times");
  EXPECT_EQ(read["buttons"][15]["macroId"], 1);
  EXPECT_THAT(user.lines({"read", "--slot", "2"}),
              testing::Contains("wheel down       Macro Reload, 5 times"));
}

TEST_F(NerinctlApply, GivesWhatTheMouseHoldsBackAsAProfileFile) {
  user.prepare({"apply", "Office", "--slot", "2"});
  user.prepare({"read", "--slot", "2", "--output", "office.pro"});
  user.prepare({"profiles", "delete", "Office"});
  user.prepare({"profiles", "import", "office.pro"});
  const json before = user.json({"read", "--slot", "2"});
  user.prepare({"apply", "Office", "--slot", "5"});
  json after = user.json({"read", "--slot", "5"});
  after["slot"] = 2;
  EXPECT_EQ(after, before);
}

TEST_F(NerinctlApply, StoresTheSlotsProgramLinkAndTheProfile) {
  const std::string before = readFile(user.profileFolder() / "Office.pro");
  EXPECT_EQ(user.json({"apply", "Office", "--slot", "2"}),
            json({{"profile", "Office"}, {"slot", 2}, {"notes", json::array()}}));
  EXPECT_EQ(readFile(user.profileFolder() / "Office.pro"), before);
  const std::string preferences = readFile(user.preferences());
  EXPECT_THAT(preferences, HasSubstr("<key>LinkApp</key>"));
  EXPECT_THAT(preferences, HasSubstr("<key>IsActive_Profile_1</key>"));
}

TEST_F(NerinctlApply, TellsTheServiceOnce) {
  PrivateBus bus;
  RunSettings settings;
  settings.environment["DBUS_SESSION_BUS_ADDRESS"] = getenv("DBUS_SESSION_BUS_ADDRESS");
  const RunResult result = user.runWithMouse({"apply", "Office", "--slot", "2"}, settings);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.output, "Office is in slot 2\n");
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->path, "/com/corvex/NerinOption");
  EXPECT_EQ(message->member, "NerinSettingChange");
  EXPECT_EQ(message->signature, "s");
  EXPECT_EQ(message->body, "s:101");
  EXPECT_FALSE(bus.nextNotification(std::chrono::milliseconds(100)));
}

TEST_F(NerinctlApply, WorksWithoutASessionBus) {
  for (const std::string& address : Words{"unix:path=/nowhere/bus", "nonsense", ""}) {
    RunSettings settings;
    settings.environment["DBUS_SESSION_BUS_ADDRESS"] = address;
    const RunResult result = user.runWithMouse({"apply", "Office", "--slot", "2"}, settings);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.errors, "");
  }
}

TEST_F(NerinctlApply, ShowsItsProgressOnATerminalOnly) {
  RunSettings settings;
  settings.hasTerminal = true;
  const RunResult watched = user.runWithMouse({"apply", "Office", "--slot", "2"}, settings);
  EXPECT_EQ(watched.exitCode, 0);
  EXPECT_EQ(watched.output, "Office is in slot 2\n");
  EXPECT_EQ(watched.errors,
            "writing name\r\nwriting macro 1 of 2\r\nwriting macro 2 of 2\r\nwriting image\r\n");
  const RunResult unwatched = user.runWithMouse({"apply", "Office", "--slot", "2"});
  EXPECT_EQ(unwatched.output, watched.output);
  EXPECT_EQ(unwatched.errors, "");
}

TEST_F(NerinctlApply, SaysWhichButtonHasLostItsMacro) {
  user.prepare({"macros", "delete", "Reload"});
  EXPECT_THAT(
      user.lines({"apply", "Office", "--slot", "2"}),
      ElementsAre("Office is in slot 2", "button 4 is disabled, since there is no such macro",
                  "button 16 is disabled, since there is no such macro"));
  EXPECT_EQ(user.json({"read", "--slot", "2"})["buttons"][3]["type"], "disabled");
}

TEST_F(NerinctlApply, SaysHowItSpellsANameThatTheMouseCannotHold) {
  user.addProfile(profileNamed("M\xC3\xBCnchen"));
  EXPECT_THAT(user.lines({"apply", "M\xC3\xBCnchen", "--slot", "2"}),
              ElementsAre("M\xC3\xBCnchen is in slot 2",
                          "its name is Munchen now, in the library too: the mouse holds 65 plain "
                          "letters"));
  EXPECT_EQ(VirtualMouse(user.mouseFile).slotName(1), "Munchen");
  EXPECT_EQ(user.json({"show", "Munchen"})["name"], "Munchen");
  const std::string longName(70, 'x');
  user.addProfile(profileNamed(longName));
  EXPECT_THAT(user.lines({"apply", longName, "--slot", "2"})[1],
              testing::StartsWith("its name is " + std::string(65, 'x') + " now"));
  EXPECT_EQ(VirtualMouse(user.mouseFile).slotName(1), std::string(65, 'x'));
}

}  // namespace
