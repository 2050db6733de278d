#include <array>
#include <chrono>
#include <fstream>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hidapi.h>

#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Device/HidDeviceRequester.h"
#include "Kit/Device/HidNodes.h"
#include "Tests/Support/EmulatedMouse.h"
#include "Tests/Support/Scratch.h"

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr std::uint16_t vid = 0x264A;
constexpr std::uint16_t pid = 0x1001;
constexpr const char* rule = R"(KERNEL=="hidraw*", SUBSYSTEM=="hidraw", ATTRS{idVendor}=="264a", )"
                             R"(ATTRS{idProduct}=="1001", TAG+="uaccess")";

bool sendCommand(HidDeviceRequester& requester) {
  std::array<std::uint8_t, 8> bytes{0xC4};
  LXDeviceRequest request{.bmRequestType = 0x21, .bRequest = 0x09, .wValue = 0x0300, .data = bytes};
  return requester.sendDeviceRequest(request);
}

bool comesTrue(const std::function<bool()>& condition) {
  const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) {
      return false;
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
  }
  return true;
}

class WarningLog {
 public:
  WarningLog() {
    LXLogger::setObserver([this](LXLogger::Level level, std::string_view line) {
      if (level == LXLogger::Level::Warning) {
        m_lines.emplace_back(line);
      }
    });
  }
  ~WarningLog() { LXLogger::setObserver({}); }
  WarningLog(const WarningLog&) = delete;
  WarningLog& operator=(const WarningLog&) = delete;

  const std::vector<std::string>& lines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
};

TEST(HidDeviceRequester, IsOffBeforeItListens) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_FALSE(sendCommand(requester));
  requester.resetCurrDevice();
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_THAT(requester.explainAbsence(), HasSubstr("Not looking"));
  EXPECT_EQ(mouse.openCount(), 0);
}

TEST(HidDeviceRequester, OpensBothInterfacesAtOnceWhenItListens) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  EXPECT_EQ(mouse.openCount(), 2);
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_THAT(requester.explainAbsence(), IsEmpty());
  EXPECT_TRUE(sendCommand(requester));
}

TEST(HidDeviceRequester, ChangesNothingWhenItListensTwice) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  requester.listenDevWithVid(vid, pid);
  EXPECT_EQ(mouse.openCount(), 2);
  EXPECT_TRUE(requester.isDevOn());
}

TEST(HidDeviceRequester, TurnsToAnotherDeviceWhenTheIdsChange) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, 0x1002);
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_THAT(requester.explainAbsence(), HasSubstr("264a:1002 and found none"));
  requester.listenDevWithVid(vid, pid);
  EXPECT_TRUE(requester.isDevOn());
  requester.listenDevWithVid(vid, 0x1002);
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_FALSE(sendCommand(requester));
}

TEST(HidDeviceRequester, KeepsOneNodeOfAnInterfaceThatIsListedForEveryUsage) {
  EmulatedMouse mouse;
  mouse.plug();
  hid_device_info* list = hid_enumerate(vid, pid);
  std::vector<std::string> listed;
  for (const hid_device_info* entry = list; entry != nullptr; entry = entry->next) {
    listed.emplace_back(entry->path);
  }
  hid_free_enumeration(list);
  EXPECT_THAT(listed, ElementsAre("/dev/hidraw3", "/dev/hidraw3", "/dev/hidraw3", "/dev/hidraw4",
                                  "/dev/hidraw4"));

  const std::vector<HidNode> nodes = findHidNodes(vid, pid);
  ASSERT_EQ(nodes.size(), 2U);
  EXPECT_EQ(nodes[0].path, "/dev/hidraw3");
  EXPECT_EQ(nodes[0].interfaceNumber, 0);
  EXPECT_EQ(nodes[1].path, "/dev/hidraw4");
  EXPECT_EQ(nodes[1].interfaceNumber, 1);
}

