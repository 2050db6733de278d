// The mouse is suspended when nobody uses it, and the whole machine sleeps.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/UsbStack/Guest.h"
#include "Tests/VirtualMouse/MouseHost.h"

namespace {

using std::chrono::seconds;

class UsbSleep : public UsbStackTest {
 protected:
  bool isSuspended() const { return m_plugged.power("runtime_status") == "suspended"; }
  bool suspendsWhenUnused() const {
    m_plugged.setPower("autosuspend_delay_ms", "0");
    m_plugged.setPower("control", "auto");
    return eventually([this] { return isSuspended(); });
  }
};

}  // namespace

TEST_F(UsbSleep, ASuspendedMouseIsWokenByTheProgramAndSuspendedAfterIt) {
  ASSERT_TRUE(suspendsWhenUnused());
  {
    Host host;
    ASSERT_TRUE(host.isOn());
    EXPECT_FALSE(isSuspended());
    const Bytes macro = MouseHost::numberedReport(4, 12);
    EXPECT_TRUE(host.writeMacro(macro)) << host.error().message();
    EXPECT_TRUE(host.command({0xC4, 0x0B, 12, 0}));
    Bytes held = macro;
    held[0] = 0xB0;
    EXPECT_EQ(host.get(0x0304, 1, held.size()), held) << host.error().message();
    EXPECT_FALSE(isSuspended()) << "the program still has it";
  }
  EXPECT_TRUE(eventually([this] { return isSuspended(); }));
}

TEST_F(UsbSleep, ASuspendedMouseThatIsUnpluggedIsGone) {
  ASSERT_TRUE(suspendsWhenUnused());
  unplug();
  plug();
  Host host;
  EXPECT_TRUE(host.isOn());
  EXPECT_TRUE(host.command({0xC4, 0x00})) << host.error().message();
}

// The bus loses its power when the machine sleeps, and the mouse is plugged in again by waking.
TEST_F(UsbSleep, AProgramThatSleptWithTheMachineFindsTheMouseAgain) {
  Host host;
  ASSERT_TRUE(host.isOn());
  const std::uint64_t connection = host.requester().connection();
  // All devices are suspended and resumed, with nothing in between.
  ASSERT_EQ(writeLine("/sys/power/pm_test", "devices"), 0);
  ASSERT_EQ(writeLine("/sys/module/suspend/parameters/pm_test_delay", "0"), 0);
  unplug();
  const std::string sleepsBefore = lineOf("/sys/power/suspend_stats/success");
  EXPECT_EQ(writeLine("/sys/power/state", "freeze"), 0) << "the machine does not sleep";
  EXPECT_NE(lineOf("/sys/power/suspend_stats/success"), sleepsBefore);
  plug();
  EXPECT_TRUE(eventually([&] { return host.isOn(); }, seconds(2)));
  EXPECT_EQ(host.requester().connection(), connection + 1);
  EXPECT_TRUE(host.writeReport(MouseHost::numberedReport(5, 3))) << host.error().message();
}
