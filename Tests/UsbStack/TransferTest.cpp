// Each kind of transfer through the kernel's own drivers, byte for byte.

#include <memory>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/UsbStack/Guest.h"
#include "Tests/VirtualMouse/MouseHost.h"

namespace {

using testing::ElementsAreArray;
using testing::IsEmpty;

// One mouse for all, because plugging in takes longer than a transfer.
class UsbTransfer : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    s_mouse = std::make_unique<UsbMouse>(0);
    s_mouse->plug();
    ASSERT_TRUE(eventually([] { return PluggedMouse(0).isReady(); }));
    s_transfersOfPlugging =
        s_mouse->atTheMouse([](const VirtualMouse& mouse) { return mouse.transcript().size(); });
  }
  static void TearDownTestSuite() {
    s_mouse.reset();
    EXPECT_TRUE(eventually([] { return PluggedMouse(0).isGone(); }));
  }

  UsbTransfer() {
    m_mouse.atTheMouse([](VirtualMouse& itself) {
      itself.clearTranscript();
      itself.clearFaults();
      itself.setScenario({});
    });
  }

  // What the host sent that it should not have sent.
  std::vector<std::string> faults() {
    return m_mouse.atTheMouse([](const VirtualMouse& itself) { return itself.faults(); });
  }
  void expectLastSeen(const SetupPacket& setup, const Bytes& data);

  static inline std::unique_ptr<UsbMouse> s_mouse;
  static inline std::size_t s_transfersOfPlugging = 0;
  UsbMouse& m_mouse = *s_mouse;
};

void UsbTransfer::expectLastSeen(const SetupPacket& setup, const Bytes& data) {
  const TransferRecord seen = m_mouse.atTheMouse([](const VirtualMouse& itself) {
    return itself.transcript().empty() ? TransferRecord() : itself.transcript().back();
  });
  EXPECT_EQ(seen.setup.requestType, setup.requestType);
  EXPECT_EQ(seen.setup.request, setup.request);
  EXPECT_EQ(seen.setup.value, setup.value);
  EXPECT_EQ(seen.setup.index, setup.index);
  EXPECT_EQ(seen.setup.length, data.size());
  EXPECT_EQ(seen.status, TransferStatus::Done);
  EXPECT_THAT(seen.data, ElementsAreArray(data));
}

}  // namespace

TEST_F(UsbTransfer, NoneCarriesAReportWhileTheMouseIsPluggedIn) {
  EXPECT_EQ(s_transfersOfPlugging, 0U);
}

TEST_F(UsbTransfer, CarriesACommandByteForByte) {
  Host host;
  const Bytes command{0xC4, 0x0E, 0x03, 0x01, 0x21, 0x32, 0x43, 0x54};
  ASSERT_TRUE(host.set(0x0300, 0, command)) << host.error().message();
  expectLastSeen({0x21, 0x09, 0x0300, 0, 8}, command);
}

TEST_F(UsbTransfer, CarriesTheAnswerToACommandByteForByte) {
  Host host;
  const int slot = 7;
  m_mouse.atTheMouse([](VirtualMouse& mouse) { mouse.pressSlotButton(slot); });
  ASSERT_TRUE(host.command({0xDF, 25, 0})) << host.error().message();
  const Bytes answer = host.get(0x0300, 0, 8);
  ASSERT_EQ(answer.size(), 8U) << host.error().message();
  EXPECT_EQ(answer[4], 0xA0 + slot);
  expectLastSeen({0xA1, 0x01, 0x0300, 0, 8}, answer);
}

TEST_F(UsbTransfer, CarriesLongReportsToTheMouseByteForByte) {
  Host host;
  for (const int id : {4, 5, 6}) {
    const Bytes report = MouseHost::numberedReport(id, 3, id);
    ASSERT_TRUE(id == 4 ? host.writeMacro(report) : host.writeReport(report))
        << id << ": " << host.error().message();
    const auto value = static_cast<std::uint16_t>(0x0300 + id);
    expectLastSeen({0x21, 0x09, value, 1, 0}, report);
  }
  EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(UsbTransfer, CarriesLongReportsFromTheMouseByteForByte) {
  Host host;
  const Bytes macro = MouseHost::numberedReport(4, 100);
  ASSERT_TRUE(host.writeMacro(macro));
  for (const int id : {4, 5, 6}) {
    const auto slot = static_cast<std::uint8_t>(id == 4 ? 100 : 9);
    ASSERT_TRUE(host.command({0xC4, static_cast<std::uint8_t>(id == 4 ? 0x0B : 0x0C), slot, 0}));
    const auto value = static_cast<std::uint16_t>(0x0300 + id);
    const Bytes answer = host.get(value, 1, MouseHost::sizeOf(id));
    const Bytes held = m_mouse.atTheMouse([&](const VirtualMouse& mouse) {
      return MouseHost::copyOf(id == 4   ? mouse.macroReport(slot)
                               : id == 5 ? mouse.imageReport(slot)
                                         : mouse.nameReport(slot));
    });
    EXPECT_THAT(answer, ElementsAreArray(held)) << id << ": " << host.error().message();
    expectLastSeen({0xA1, 0x01, value, 1, 0}, held);
  }
  EXPECT_THAT(faults(), IsEmpty());
}

TEST_F(UsbTransfer, SaysHowManyBytesAShortAnswerHas) {
  Host host;
  m_mouse.atTheMouse(
      [](VirtualMouse& mouse) { mouse.setScenario({MouseScenario::Kind::AnswersShort}); });
  ASSERT_TRUE(host.command({0xC4, 0x0C, 2, 0}));
  EXPECT_EQ(host.get(0x0306, 1, 70).size(), VirtualMouse::shortAnswerSize);
}

TEST_F(UsbTransfer, FailsWhereTheMouseStallsAndWorksAgain) {
  Host host;
  EXPECT_FALSE(host.command({0x77}));
  EXPECT_EQ(host.error(), std::errc::broken_pipe);
  EXPECT_TRUE(host.isOn());
  EXPECT_TRUE(host.command({0xC4, 0x00})) << host.error().message();
}