TEST(HidDeviceRequester, PassesOverOtherDevices) {
  EmulatedMouse mouse;
  mouse.plugInterface({.number = 0, .node = 0, .port = "1-2", .pid = 0x2001});
  mouse.plugInterface({.number = 1, .node = 1, .port = "1-2", .pid = 0x2001});
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_EQ(mouse.openCount(), 0);
  EXPECT_THAT(requester.explainAbsence(), HasSubstr("264a:1001 and found none"));
}

TEST(HidDeviceRequester, KeepsTheNodesOpenWhenOtherDevicesCome) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  mouse.plugInterface({.number = 0, .node = 0, .port = "1-2", .pid = 0x2001});
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_EQ(mouse.openCount(), 2);
}

TEST(HidDeviceRequester, NoticesAnArrival) {
  EmulatedMouse mouse;
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  EXPECT_FALSE(requester.isDevOn());
  mouse.plug();
  EXPECT_TRUE(requester.isDevOn());
}

TEST(HidDeviceRequester, NoticesARemoval) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  mouse.unplug();
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_THAT(requester.explainAbsence(), HasSubstr("found none"));
}

TEST(HidDeviceRequester, NoticesARemovalBeforeSysfsForgetsTheMouse) {
  const WarningLog log;
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  mouse.loseNodes();
  EXPECT_FALSE(requester.isDevOn());
  mouse.unplug();
  mouse.plug(5);
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_TRUE(sendCommand(requester));
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(HidDeviceRequester, FindsTheMouseAgainUnderOtherNames) {
  EmulatedMouse mouse;
  mouse.plug(3);
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  mouse.unplug();
  EXPECT_FALSE(requester.isDevOn());
  mouse.plug(8);
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_TRUE(sendCommand(requester));
}

TEST(HidDeviceRequester, OpensTheNewNodesAfterAReplugThatNobodyWatched) {
  EmulatedMouse mouse;
  mouse.plug(3);
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  mouse.unplug();
  mouse.plug(3);
  EXPECT_TRUE(sendCommand(requester));
  EXPECT_EQ(mouse.openCount(), 4);
}

TEST(HidDeviceRequester, FindsTheMouseWhenTheInterfacesSwapNames) {
  EmulatedMouse mouse;
  mouse.plugInterface({.number = 1, .node = 0});
  mouse.plugInterface({.number = 0, .node = 1});
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  EXPECT_TRUE(sendCommand(requester));
  ASSERT_EQ(mouse.mouse().transcript().size(), 1U);
  EXPECT_EQ(mouse.mouse().transcript()[0].setup.index, 0);
}

TEST(HidDeviceRequester, DoesNotLookAgainWithoutNews) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  mouse.setIsSilent(true);
  mouse.unplug();
  std::this_thread::sleep_for(std::chrono::milliseconds(600));
  EXPECT_TRUE(requester.isDevOn());
}

TEST(HidDeviceRequester, LooksByItselfWhenNobodyTells) {
  EmulatedMouse mouse;
  mouse.setIsSilent(true);
  HidDeviceRequester requester(mouse.udevControl() / "missing", {}, "/missing");
  requester.listenDevWithVid(vid, pid);
  mouse.plug();
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_TRUE(comesTrue([&] { return requester.isDevOn(); }));
  EXPECT_TRUE(sendCommand(requester));
  mouse.unplug();
  EXPECT_TRUE(comesTrue([&] { return !requester.isDevOn(); }));
  mouse.plug(5);
  EXPECT_TRUE(comesTrue([&] { return sendCommand(requester); }));
}

TEST(HidDeviceRequester, SeesTheMouseComeAndGoAtOnceWithoutUdevd) {
  EmulatedMouse mouse;
  mouse.setIsSilent(true);
  HidDeviceRequester requester(mouse.udevControl() / "missing", {});
  requester.listenDevWithVid(vid, pid);
  mouse.plug();
  EXPECT_TRUE(requester.isDevOn());
  mouse.unplug();
  EXPECT_FALSE(requester.isDevOn());
  mouse.plug(5);
  EXPECT_TRUE(sendCommand(requester));
}

