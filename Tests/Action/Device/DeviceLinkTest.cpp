#include <numeric>

#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Wire/ProfileImage.h"
#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DeviceLink : public ActionTest {};

TEST_F(DeviceLink, ListeningFindsTheMouseAtOnce) {
  EXPECT_FALSE(NerinAction::checkListenDev());
  NerinAction::startListenDev();
  EXPECT_TRUE(NerinAction::checkListenDev());
  EXPECT_EQ(*NerinAction::sysDeviceReq, LXDeviceRequester::shareDeviceReq());
}

TEST_F(DeviceLink, ListeningAgainChangesNothing) {
  NerinAction::startListenDev();
  mouse().pressSlotButton(4);
  NerinAction::startListenDev();
  EXPECT_TRUE(NerinAction::checkListenDev());
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 4);
}

TEST_F(DeviceLink, AnAbsentMouseIsNotOn) {
  mouse().setScenario({.kind = MouseScenario::Kind::Absent});
  NerinAction::startListenDev();
  EXPECT_FALSE(NerinAction::checkListenDev());
  mouse().attach();
  EXPECT_TRUE(NerinAction::checkListenDev());
}

// Records the requests and answers with increasing bytes.
class ScriptedRequester final : public LXDeviceRequester {
 public:
  void setIsPrintMsg(bool isPrintMsg) override { m_calls.push_back(isPrintMsg ? "print" : "mute"); }
  void listenDevWithVid(std::uint16_t vid, std::uint16_t pid) override {
    m_calls.push_back("listen " + std::to_string(vid) + " " + std::to_string(pid));
  }
  bool isDevOn() override { return m_isOn; }
  bool sendDeviceRequest(LXDeviceRequest& request) override {
    m_calls.push_back("transfer");
    m_requests.push_back(request);
    m_wLenDone = request.wLenDone;
    m_sent.assign(request.data.begin(), request.data.end());
    if (request.bmRequestType == 0xA1 && m_isOn) {
      std::iota(request.data.begin(), request.data.end(), std::uint8_t{0x60});
    }
    const std::size_t done = m_isShort ? request.data.size() - 1 : request.data.size();
    request.wLenDone = m_isOn ? static_cast<std::uint32_t>(done) : 0;
    return m_isOn;
  }
  void resetCurrDevice() override { m_calls.push_back("reset"); }

  bool m_isOn = true;
  bool m_isShort = false;
  std::vector<std::string> m_calls;
  std::vector<LXDeviceRequest> m_requests;
  Bytes m_sent;
  std::uint32_t m_wLenDone = 0xFF;
};

// The program with a requester that only records.
class Transport : public testing::Test {
 protected:
  Transport() {
    LXPlatform platform;
    platform.deviceRequester = m_requester;
    platform.sleep = [this](std::chrono::microseconds pause) {
      m_requester->m_calls.push_back("sleep " + std::to_string(pause.count()));
    };
    LXPlatform::install(platform);
    NerinAction::startListenDev();
    m_requester->m_calls.clear();
  }
  ~Transport() override {
    NerinAction::sysDeviceReq->reset();
    LXPlatform::install({});
  }

  std::shared_ptr<ScriptedRequester> m_requester = std::make_shared<ScriptedRequester>();
};

TEST_F(Transport, ListensForTheMouseWithTheLogOn) {
  NerinAction::startListenDev();
  EXPECT_THAT(m_requester->m_calls, ElementsAre("print", "listen 9802 4097"));
}

