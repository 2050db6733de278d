#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <systemd/sd-bus.h>

#include "Action/Library/PreferenceKeys.h"
#include "Action/NerinAction.h"
#include "Kit/Bus/CompanionAddress.h"
#include "Kit/Core/FileLock.h"
#include "Kit/Core/PreferenceFile.h"
#include "Kit/Device/HidDeviceRequester.h"
#include "Tests/Companion/FakeDesktop.h"
#include "Tests/Companion/RunningCompanion.h"
#include "Tests/Support/EmulatedMouse.h"
#include "Tests/VirtualMouse/MouseHost.h"

// The whole companion over emulated nodes and a bus of its own. Each test needs its own process.

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Reports = std::vector<std::string>;

class CompanionOverHid : public RunningCompanion {
 protected:
  CompanionOverHid() {
    use({.requester = std::make_shared<HidDeviceRequester>(emulated.udevControl()),
         .udevControl = emulated.udevControl(),
         .memoryFile = {},
         .sleep = {}});
  }

  // What others hear within the time: "101/0".
  Reports reports(std::chrono::milliseconds time = 300ms) {
    wait(time);
    Reports result;
    while (const auto message = bus.nextNotification(50ms)) {
      if (message->member == "NerinDevStatus") {
        result.push_back(message->body);
      }
    }
    return result;
  }
  static std::string report(int type, int value) {
    return "s: {type=i:" + std::to_string(type) + " value=i:" + std::to_string(value) + "}";
  }

  // The words of the object on the bus, as another connection reads them.
  std::string explanation() {
    const auto connection = BusConnection::open(loop.handle(), BusConnection::Kind::Session, [] {});
    std::string text;
    bool isAnswered = false;
    connection->call(
        {companionaddress::service, companionaddress::path, "org.freedesktop.DBus.Properties",
         "Get"},
        [](sd_bus_message* call) {
          sd_bus_message_append(call, "ss", companionaddress::service, "Explanation");
        },
        [&](sd_bus_message* answer) {
          const char* found = nullptr;
          if (answer != nullptr && sd_bus_message_read(answer, "v", "s", &found) > 0) {
            text = found;
          }
          isAnswered = true;
        });
    EXPECT_TRUE(loop.runUntil([&] { return isAnswered; }, 20s));
    return text;
  }

  static void tellSetting(const std::string& code, const std::string& values) {
    PrivateBus::broadcast("/com/corvex/NerinOption",
                          "com.corvex.NerinOption.Notification.NerinSettingChange",
                          {"'" + code + "'", values});
  }

  std::filesystem::path lockFile() const { return runtimeFolder() / "mouse-1-4.lock"; }

  EmulatedMouse emulated;
};

TEST_F(CompanionOverHid, TellsThatTheMouseCameAndWent) {
  start();
  EXPECT_EQ(explanation(), "No mouse is there");
  emulated.plug();
  EXPECT_THAT(reports(), ElementsAre(report(101, 0)));
  EXPECT_EQ(explanation(), "Slot 1, the last one chosen by hand");
  emulated.unplug();
  EXPECT_THAT(reports(), ElementsAre(report(100, 0)));
  EXPECT_EQ(explanation(), "No mouse is there");
}

TEST_F(CompanionOverHid, TellsAMouseThatWasThereBefore) {
  emulated.plug();
  start();
  EXPECT_THAT(reports(), ElementsAre(report(101, 0)));
}

TEST_F(CompanionOverHid, TellsNothingOfAMouseThatCannotBeOpened) {
  start();
  emulated.plug();
  emulated.setIsAccessAllowed(false);
  EXPECT_THAT(reports(), ElementsAre());
  emulated.setIsAccessAllowed(true);
  emulated.announceChange();
  EXPECT_THAT(reports(), ElementsAre(report(101, 0)));
}

TEST_F(CompanionOverHid, AReportOfTheVendorsKindTellsOfAnotherSlot) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(6);
  EXPECT_THAT(reports(), ElementsAre());
  emulated.sendInput(1, {7, 1, 2, 3, 4, 5, 6, 7, 8});
  EXPECT_THAT(reports(), ElementsAre(report(1, 6)));
  EXPECT_EQ(explanation(), "Slot 7, the last one chosen by hand");
  // Nothing changed: nothing is told.
  emulated.sendInput(1, {7, 1, 2, 3, 4, 5, 6, 7, 8});
  EXPECT_THAT(reports(), ElementsAre());
}

