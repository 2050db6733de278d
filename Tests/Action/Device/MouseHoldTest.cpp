// Several programs have one mouse: each waits until the other's series is over.

#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/FileLock.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ActionTest.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::chrono_literals;

struct MouseWithAFile {
  Scratch scratch;
  std::shared_ptr<VirtualMouse> made = std::make_shared<VirtualMouse>(scratch.folder() / "mouse");
};

class MouseHold : private MouseWithAFile, public ActionTest {
 protected:
  MouseHold() : ActionTest(made, std::make_shared<VirtualDeviceRequester>(made)) { beginProgram(); }

  std::unique_ptr<FileLock> holdAsAnotherProgram() const {
    return FileLock::acquire(scratch.folder() / "mouse.lock", 0ms);
  }

  void setUpMacros() {
    addMacro(7, "Jump", {{15, 0, 10}, {15, 1, 0}});
    editState->edit().btnInfo[3] = macroButton(7);
    editState->currFWProfile() = editState->selProfile();
  }
};

// The claims that were asked for, and the answer to each.
class ClaimedMouse final : public LXDeviceRequester {
 public:
  void setIsPrintMsg(bool) override {}
  void listenDevWithVid(std::uint16_t, std::uint16_t) override {}
  bool isDevOn() override { return true; }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    ++transfers;
    request.wLenDone = static_cast<std::uint32_t>(request.data.size());
    return true;
  }
  void resetCurrDevice() override {}
  Claim claim(std::chrono::milliseconds limit, std::error_code& error) override {
    limits.push_back(limit);
    error = isTaken ? std::make_error_code(std::errc::device_or_resource_busy) : std::error_code();
    return nullptr;
  }

  bool isTaken = false;
  int transfers = 0;
  std::vector<std::chrono::milliseconds> limits;
};

}  // namespace

TEST_F(MouseHold, NothingReachesAMouseThatAnotherProgramHas) {
  const auto other = holdAsAnotherProgram();
  ASSERT_TRUE(other);
  mouse().clearTranscript();
  const auto read = NerinAction::loadSlot(2);
  ASSERT_TRUE(read.outcome.failure());
  EXPECT_EQ(read.outcome.failure()->error, std::errc::device_or_resource_busy);
  EXPECT_FALSE(NerinAction::applySlot().isDone());
  EXPECT_FALSE(NerinAction::setRateToDevice(1).isDone());
  EXPECT_FALSE(NerinAction::getProfileIndexByDevice().outcome.isDone());
  EXPECT_FALSE(NerinAction::refreshDeviceData().isDone());
  EXPECT_THAT(mouse().transcript(), IsEmpty());
}

TEST_F(MouseHold, EndsWithTheSeries) {
  { const auto other = holdAsAnotherProgram(); }
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  EXPECT_TRUE(holdAsAnotherProgram());
}

TEST_F(MouseHold, NoOtherProgramComesBetweenTheTransfersOfOne) {
  setUpMacros();
  int pauses = 0;
  setOnPause([&] {
    ++pauses;
    EXPECT_FALSE(holdAsAnotherProgram());
  });
  const std::vector<std::function<void()>> deeds{
      [] { static_cast<void>(NerinAction::getProfileIndexByDevice()); },
      [] { static_cast<void>(NerinAction::getFWProfileName(1)); },
      [] { static_cast<void>(NerinAction::readProfileImage(1)); },
      [] { static_cast<void>(NerinAction::readMacroStream(1, 3)); },
      [] { static_cast<void>(NerinAction::setFWMacroData(1, 3)); },
      [] { static_cast<void>(NerinAction::setFWProfileName(1, "One")); },
      [] { static_cast<void>(NerinAction::setFWProfileDataPro(1)); },
      [] { static_cast<void>(NerinAction::getFWProfileData(1)); },
      [] { static_cast<void>(NerinAction::setProfileIndexToDevice(2)); },
      [] { static_cast<void>(NerinAction::setBtnInfoToDevicePro(3, macroButton(7))); },
      [] { static_cast<void>(NerinAction::setSettingToDevice()); },
      [] { static_cast<void>(NerinAction::setRateToDevice(2)); },
      [] { static_cast<void>(NerinAction::setColorToDevice()); },
      [] { static_cast<void>(NerinAction::setColorToDevice2()); },
      [] { static_cast<void>(NerinAction::setModelToDevice()); },
      [] { static_cast<void>(NerinAction::refreshDeviceData()); },
      [] { static_cast<void>(NerinAction::resetDevPro()); },
      [] { static_cast<void>(NerinAction::applySlot()); },
      [] {
        static_cast<void>(
            NerinAction::changeSlot(4, [] { return NerinAction::loadSlot(4).outcome; }));
      }};
  for (std::size_t deed = 0; deed < deeds.size(); ++deed) {
    pauses = 0;
    deeds[deed]();
    EXPECT_GT(pauses, 0) << deed;
    EXPECT_TRUE(holdAsAnotherProgram()) << deed;
  }
}

TEST_F(MouseHold, WaitsOnceForADeedOfSeveralSeries) {
  const auto claimed = std::make_shared<ClaimedMouse>();
  LXPlatform platform = LXPlatform::current();
  platform.deviceRequester = claimed;
  auto time = std::chrono::steady_clock::time_point(100s);
  platform.now = [&] { return time; };
  LXPlatform::install(platform);
  NerinAction::startListenDev();
  claimed->isTaken = true;
  static_cast<void>(NerinAction::loadSlot(1));
  static_cast<void>(NerinAction::setModelToDevice());
  static_cast<void>(NerinAction::refreshDeviceData());
  EXPECT_THAT(claimed->limits, ElementsAre(200ms, 0ms, 0ms));
  EXPECT_EQ(claimed->transfers, 0);
  // The next deed may wait again.
  time += 1s;
  claimed->limits.clear();
  claimed->isTaken = false;
  EXPECT_TRUE(NerinAction::refreshDeviceData().isDone());
  EXPECT_THAT(claimed->limits, ElementsAre(200ms));
  EXPECT_EQ(claimed->transfers, 1);
}

TEST_F(MouseHold, OfAMouseWithoutALockIsNone) {
  std::error_code error = std::make_error_code(std::errc::io_error);
  VirtualDeviceRequester requester(std::make_shared<VirtualMouse>());
  EXPECT_EQ(requester.claim(0ms, error), nullptr);
  EXPECT_FALSE(error);
}
