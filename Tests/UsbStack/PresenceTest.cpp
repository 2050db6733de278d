// The mouse comes and goes, hangs, and is one of two.

#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/UsbStack/Guest.h"
#include "Tests/VirtualMouse/MouseHost.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using testing::HasSubstr;
using testing::IsEmpty;

using UsbPresence = UsbStackTest;

milliseconds timeOf(const std::function<void()>& act) {
  const auto begin = std::chrono::steady_clock::now();
  act();
  return std::chrono::duration_cast<milliseconds>(std::chrono::steady_clock::now() - begin);
}

std::size_t transfersOf(UsbMouse& mouse) {
  return mouse.atTheMouse([](const VirtualMouse& itself) { return itself.transcript().size(); });
}

}  // namespace

TEST_F(UsbPresence, UnpluggingWhileIdleIsNoticed) {
  Host host;
  ASSERT_TRUE(host.isOn());
  unplug();
  EXPECT_TRUE(eventually([&] { return !host.isOn(); }, seconds(2)));
  EXPECT_EQ(host.requester().absence(), LXDeviceAbsence::NotFound);
  EXPECT_THAT(host.requester().explainAbsence(), HasSubstr("Plug the mouse in."));
  EXPECT_FALSE(host.command({0xC4, 0x00}));
  EXPECT_EQ(host.error(), std::errc::no_such_device);
}

TEST_F(UsbPresence, ReturningIsNoticed) {
  Host host;
  ASSERT_TRUE(host.isOn());
  const std::uint64_t connection = host.requester().connection();
  unplug();
  EXPECT_TRUE(eventually([&] { return !host.isOn(); }, seconds(2)));
  plug();
  EXPECT_TRUE(eventually([&] { return host.isOn(); }, seconds(2)));
  EXPECT_TRUE(host.writeReport(MouseHost::numberedReport(5, 1))) << host.error().message();
  EXPECT_EQ(host.requester().connection(), connection + 1);
  EXPECT_THAT(m_mouse.atTheMouse([](const VirtualMouse& mouse) { return mouse.faults(); }),
              IsEmpty());
}

TEST_F(UsbPresence, ReturningBetweenTwoTransfersIsAnotherConnection) {
  Host host;
  ASSERT_TRUE(host.command({0xC4, 0x00}));
  const std::uint64_t connection = host.requester().connection();
  unplug();
  plug();
  // The first transfer may meet the old nodes; none reaches the mouse through them.
  const bool isFirstDone = host.command({0xC4, 0x0C, 1, 0});
  EXPECT_TRUE(isFirstDone || host.error() == std::errc::no_such_device) << host.error().message();
  EXPECT_TRUE(eventually([&] { return host.isOn(); }, seconds(2)));
  EXPECT_EQ(host.requester().connection(), connection + 1);
  EXPECT_TRUE(host.command({0xC4, 0x00})) << host.error().message();
}

TEST_F(UsbPresence, UnpluggingInATransferEndsItAtOnce) {
  Host host;
  ASSERT_TRUE(host.command({0xC4, 0x0B, 5, 1}));
  const std::size_t transfers = transfersOf(m_mouse);
  m_mouse.setAnswerTime(std::nullopt);
  milliseconds time(0);
  bool isDone = true;
  std::thread writing(
      [&] { time = timeOf([&] { isDone = host.writeReport(MouseHost::numberedReport(4, 5)); }); });
  EXPECT_TRUE(eventually([&] { return m_mouse.pendingTransfer().has_value(); }));
  unplug();
  writing.join();
  EXPECT_FALSE(isDone);
  EXPECT_LT(time, seconds(3)) << "it waited for a mouse that is gone";
  EXPECT_TRUE(host.error() == std::errc::no_such_device ||
              host.error() == std::errc::protocol_error)
      << host.error().message();
  EXPECT_FALSE(host.isOn());
  EXPECT_EQ(transfersOf(m_mouse), transfers) << "the report reached the mouse";

  m_mouse.setAnswerTime(milliseconds(0));
  plug();
  EXPECT_TRUE(eventually([&] { return host.isOn(); }, seconds(2)));
  EXPECT_TRUE(host.writeMacro(MouseHost::numberedReport(4, 5))) << host.error().message();
  EXPECT_EQ(transfersOf(m_mouse), transfers + 2);
}

TEST_F(UsbPresence, AMouseThatNeverAnswersCostsFiveSecondsAndIsUsableAfterwards) {
  Host host;
  ASSERT_TRUE(host.isOn());
  m_mouse.setAnswerTime(std::nullopt);
  const milliseconds time = timeOf([&] { EXPECT_THAT(host.get(0x0306, 1, 70), IsEmpty()); });
  EXPECT_EQ(host.error(), std::errc::timed_out) << host.error().message();
  EXPECT_GE(time, milliseconds(4500));
  EXPECT_LT(time, seconds(7));
  EXPECT_EQ(m_mouse.takenBack(), 1U) << "the kernel must take the request back";
  EXPECT_FALSE(m_mouse.pendingTransfer());
  m_mouse.setAnswerTime(milliseconds(0));
  EXPECT_TRUE(eventually([&] { return host.isOn(); }, seconds(2)));
  EXPECT_TRUE(host.command({0xC4, 0x00})) << host.error().message();
  EXPECT_EQ(transfersOf(m_mouse), 1U) << "only the answered transfer reached the mouse";
}

TEST_F(UsbPresence, OfTwoMiceOneGetsBothKindsOfReports) {
  UsbMouse second(1);
  const PluggedMouse secondPlugged(1);
  second.plug();
  ASSERT_TRUE(eventually([&] { return secondPlugged.isReady(); }));
  Host host;
  for (int slot = 0; slot < 5; ++slot) {
    EXPECT_TRUE(host.writeMacro(MouseHost::numberedReport(4, slot)));
    EXPECT_TRUE(host.writeReport(MouseHost::numberedReport(5, slot)));
  }
  EXPECT_EQ(transfersOf(m_mouse), 15U) << "the first in the order of the ports";
  EXPECT_EQ(transfersOf(second), 0U);

  // The other one may go without a word.
  const std::uint64_t connection = host.requester().connection();
  second.unplug();
  ASSERT_TRUE(eventually([&] { return secondPlugged.isGone(); }));
  EXPECT_TRUE(host.command({0xC4, 0x00})) << host.error().message();
  EXPECT_EQ(host.requester().connection(), connection);

  // When the one in use goes, the other one takes its place, as another connection.
  second.plug();
  ASSERT_TRUE(eventually([&] { return secondPlugged.isReady(); }));
  unplug();
  EXPECT_TRUE(eventually([&] { return host.isOn() && host.requester().connection() > connection; },
                         seconds(2)));
  EXPECT_TRUE(host.writeReport(MouseHost::numberedReport(5, 1))) << host.error().message();
  EXPECT_EQ(transfersOf(second), 1U);
  second.unplug();
  EXPECT_TRUE(eventually([&] { return secondPlugged.isGone(); }));
}