TEST(HidDeviceRequester, ReopensTheDevice) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  requester.resetCurrDevice();
  EXPECT_EQ(mouse.openCount(), 4);
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_TRUE(sendCommand(requester));
}

class HalfADevice : public testing::TestWithParam<int> {};

TEST_P(HalfADevice, IsOff) {
  const int number = GetParam();
  EmulatedMouse mouse;
  mouse.plugInterface({.number = number, .node = 3});
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_FALSE(sendCommand(requester));
  EXPECT_THAT(requester.explainAbsence(),
              HasSubstr("only a part of it: interface " + std::to_string(number) +
                        " (/dev/hidraw3), but interfaces 0 and 1 are both needed"));
  mouse.plugInterface({.number = 1 - number, .node = 4});
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_THAT(requester.explainAbsence(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(HidDeviceRequester, HalfADevice, testing::Values(0, 1),
                         [](const auto& interface) {
                           return "Interface" + std::to_string(interface.param);
                         });

TEST(HidDeviceRequester, DoesNotPutTwoHalvesOfDifferentMiceTogether) {
  EmulatedMouse mouse;
  mouse.plugInterface({.number = 0, .node = 3, .port = "1-2"});
  mouse.plugInterface({.number = 1, .node = 4, .port = "1-3"});
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  EXPECT_FALSE(requester.isDevOn());
  mouse.plugInterface({.number = 0, .node = 5, .port = "1-3"});
  EXPECT_TRUE(requester.isDevOn());
}

TEST(HidDeviceRequester, NamesTheRuleThatHelpsWhenAccessIsDenied) {
  const WarningLog log;
  EmulatedMouse mouse;
  mouse.plug();
  mouse.setIsAccessAllowed(false);
  HidDeviceRequester requester(mouse.udevControl(), {});
  requester.listenDevWithVid(vid, pid);
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_FALSE(sendCommand(requester));

  const std::string explanation = requester.explainAbsence();
  EXPECT_THAT(explanation, HasSubstr("Looked for a USB mouse 264a:1001"));
  EXPECT_THAT(explanation, HasSubstr("interface 0 (/dev/hidraw3), interface 1 (/dev/hidraw4)"));
  EXPECT_THAT(explanation, HasSubstr(std::string("\n") + rule + "\n"));
  EXPECT_THAT(explanation, HasSubstr("/etc/udev/rules.d/60-nerin.rules"));
  EXPECT_THAT(explanation, HasSubstr("udevadm control --reload-rules"));
  EXPECT_THAT(explanation, HasSubstr("udevadm trigger"));
  EXPECT_THAT(log.lines(), ElementsAre(HasSubstr(rule)));
}

TEST(HidDeviceRequester, WarnsOfDeniedAccessOncePerChange) {
  const WarningLog log;
  EmulatedMouse mouse;
  mouse.plug();
  mouse.setIsAccessAllowed(false);
  HidDeviceRequester requester(mouse.udevControl(), {});
  requester.listenDevWithVid(vid, pid);
  for (int look = 0; look < 3; ++look) {
    mouse.announceChange();
    EXPECT_FALSE(requester.isDevOn());
  }
  EXPECT_EQ(log.lines().size(), 1U);

  mouse.setIsAccessAllowed(true);
  mouse.announceChange();
  EXPECT_TRUE(requester.isDevOn());
  EXPECT_TRUE(sendCommand(requester));

  mouse.unplug();
  EXPECT_FALSE(requester.isDevOn());
  mouse.setIsSilent(true);
  mouse.plug();
  mouse.setIsAccessAllowed(false);
  mouse.setIsSilent(false);
  mouse.announceChange();
  EXPECT_FALSE(requester.isDevOn());
  EXPECT_EQ(log.lines().size(), 2U);
}

TEST(HidDeviceRequester, OpensTheMouseSoonAfterItsRightsWereGivenByHand) {
  EmulatedMouse mouse;
  mouse.plug();
  mouse.setIsAccessAllowed(false);
  HidDeviceRequester requester(mouse.udevControl(), {});
  requester.listenDevWithVid(vid, pid);
  EXPECT_FALSE(requester.isDevOn());
  mouse.setIsAccessAllowed(true);
  EXPECT_TRUE(comesTrue([&] { return requester.isDevOn(); }));
}

TEST(HidDeviceRequester, SaysWhyTheMouseCannotBeUsed) {
  EmulatedMouse mouse;
  const Scratch rules;
  HidDeviceRequester requester(mouse.udevControl(), {rules.folder()});
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::NotFound);
  requester.listenDevWithVid(vid, pid);
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::NotFound);
  mouse.plug();
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::None);
  mouse.unplug();
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::NotFound);
  mouse.plugInterface({.number = 0, .node = 6});
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::NeedsReplug);
}