TEST_F(Transport, TheFourTransfersHaveTheSetupPacketsOfTheTable) {
  Bytes buffer(8, 0x05);
  for (const auto& report : protocolTable("reports")) {
    for (const auto& row : report.value("ops", nlohmann::json::array())) {
      const auto op = row.at("op").get<std::string>();
      SCOPED_TRACE(op);
      buffer.assign(8, 0x05);
      std::error_code error;
      if (op == "GetCommand:length:") {
        error = NerinAction::GetCommand(buffer);
      } else if (op == "SetCommand:length:") {
        error = NerinAction::SetCommand(buffer);
      } else if (op == "GetCommand2:length:") {
        error = NerinAction::GetCommand2(buffer);
      } else {
        ASSERT_EQ(op, "SetCommand2:length:");
        error = NerinAction::SetCommand2(buffer);
      }
      EXPECT_FALSE(error) << error.message();
      const LXDeviceRequest& request = m_requester->m_requests.back();
      EXPECT_EQ(request.bmRequestType, row.at("bmRequestType").get<int>());
      EXPECT_EQ(request.bRequest, row.at("bRequest").get<int>());
      EXPECT_EQ(request.wIndex, row.at("wIndex").get<int>());
      EXPECT_EQ(request.wValue, row.at("wValue").is_number() ? row.at("wValue").get<int>() : 0x305);
      EXPECT_EQ(request.data.size(), 8U);
      EXPECT_EQ(m_requester->m_wLenDone, 0U);
      EXPECT_EQ(m_requester->m_sent, Bytes(8, 0x05));
    }
  }
  EXPECT_EQ(m_requester->m_requests.size(), 4U);
}

TEST_F(Transport, AReadFillsTheSameBuffer) {
  Bytes buffer{4, 0, 0};
  EXPECT_FALSE(NerinAction::GetCommand2(buffer));
  EXPECT_EQ(m_requester->m_requests.back().wValue, 0x304);
  EXPECT_THAT(buffer, ElementsAre(0x60, 0x61, 0x62));
}

TEST_F(Transport, ALongTransferWithoutBytesIsRefused) {
  Bytes nothing;
  EXPECT_EQ(NerinAction::GetCommand2(nothing), std::errc::invalid_argument);
  EXPECT_EQ(NerinAction::SetCommand2(nothing), std::errc::invalid_argument);
  EXPECT_THAT(m_requester->m_requests, IsEmpty());
}

TEST_F(Transport, AFailureIsToldAndLeavesTheBuffer) {
  m_requester->m_isOn = false;
  Bytes buffer{5, 1, 2};
  EXPECT_EQ(NerinAction::GetCommand(buffer), std::errc::io_error);
  EXPECT_EQ(NerinAction::SetCommand(buffer), std::errc::io_error);
  EXPECT_EQ(NerinAction::GetCommand2(buffer), std::errc::io_error);
  EXPECT_EQ(NerinAction::SetCommand2(buffer), std::errc::io_error);
  EXPECT_THAT(buffer, ElementsAre(5, 1, 2));
}

TEST_F(Transport, AnAnswerThatIsTooShortIsAFailure) {
  m_requester->m_isShort = true;
  Bytes buffer{5, 1, 2};
  EXPECT_EQ(NerinAction::GetCommand2(buffer), std::errc::message_size);
  const auto name = NerinAction::getFWProfileName(0);
  ASSERT_TRUE(name.outcome.failure());
  EXPECT_EQ(name.outcome.failure()->step, SlotStep::ReadName);
}

TEST_F(Transport, AnOutcomeNamesTheFirstStepThatFailed) {
  m_requester->m_isOn = false;
  const Outcome outcome = NerinAction::setProfileIndexToDevice(3);
  ASSERT_TRUE(outcome.failure());
  EXPECT_EQ(outcome.failure()->step, SlotStep::SelectSlot);
  EXPECT_EQ(outcome.failure()->error, std::errc::io_error);
  EXPECT_EQ(m_requester->m_requests.size(), 1U) << "the series ends there";
}

TEST_F(Transport, TheValueOfAMemoryReadIsByteFourOfTheAnswer) {
  EXPECT_EQ(NerinAction::getAdrrDataWithAddr(0x1234).value, 0x64);
  EXPECT_THAT(m_requester->m_calls, ElementsAre("transfer", "sleep 30000", "transfer"));
}

TEST_F(Transport, AMemoryReadWithoutAMouseIsZero) {
  m_requester->m_isOn = false;
  EXPECT_EQ(NerinAction::getAdrrDataWithAddr(0x1234).value, 0);
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 0);
}

TEST_F(Transport, ResettingOpensTheDeviceAgainAndRestoresItsSlot) {
  EXPECT_TRUE(NerinAction::resetDevPro().isDone());
  EXPECT_THAT(m_requester->m_calls,
              ElementsAre("reset", "sleep 500000", "transfer", "sleep 30000", "transfer",
                          "transfer", "sleep 30000", "transfer", "sleep 30000"));
}