TEST_F(CompanionOverHid, ReportsOfOtherKindsDoNotRing) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(6);
  emulated.mouse().clearTranscript();
  emulated.sendInput(1, {1, 0, 0, 4, 0, 0, 0, 0, 0});
  EXPECT_THAT(reports(), ElementsAre());
  EXPECT_TRUE(emulated.mouse().transcript().empty());
}

TEST_F(CompanionOverHid, TellsOfAnotherDpiLevelExceptInATrial) {
  emulated.plugWithVendorInput();
  start();
  reports();
  const auto setLevel = [&](std::uint8_t level) {
    MouseHost::writeMemory(emulated.mouse(), 258, static_cast<std::uint8_t>(0x50 + level));
    emulated.sendInput(1, {7, 0, 0, 0, 0, 0, 0, 0, 0});
  };
  setLevel(3);
  EXPECT_THAT(reports(), ElementsAre(report(2, 3)));
  tellSetting("122", "{'value1': <true>}");
  reports();
  setLevel(1);
  EXPECT_THAT(reports(), ElementsAre());
  tellSetting("122", "{'value1': <false>}");
  reports();
  setLevel(2);
  EXPECT_THAT(reports(), ElementsAre(report(2, 2)));
}

TEST_F(CompanionOverHid, ASlotThatWasChosenInTheWindowIsNotToldBack) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(4);
  tellSetting("111", "{'value1': <1>, 'value2': <4>}");
  EXPECT_THAT(reports(), ElementsAre());
  EXPECT_EQ(explanation(), "Slot 5, the last one chosen by hand");
}

TEST_F(CompanionOverHid, WaitsForNobodyAndReadsWhenTheMouseIsFree) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(6);
  auto other = FileLock::acquire(lockFile(), 1s);
  ASSERT_TRUE(other);
  emulated.sendInput(1, {7, 0, 0, 0, 0, 0, 0, 0, 0});
  EXPECT_THAT(reports(), ElementsAre());
  other.reset();
  EXPECT_THAT(reports(600ms), ElementsAre(report(1, 6)));
}

// The seventh button sends a report, and launches a program that leaves a file.
class LaunchOverHid : public CompanionOverHid {
 protected:
  LaunchOverHid() {
    const auto program = files / "program";
    writeText(program, "#!/bin/sh\ntouch \"$0.started\"\n");
    std::filesystem::permissions(program, std::filesystem::perms::owner_all);
    EXPECT_TRUE(PreferenceFile(NerinAction::preferenceFilePath())
                    .setValue(preferencekeys::launchPath(0, 6), program.string()));
    EXPECT_TRUE(learnedbuttons::keep(6, {1, {7, 0x22, std::nullopt, 0, 0, 0, 0, 0, 0}}));
  }

  void press() { emulated.sendInput(1, {7, 0x22, 5, 0, 0, 0, 0, 0, 0}); }
  bool isStartedSoon(std::chrono::milliseconds limit = 20s) {
    const auto end = std::chrono::steady_clock::now() + limit;
    const auto started = files / "program.started";
    while (!std::filesystem::exists(started) && std::chrono::steady_clock::now() < end) {
      wait(10ms);
    }
    return std::filesystem::exists(started);
  }

  FakeDesktop desktop{loop};
  Scratch files;
};

TEST_F(LaunchOverHid, ALearnedButtonStartsItsProgram) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().clearTranscript();
  press();
  EXPECT_TRUE(isStartedSoon());
  // It is no doorbell.
  EXPECT_TRUE(emulated.mouse().transcript().empty());
}

TEST_F(LaunchOverHid, TheServiceManagerStartsItInAUnitOfItsOwn) {
  desktop.becomeServiceManager();
  emulated.plugWithVendorInput();
  start();
  reports();
  press();
  EXPECT_FALSE(isStartedSoon(500ms));
  ASSERT_EQ(desktop.started.size(), 1U);
  const FakeDesktop::Started& started = desktop.started[0];
  EXPECT_EQ(started.command, std::vector<std::string>{(files / "program").string()});
  EXPECT_THAT(started.unit, testing::MatchesRegex("app-nerin-program@[0-9]+-1\\.service"));
  EXPECT_EQ(started.mode, "fail");
  EXPECT_EQ(started.texts.at("ExitType"), "cgroup");
}

TEST_F(LaunchOverHid, AHeldButtonStartsItOnce) {
  emulated.plugWithVendorInput();
  start();
  reports();
  press();
  ASSERT_TRUE(isStartedSoon());
  std::filesystem::remove(files / "program.started");
  press();
  EXPECT_FALSE(isStartedSoon(400ms));
}

