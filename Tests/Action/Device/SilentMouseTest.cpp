// A mouse that is plugged in and does not answer: the kernel gives up after five seconds.

#include <chrono>
#include <iostream>
#include <thread>

#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ActionTest.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace {

using namespace std::chrono_literals;
using std::chrono::milliseconds;

constexpr auto kernelTimeout = 5s;
constexpr auto longestBlock = 6s;
// Of the one test on the clock of the world.
constexpr int scale = 20;

// A mouse that falls silent after some transfers, on a clock that only the test and the waiting
// move.
class HangingRequester final : public LXDeviceRequester {
 public:
  explicit HangingRequester(std::shared_ptr<VirtualMouse> mouse) : m_mouse(std::move(mouse)) {}

  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override {
    m_mouse.listenDevWithVid(vid, pid);
  }
  bool isDevOn() override { return m_mouse.isDevOn(); }
  std::uint64_t connection() const override { return m_connection; }
  void resetCurrDevice() override { ++m_connection; }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    ++transfers;
    if (transfers <= answered) {
      return m_mouse.sendDeviceRequest(request);
    }
    time += kernelTimeout;
    std::this_thread::sleep_for(realTimeout);
    // The requester opens the device anew after that.
    ++m_connection;
    request.error = std::make_error_code(std::errc::timed_out);
    return false;
  }

  int answered = 0;
  int transfers = 0;
  std::chrono::steady_clock::time_point time{100s};
  // On the clock of the world; nothing in most tests.
  std::chrono::milliseconds realTimeout{0};

 private:
  VirtualDeviceRequester m_mouse;
  std::uint64_t m_connection = 1;
};

class SilentMouse : public ActionTest {
 protected:
  SilentMouse() : SilentMouse(std::make_shared<VirtualMouse>()) {}

  static constexpr int everyTransfer = 1'000'000;

  // How long the deed blocks if the mouse falls silent after this many transfers.
  milliseconds blockedBy(const std::function<void()>& deed, int answered) {
    m_requester->time += 1h;
    m_requester->transfers = 0;
    m_requester->answered = answered;
    const auto begin = m_requester->time;
    deed();
    return std::chrono::duration_cast<milliseconds>(m_requester->time - begin);
  }

  int transfersOf(const std::function<void()>& deed) {
    blockedBy(deed, everyTransfer);
    return m_requester->transfers;
  }

  static void editWithMacros() {
    static_cast<void>(NerinAction::loadSlot(1));
    for (std::size_t index = 0; index < buttonCount; ++index) {
      addMacro(static_cast<int>(index) + 1, "Macro" + std::to_string(index),
               {{15, 0, 10}, {15, 1, 0}});
      editState->edit().btnInfo[index] = macroButton(static_cast<std::uint32_t>(index) + 1);
    }
  }

  std::shared_ptr<HangingRequester> m_requester;

 private:
  explicit SilentMouse(const std::shared_ptr<VirtualMouse>& mouse)
      : SilentMouse(mouse, std::make_shared<HangingRequester>(mouse)) {}
  SilentMouse(const std::shared_ptr<VirtualMouse>& mouse,
              const std::shared_ptr<HangingRequester>& requester)
      : ActionTest(mouse, requester), m_requester(requester) {
    LXPlatform platform = LXPlatform::current();
    platform.now = [requester] { return requester->time; };
    platform.sleep = [requester](std::chrono::microseconds time) { requester->time += time; };
    LXPlatform::install(platform);
    m_requester->answered = everyTransfer;
    beginProgram();
  }
};

// What the window does when the user selects a slot.
void selectSlot() {
  static_cast<void>(NerinAction::changeSlot(4, [] {
    const auto read = NerinAction::loadSlot(4);
    Outcome outcome = read.outcome;
    outcome += NerinAction::setModelToDevice();
    return outcome;
  }));
}

struct Deed {
  const char* name;
  void (*act)();
};

constexpr Deed deeds[] = {
    {"apply", [] { static_cast<void>(NerinAction::applySlot()); }},
    {"select", selectSlot},
    {"load", [] { static_cast<void>(NerinAction::loadSlot(3)); }},
    {"rename", [] { static_cast<void>(NerinAction::renameSlot("Other")); }},
    {"reset slot", [] { static_cast<void>(NerinAction::resetSlot()); }},
    {"DPI", [] { static_cast<void>(NerinAction::setSettingToDevice()); }},
    {"colors", [] { static_cast<void>(NerinAction::setColorToDevice()); }},
    {"colors at once", [] { static_cast<void>(NerinAction::setColorToDevice2()); }},
    {"mode", [] { static_cast<void>(NerinAction::setModelToDevice()); }},
    {"rate", [] { static_cast<void>(NerinAction::setRateToDevice(1)); }},
    {"reset mouse", [] { static_cast<void>(NerinAction::resetDevPro()); }},
    {"settings of the window",
     [] {
       static_cast<void>(NerinAction::setRateToDevice(1));
       static_cast<void>(NerinAction::setSettingToDevice());
       static_cast<void>(NerinAction::setColorToDevice2());
       static_cast<void>(NerinAction::setModelToDevice());
     }},
};

}  // namespace