TEST_F(Transport, ResettingWithoutAMouseDoesNothing) {
  m_requester->m_isOn = false;
  EXPECT_FALSE(NerinAction::resetDevPro().isDone());
  EXPECT_THAT(m_requester->m_calls, IsEmpty());
}

class Commands : public ActionTest {
 protected:
  Commands() { NerinAction::startListenDev(); }

  void expectSent(const std::string& hex) {
    EXPECT_THAT(trace(), ElementsAre("SET 0300 0 " + hex, "SLEEP 30"));
    clearTrace();
  }
};

TEST_F(Commands, HaveTheBytesOfTheTableAndOnePauseEach) {
  EXPECT_TRUE(NerinAction::refreshDeviceData().isDone());
  expectSent("c400000000000000");
  EXPECT_TRUE(NerinAction::resetDev().isDone());
  expectSent("c401000000000000");
  EXPECT_TRUE(NerinAction::setReadyPro(7, 0x0C).isDone());
  expectSent("c40c070000000000");
  EXPECT_TRUE(NerinAction::setReadyPro(133, 0x0B).isDone());
  expectSent("c40b850000000000");
  EXPECT_TRUE(NerinAction::setReadyPro2(133, 0x0B).isDone());
  expectSent("c40b850100000000");
  EXPECT_TRUE(NerinAction::setSettingToDevicePro(1, 2, 3).isDone());
  expectSent("c40f010203000000");
  EXPECT_TRUE(NerinAction::setSettingToDevicePro2(46, 2, 0).isDone());
  expectSent("c5002e0200000000");
  EXPECT_TRUE(NerinAction::setAdrrData(0xAB, 0x0234).isDone());
  expectSent("de34ab0200000000");
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(Commands, AMemoryReadPutsItsAddressTogether) {
  EXPECT_TRUE(NerinAction::setAdrrData(0xAB, 0x0234).isDone());
  clearTrace();
  EXPECT_EQ(NerinAction::getAdrrDataWithAddr(0x0234).value, 0xAB);
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 df34020000000000", "SLEEP 30",
                                   "GET 0300 0 df340200ab000000"));
}

TEST_F(Commands, ResettingKeepsTheMouseOnItsSlot) {
  mouse().pressSlotButton(6);
  EXPECT_TRUE(NerinAction::resetDevPro().isDone());
  EXPECT_EQ(mouse().activeSlot(), 6);
  EXPECT_THAT(trace(), ElementsAre("SLEEP 500", "SET 0300 0 df19000000000000", "SLEEP 30",
                                   "GET 0300 0 df190000a6000000", "SET 0300 0 de19a60000000000",
                                   "SLEEP 30", "SET 0300 0 c407060000000000", "SLEEP 30"));
}

TEST_F(Commands, PauseWithoutAMouseToo) {
  mouse().detach();
  EXPECT_FALSE(NerinAction::refreshDeviceData().isDone());
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c400000000000000 failed", "SLEEP 30"));
}

TEST_F(DeviceLink, CommandsBeforeTheFirstListenDoNothing) {
  EXPECT_FALSE(NerinAction::refreshDeviceData().isDone());
  EXPECT_FALSE(NerinAction::resetDevPro().isDone());
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 0);
  EXPECT_EQ(NerinAction::getFWProfileName(0).value, "");
  EXPECT_THAT(mouse().transcript(), IsEmpty());
}

TEST(DeviceAddress, WrapsAtSixteenBits) {
  EXPECT_EQ(NerinAction::getOffsetAdrBy(294, 0), 294);
  EXPECT_EQ(NerinAction::getOffsetAdrBy(294, 9), 294 + 9 * 256);
  EXPECT_EQ(NerinAction::getOffsetAdrBy(294, 255), 38);
}

TEST(Checksum, MakesTheSumZero) {
  const Bytes zeros(7);
  EXPECT_EQ(NerinAction::GetChecksum(zeros), 0);
  EXPECT_EQ(NerinAction::GetChecksum({}), 0);
  EXPECT_EQ(NerinAction::GetChecksum(Bytes{0x01}), 0xFF);
  EXPECT_EQ(NerinAction::GetChecksum(Bytes{0x80, 0x80}), 0);
  EXPECT_EQ(NerinAction::GetChecksum(Bytes(300, 0xFF)), 300 % 256);
}

}  // namespace