TEST_F(LaunchOverHid, NothingStartsOnAnotherSlot) {
  emulated.plugWithVendorInput();
  emulated.mouse().pressSlotButton(3);
  start();
  reports();
  press();
  EXPECT_FALSE(isStartedSoon(500ms));
}

TEST_F(LaunchOverHid, NothingStartsWhileTheSessionIsLocked) {
  emulated.plugWithVendorInput();
  start();
  desktop.setIsLocked(true);
  reports();
  EXPECT_EQ(explanation(), "Slot 1: slots do not follow programs while the session is locked");
  press();
  EXPECT_FALSE(isStartedSoon(500ms));
  desktop.setIsLocked(false);
  reports(600ms);
  press();
  EXPECT_TRUE(isStartedSoon());
}

TEST_F(LaunchOverHid, AnotherSlotIsShownInOneNotification) {
  emulated.plugWithVendorInput();
  MouseHost::write(emulated.mouse(), MouseHost::nameReport(6, "Games"));
  start();
  reports();
  for (const int slot : {6, 7}) {
    emulated.mouse().pressSlotButton(slot);
    emulated.sendInput(1, {7, 9, 9, 9, 9, 9, 9, 9, 9});
    reports();
  }
  ASSERT_EQ(desktop.shown.size(), 2U);
  EXPECT_EQ(desktop.shown[0].replaced, 0U);
  EXPECT_EQ(desktop.shown[0].summary, "Slot 7: Games");
  EXPECT_EQ(desktop.shown[0].body, "");
  EXPECT_EQ(desktop.shown[1].replaced, 41U);
}

TEST_F(LaunchOverHid, TheDisplayWaitsForTheNameWhileAnotherProgramHasTheMouse) {
  emulated.plugWithVendorInput();
  MouseHost::write(emulated.mouse(), MouseHost::nameReport(4, "Games"));
  start();
  reports();
  emulated.mouse().pressSlotButton(4);
  auto other = FileLock::acquire(lockFile(), 1s);
  ASSERT_TRUE(other);
  tellSetting("111", "{'value1': <1>, 'value2': <4>}");
  reports(600ms);
  EXPECT_TRUE(desktop.shown.empty());
  other.reset();
  reports(600ms);
  ASSERT_EQ(desktop.shown.size(), 1U);
  EXPECT_EQ(desktop.shown[0].summary, "Slot 5: Games");
}

TEST_F(LaunchOverHid, TheDisplayDoesWithoutANameThatDoesNotCome) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(4);
  const auto other = FileLock::acquire(lockFile(), 1s);
  ASSERT_TRUE(other);
  tellSetting("111", "{'value1': <1>, 'value2': <4>}");
  reports(2500ms);
  ASSERT_EQ(desktop.shown.size(), 1U);
  EXPECT_EQ(desktop.shown[0].summary, "Slot 5");
}

TEST_F(LaunchOverHid, TheDisplaySpeaksTheLanguageThatTheUserChose) {
  PreferenceFile preferences(NerinAction::preferenceFilePath());
  ASSERT_TRUE(preferences.setValue(preferencekeys::language, "de"));
  emulated.plugWithVendorInput();
  start();
  reports();
  NerinAction::sendRateChangeToDaemon(2);
  reports();
  ASSERT_TRUE(preferences.setValue(preferencekeys::language, "fr"));
  reports();
  NerinAction::sendModeChangeToDaemon(1);
  reports();
  ASSERT_EQ(desktop.shown.size(), 2U);
  EXPECT_EQ(desktop.shown[0].summary, "Abfragerate: 500\u00a0Hz");
  EXPECT_EQ(desktop.shown[1].summary, "Mode LED\u00a0: Combat");
}

TEST_F(LaunchOverHid, NothingIsShownWhileTheDisplayIsOff) {
  ASSERT_TRUE(
      PreferenceFile(NerinAction::preferenceFilePath()).setValue(preferencekeys::osd, false));
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(6);
  emulated.sendInput(1, {7, 9, 9, 9, 9, 9, 9, 9, 9});
  EXPECT_THAT(reports(), ElementsAre(report(1, 6)));
  EXPECT_TRUE(desktop.shown.empty());
}

TEST_F(LaunchOverHid, TheMouseIsReadAgainAfterSleep) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().pressSlotButton(6);
  desktop.sleepAndResume();
  EXPECT_THAT(reports(1500ms), ElementsAre());
  EXPECT_THAT(reports(1000ms), ElementsAre(report(1, 6)));
}

TEST_F(CompanionOverHid, SendsNothingWhileNothingHappens) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().clearTranscript();
  reports(2s);
  EXPECT_TRUE(emulated.mouse().transcript().empty());
}

}  // namespace
