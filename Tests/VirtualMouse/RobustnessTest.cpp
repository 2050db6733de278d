#include <random>

#include <gtest/gtest.h>

#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;

namespace {

class AnyHost {
 public:
  explicit AnyHost(std::uint32_t seed) : m_random(seed) {}

  // Mostly transfers that are nearly valid, because pure noise never passes the first check.
  void transfer(VirtualMouse& mouse) {
    SetupPacket setup;
    const bool isToHost = oneOf(2);
    const int id = m_ids[next(m_ids.size())];
    setup.requestType = oneOf(50) ? byte() : isToHost ? 0xA1 : 0x21;
    setup.request = oneOf(50) ? byte() : isToHost ? 0x01 : 0x09;
    setup.value = oneOf(50) ? word() : static_cast<std::uint16_t>(0x0300 + id);
    setup.index = oneOf(50) ? word() : id == 0 ? 0 : 1;
    const std::size_t size = id == 0 ? 8 : sizeOf(id);
    setup.length = static_cast<std::uint16_t>(oneOf(20) ? next(2200) : size);
    Bytes data(setup.length);
    for (std::size_t index = 0; index < std::min<std::size_t>(data.size(), 100); ++index) {
      data[index] = byte();
    }
    if (!isToHost && data.size() == size) {
      shape(id, data);
    }
    const std::size_t room = oneOf(100) ? next(data.size() + 1) : data.size();
    const Bytes before(data);
    const TransferResult result = mouse.controlTransfer(setup, std::span(data).first(room));
    ASSERT_LE(result.bytes, room);
    if (result.status != TransferStatus::Done || (setup.requestType & 0x80) == 0) {
      ASSERT_EQ(data, before);
    }
  }

 private:
  std::size_t next(std::size_t below) { return m_random() % below; }
  bool oneOf(std::size_t count) { return next(count) == 0; }
  std::uint8_t byte() { return static_cast<std::uint8_t>(m_random() >> 8); }
  std::uint16_t word() { return static_cast<std::uint16_t>(m_random() >> 8); }

  void shape(int id, Bytes& data) {
    if (id == 0) {
      data[0] = m_first[next(m_first.size())];
      if (data[0] == 0xC4 || data[0] == 0xC5) {
        data[1] = static_cast<std::uint8_t>(next(17));
        data[3] = oneOf(2) ? data[3] : static_cast<std::uint8_t>(next(3));
      } else if (oneOf(2)) {
        data[data[0] == 0xDE ? 3 : 2] = static_cast<std::uint8_t>(next(12));
      }
      return;
    }
    data[0] = static_cast<std::uint8_t>(id);
    data[2] = oneOf(5) ? byte() : static_cast<std::uint8_t>(next(11));
    if (!oneOf(10)) {
      data = sealed(data);
    }
  }

  std::mt19937 m_random;
  const std::vector<int> m_ids{0, 0, 0, 0, 4, 5, 6};
  const std::vector<std::uint8_t> m_first{0xC4, 0xC4, 0xC4, 0xC5, 0xDE, 0xDF, 0x11};
};

}  // namespace

TEST(VirtualMouse, StandsAnyTransferInAnyScenario) {
  using Kind = MouseScenario::Kind;
  const Kind kinds[] = {Kind::Healthy, Kind::AnswersShort, Kind::AnswersRandom, Kind::HoldsGarbage,
                        Kind::UnpluggedAfter};
  for (std::uint32_t seed = 0; seed < 40; ++seed) {
    AnyHost host(seed);
    VirtualMouse mouse;
    mouse.setTranscriptLimit(5000);
    mouse.setScenario({kinds[seed % std::size(kinds)], 2500});
    std::size_t done = 0;
    for (int count = 0; count < 5000; ++count) {
      ASSERT_NO_FATAL_FAILURE(host.transfer(mouse));
    }
    for (const TransferRecord& record : mouse.transcript()) {
      done += record.status == TransferStatus::Done ? 1 : 0;
    }
    // The noise is useful only if much of it is understood.
    EXPECT_GT(done, mouse.transcript().size() / 5);
    EXPECT_EQ(mouse.transcript().size(), mouse.isAttached() ? 5000U : 2500U);
    // Whatever happened, the answers of the mouse have the right form.
    mouse.attach();
    mouse.setScenario({});
    for (int slot = 0; slot < 10; ++slot) {
      const Bytes image = copyOf(mouse.imageReport(slot));
      EXPECT_EQ(sealed(image), image);
      const Bytes name = copyOf(mouse.nameReport(slot));
      EXPECT_EQ(sealed(name), name);
      EXPECT_LE(name[4], 65);
    }
    for (int macroSlot = 0; macroSlot < 190; ++macroSlot) {
      const Bytes macro = copyOf(mouse.macroReport(macroSlot));
      EXPECT_TRUE(macro[0] == 4 || macro[0] == 0xB0);
      EXPECT_EQ(sealed(macro), macro);
    }
  }
}

TEST(VirtualMouse, StandsPureNoise) {
  std::mt19937 random(1);
  VirtualMouse mouse;
  for (int count = 0; count < 200000; ++count) {
    const auto word = [&] { return static_cast<std::uint16_t>(random() >> 8); };
    const SetupPacket setup{static_cast<std::uint8_t>(word()), static_cast<std::uint8_t>(word()),
                            word(), word(), static_cast<std::uint16_t>(word() % 16)};
    Bytes data(setup.length, static_cast<std::uint8_t>(word()));
    mouse.controlTransfer(setup, data);
  }
  EXPECT_EQ(mouse.transcript().size(), VirtualMouse::transcriptLimit);
  EXPECT_EQ(mouse.slotName(0), "Profile#1");
}