TEST_F(SilentMouse, BlocksNoDeedForMoreThanSixSecondsWhereverItFallsSilent) {
  int cases = 0;
  for (const Deed& deed : deeds) {
    editWithMacros();
    const auto healthy = blockedBy(deed.act, everyTransfer);
    const int transfers = transfersOf(deed.act);
    for (int answered = 0; answered < transfers; ++answered) {
      editWithMacros();
      const auto blocked = blockedBy(deed.act, answered);
      // The pauses of what still succeeded are the mouse's own time.
      EXPECT_LE(blocked, kernelTimeout + healthy) << deed.name << " after " << answered;
      EXPECT_EQ(m_requester->transfers, answered + 1) << deed.name;
      m_requester->answered = everyTransfer;
      m_requester->time += 1h;
      ++cases;
    }
  }
  RecordProperty("cases", cases);
  EXPECT_GT(cases, 100);
}

TEST_F(SilentMouse, ThatWasSilentFromTheStartCostsAnApplyNotMuchMoreThanOneTimeout) {
  editWithMacros();
  EXPECT_LE(blockedBy([] { static_cast<void>(NerinAction::applySlot()); }, 0), longestBlock);
  EXPECT_EQ(m_requester->transfers, 1);
}

// The longest series: what the mouse did not answer costs one timeout, after the pauses that what
// it took before needs anyway.
TEST_F(SilentMouse, AtTheLastReportOfALongApplyAddsOneTimeout) {
  const auto apply = [] { static_cast<void>(NerinAction::applySlot()); };
  editWithMacros();
  const auto healthy = blockedBy(apply, everyTransfer);
  const int transfers = m_requester->transfers;
  editWithMacros();
  const auto blocked = blockedBy(apply, transfers - 1);
  std::cout << "an Apply with 16 macros: " << healthy.count() << " ms, with a mouse that hangs at "
            << "its last report: " << blocked.count() << " ms\n";
  RecordProperty("milliseconds", static_cast<int>(blocked.count()));
  EXPECT_EQ(transfers, 36);
  constexpr auto pauseOfTheLast = 30ms;
  EXPECT_EQ(blocked, healthy - pauseOfTheLast + kernelTimeout);
  EXPECT_LE(blocked - healthy, longestBlock);
}

// The same on the clock of the world, at a twentieth of all times.
TEST_F(SilentMouse, BlocksNoLongerOnTheClockOfTheWorld) {
  editWithMacros();
  LXPlatform platform = LXPlatform::current();
  platform.now = [] { return std::chrono::steady_clock::now(); };
  platform.sleep = [](std::chrono::microseconds time) {
    std::this_thread::sleep_for(time / scale);
  };
  LXPlatform::install(platform);
  NerinAction::startListenDev();
  m_requester->realTimeout = milliseconds(kernelTimeout) / scale;
  for (const int answered : {0, 18, 35}) {
    editWithMacros();
    NerinAction::startListenDev();
    m_requester->transfers = 0;
    m_requester->answered = answered;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_FALSE(NerinAction::applySlot().isDone());
    const auto blocked =
        std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin) * scale;
    std::cout << "hung after " << answered << " reports: " << blocked.count() << " ms at scale\n";
    EXPECT_GE(blocked, kernelTimeout);
    // Another timeout would be 5 seconds more; the rest is what a busy machine takes.
    EXPECT_LT(blocked, kernelTimeout + 4500ms);
    EXPECT_EQ(m_requester->transfers, answered + 1);
    m_requester->answered = everyTransfer;
    NerinAction::startListenDev();
  }
}

TEST_F(SilentMouse, IsAskedAgainByTheNextDeed) {
  blockedBy([] { static_cast<void>(NerinAction::loadSlot(3)); }, 0);
  m_requester->answered = everyTransfer;
  EXPECT_FALSE(NerinAction::loadSlot(3).value);
  m_requester->time += 1s;
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
}

TEST_F(SilentMouse, ThatIsLookedForAnewIsAskedAtOnce) {
  blockedBy([] { static_cast<void>(NerinAction::loadSlot(3)); }, 0);
  m_requester->answered = everyTransfer;
  NerinAction::startListenDev();
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
}