TEST(HidDeviceRequester, TellsAMissingRuleFromOneThatCameTooLate) {
  EmulatedMouse mouse;
  mouse.plug();
  mouse.setIsAccessAllowed(false);
  const Scratch rules;
  HidDeviceRequester requester(mouse.udevControl(), {"/nowhere", rules.folder()});
  requester.listenDevWithVid(vid, pid);
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::NoPermission);
  std::ofstream(rules.folder() / "60-nerin.rules") << rule << '\n';
  EXPECT_EQ(requester.absence(), LXDeviceAbsence::NeedsReplug);
  EXPECT_THAT(requester.explainAbsence(), HasSubstr("plug it in again"));
}

TEST(HidDeviceRequester, HoldsEachMouseByALockOfItsOwn) {
  EmulatedMouse mouse;
  const Scratch runtime;
  LXPlatform platform;
  platform.runtimeFolder = runtime.folder();
  LXPlatform::install(platform);
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  std::error_code error;
  EXPECT_EQ(requester.claim(std::chrono::milliseconds(0), error), nullptr);
  EXPECT_FALSE(error);
  mouse.plug();
  {
    const auto held = requester.claim(std::chrono::milliseconds(0), error);
    EXPECT_NE(held, nullptr);
    EXPECT_EQ(namesIn(runtime.folder()), std::vector<std::string>{"mouse-1-4.lock"});
    EXPECT_EQ(requester.claim(std::chrono::milliseconds(20), error), nullptr);
    EXPECT_EQ(error, std::errc::device_or_resource_busy);
  }
  EXPECT_NE(requester.claim(std::chrono::milliseconds(0), error), nullptr);
  EXPECT_FALSE(error);
  LXPlatform::install({});
}

TEST(HidDeviceRequester, GoesOnWithoutALockWhereThereIsNoFolderForIt) {
  EmulatedMouse mouse;
  mouse.plug();
  HidDeviceRequester requester(mouse.udevControl());
  requester.listenDevWithVid(vid, pid);
  std::error_code error = std::make_error_code(std::errc::io_error);
  EXPECT_EQ(requester.claim(std::chrono::milliseconds(0), error), nullptr);
  EXPECT_FALSE(error);
}

TEST(HidDeviceRequester, GivesTheRuleThatIsPackaged) {
  std::ifstream file(NERIN_PACKAGING "/60-nerin.rules");
  std::vector<std::string> rules;
  for (std::string line; std::getline(file, line);) {
    if (!line.empty() && line.front() != '#') {
      rules.push_back(line);
    }
  }
  EXPECT_THAT(rules, ElementsAre(rule));
  EXPECT_EQ(HidDeviceRequester::udevRule(vid, pid), rule);
  EXPECT_THAT(HidDeviceRequester::udevRule(0x0ABC, 0x000F),
              testing::AllOf(HasSubstr(R"("0abc")"), HasSubstr(R"("000f")")));
}

}  // namespace
