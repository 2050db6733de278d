#include <chrono>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/file.h>
#include <systemd/sd-bus.h>

#include "Action/Edit/Drafts.h"
#include "Action/NerinAction.h"
#include "Companion/Service/Companion.h"
#include "Kit/Bus/BusQuestion.h"
#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/PreferenceFile.h"
#include "Kit/Device/HidDeviceRequester.h"
#include "Tests/Support/EmulatedMouse.h"
#include "Tests/Support/PrivateBus.h"
#include "Tests/Support/Scratch.h"
#include "Tests/VirtualMouse/MouseHost.h"

// The whole companion over emulated nodes and a bus of its own. Each test needs its own process.

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using Reports = std::vector<std::string>;

class CompanionOverHid : public testing::Test {
 protected:
  CompanionOverHid() {
    setenv("XDG_RUNTIME_DIR", m_runtime.folder().c_str(), 1);
    unsetenv("DISPLAY");
    unsetenv("WAYLAND_DISPLAY");
    m_bus = BusConnection::open(m_loop.handle(), BusConnection::Kind::Session, [] {});
    LXPlatform platform;
    platform.homeFolder = m_home.folder();
    platform.runtimeFolder = m_runtime.folder();
    platform.notificationCenter = m_bus;
    platform.deviceRequester = std::make_shared<HidDeviceRequester>(emulated.udevControl());
    platform.mouseWait = 0ms;
    LXPlatform::install(platform);
    NerinAction::leaveDraftsAlone();
  }
  ~CompanionOverHid() override {
    m_companion.reset();
    NerinAction::sysDeviceReq->reset();
    LXPlatform::install({});
    m_bus.reset();
  }

  void start() {
    m_companion = std::make_unique<Companion>(
        m_loop, *m_bus,
        Companion::Settings{
            .udevControl = emulated.udevControl(), .windowProgram = {}, .mouseFile = {}});
    bool isAnswered = false;
    m_bus->requestName(Companion::busName, [&](bool isOurs) {
      EXPECT_TRUE(isOurs);
      m_companion->begin();
      isAnswered = true;
    });
    ASSERT_TRUE(m_loop.runUntil([&] { return isAnswered; }, 20s));
  }

  // What others hear within the time: "101/0".
  Reports reports(std::chrono::milliseconds time = 300ms) {
    m_loop.runUntil([] { return false; }, time);
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
    EventLoop own;
    const auto connection =
        BusConnection::open(m_loop.handle(), BusConnection::Kind::Session, [] {});
    std::string text;
    bool isAnswered = false;
    connection->call(
        {Companion::busName, Companion::busPath, "org.freedesktop.DBus.Properties", "Get"},
        [](sd_bus_message* call) {
          sd_bus_message_append(call, "ss", Companion::busName, "Explanation");
        },
        [&](sd_bus_message* answer) {
          const char* found = nullptr;
          if (answer != nullptr && sd_bus_message_read(answer, "v", "s", &found) > 0) {
            text = found;
          }
          isAnswered = true;
        });
    EXPECT_TRUE(m_loop.runUntil([&] { return isAnswered; }, 20s));
    return text;
  }

  static void tellSetting(const std::string& code, const std::string& values) {
    PrivateBus::broadcast("/com/corvex/NerinOption",
                          "com.corvex.NerinOption.Notification.NerinSettingChange",
                          {"'" + code + "'", values});
  }

  PrivateBus bus;
  EmulatedMouse emulated;

 private:
  Scratch m_home;
  Scratch m_runtime;

 protected:
  std::filesystem::path lockFile() const { return m_runtime / "mouse-1-4.lock"; }
  EventLoop m_loop;

 private:
  std::shared_ptr<BusConnection> m_bus;
  std::unique_ptr<Companion> m_companion;
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

TEST_F(CompanionOverHid, SendsNothingWhileNothingHappens) {
  emulated.plugWithVendorInput();
  start();
  reports();
  emulated.mouse().clearTranscript();
  reports(2s);
  EXPECT_TRUE(emulated.mouse().transcript().empty());
}

}  // namespace
