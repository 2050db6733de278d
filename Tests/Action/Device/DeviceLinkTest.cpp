#include <numeric>

#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
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
  EXPECT_EQ(NerinAction::sysDeviceReq, LXDeviceRequester::shareDeviceReq());
}

TEST_F(DeviceLink, ListeningAgainChangesNothing) {
  NerinAction::startListenDev();
  mouse().pressSlotButton(4);
  NerinAction::startListenDev();
  EXPECT_TRUE(NerinAction::checkListenDev());
  EXPECT_EQ(NerinAction::getProfileIndexByDevice(), 4);
}

TEST_F(DeviceLink, AnAbsentMouseIsNotOn) {
  mouse().setScenario({.kind = MouseScenario::Kind::Absent});
  NerinAction::startListenDev();
  EXPECT_FALSE(NerinAction::checkListenDev());
  mouse().attach();
  EXPECT_TRUE(NerinAction::checkListenDev());
}

// Writes down what it is asked and answers with bytes that count up.
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
    return m_isOn;
  }
  void resetCurrDevice() override { m_calls.push_back("reset"); }

  bool m_isOn = true;
  std::vector<std::string> m_calls;
  std::vector<LXDeviceRequest> m_requests;
  Bytes m_sent;
  std::uint32_t m_wLenDone = 0xFF;
};

// The program on a requester that only writes down.
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
    NerinAction::sysDeviceReq.reset();
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
      bool isDone = false;
      if (op == "GetCommand:length:") {
        isDone = NerinAction::GetCommand(buffer);
      } else if (op == "SetCommand:length:") {
        isDone = NerinAction::SetCommand(buffer);
      } else if (op == "GetCommand2:length:") {
        isDone = NerinAction::GetCommand2(buffer);
      } else {
        ASSERT_EQ(op, "SetCommand2:length:");
        isDone = NerinAction::SetCommand2(buffer);
      }
      EXPECT_TRUE(isDone);
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
  EXPECT_TRUE(NerinAction::GetCommand2(buffer));
  EXPECT_EQ(m_requester->m_requests.back().wValue, 0x304);
  EXPECT_THAT(buffer, ElementsAre(0x60, 0x61, 0x62));
}

TEST_F(Transport, ALongTransferWithoutBytesIsRefused) {
  Bytes nothing;
  EXPECT_FALSE(NerinAction::GetCommand2(nothing));
  EXPECT_FALSE(NerinAction::SetCommand2(nothing));
  EXPECT_THAT(m_requester->m_requests, IsEmpty());
}

TEST_F(Transport, AFailureIsToldAndLeavesTheBuffer) {
  m_requester->m_isOn = false;
  Bytes buffer{5, 1, 2};
  EXPECT_FALSE(NerinAction::GetCommand(buffer));
  EXPECT_FALSE(NerinAction::SetCommand(buffer));
  EXPECT_FALSE(NerinAction::GetCommand2(buffer));
  EXPECT_FALSE(NerinAction::SetCommand2(buffer));
  EXPECT_THAT(buffer, ElementsAre(5, 1, 2));
}

TEST_F(Transport, TheValueOfAMemoryReadIsByteFourOfTheAnswer) {
  EXPECT_EQ(NerinAction::getAdrrDataWithAddr(0x1234), 0x64);
  EXPECT_THAT(m_requester->m_calls, ElementsAre("transfer", "sleep 30000", "transfer"));
}

TEST_F(Transport, AMemoryReadWithoutAMouseIsZero) {
  m_requester->m_isOn = false;
  EXPECT_EQ(NerinAction::getAdrrDataWithAddr(0x1234), 0);
  EXPECT_EQ(NerinAction::getProfileIndexByDevice(), 0);
}

TEST_F(Transport, ResettingOpensTheDeviceAgainAndRestoresItsSlot) {
  NerinAction::resetDevPro();
  EXPECT_THAT(m_requester->m_calls,
              ElementsAre("reset", "sleep 500000", "transfer", "sleep 30000", "transfer",
                          "transfer", "sleep 30000", "transfer", "sleep 30000"));
}

TEST_F(Transport, ResettingWithoutAMouseDoesNothing) {
  m_requester->m_isOn = false;
  NerinAction::resetDevPro();
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
  NerinAction::refreshDeviceData();
  expectSent("c400000000000000");
  NerinAction::resetDev();
  expectSent("c401000000000000");
  NerinAction::setReadyPro(7, 0x0C);
  expectSent("c40c070000000000");
  NerinAction::setReadyPro(133, 0x0B);
  expectSent("c40b850000000000");
  NerinAction::setReadyPro2(133, 0x0B);
  expectSent("c40b850100000000");
  NerinAction::setSettingToDevicePro(1, 2, 3);
  expectSent("c40f010203000000");
  NerinAction::setSettingToDevicePro2(46, 2, 0);
  expectSent("c5002e0200000000");
  NerinAction::setAdrrData(0xAB, 0x0234);
  expectSent("de34ab0200000000");
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(Commands, AMemoryReadPutsItsAddressTogether) {
  NerinAction::setAdrrData(0xAB, 0x0234);
  clearTrace();
  EXPECT_EQ(NerinAction::getAdrrDataWithAddr(0x0234), 0xAB);
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 df34020000000000", "SLEEP 30",
                                   "GET 0300 0 df340200ab000000"));
}

TEST_F(Commands, ResettingKeepsTheMouseOnItsSlot) {
  mouse().pressSlotButton(6);
  NerinAction::resetDevPro();
  EXPECT_EQ(mouse().activeSlot(), 6);
  EXPECT_THAT(trace(), ElementsAre("SLEEP 500", "SET 0300 0 df19000000000000", "SLEEP 30",
                                   "GET 0300 0 df190000a6000000", "SET 0300 0 de19a60000000000",
                                   "SLEEP 30", "SET 0300 0 c407060000000000", "SLEEP 30"));
}

TEST_F(Commands, PauseWithoutAMouseToo) {
  mouse().detach();
  NerinAction::refreshDeviceData();
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c400000000000000 failed", "SLEEP 30"));
}

TEST_F(DeviceLink, CommandsBeforeTheFirstListenDoNothing) {
  NerinAction::refreshDeviceData();
  NerinAction::resetDevPro();
  EXPECT_EQ(NerinAction::getProfileIndexByDevice(), 0);
  EXPECT_EQ(NerinAction::getFWProfileName(0), "");
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
