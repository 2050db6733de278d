#include <gtest/gtest.h>

#include "Kit/Core/LXLogger.h"
#include "Tests/VirtualMouse/MouseHost.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

using namespace MouseHost;

namespace {

class Requester : public testing::Test {
 protected:
  void listen() { m_requester.listenDevWithVid(0x264A, 0x1001); }

  LXDeviceRequest setRequest(Bytes& data) { return {0x21, 0x09, 0x0300, 0, data, 99}; }
  LXDeviceRequest getRequest(Bytes& data) { return {0xA1, 0x01, 0x0300, 0, data, 99}; }

  std::shared_ptr<VirtualMouse> m_mouse = std::make_shared<VirtualMouse>();
  VirtualDeviceRequester m_requester{m_mouse};
};

class LogLines {
 public:
  LogLines() {
    LXLogger::setObserver([this](LXLogger::Level level, std::string_view line) {
      EXPECT_EQ(level, LXLogger::Level::Debug);
      m_lines.emplace_back(line);
    });
  }
  ~LogLines() { LXLogger::setObserver({}); }
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  const std::vector<std::string>& lines() const { return m_lines; }

 private:
  std::vector<std::string> m_lines;
};

}  // namespace

TEST_F(Requester, FindsTheMouseOnceItListensForIt) {
  EXPECT_FALSE(m_requester.isDevOn());
  listen();
  EXPECT_TRUE(m_requester.isDevOn());
  listen();
  EXPECT_TRUE(m_requester.isDevOn());
  m_mouse->detach();
  EXPECT_FALSE(m_requester.isDevOn());
  m_mouse->attach();
  EXPECT_TRUE(m_requester.isDevOn());
  m_requester.resetCurrDevice();
  EXPECT_TRUE(m_requester.isDevOn());
}

TEST_F(Requester, DoesNotFindTheMouseUnderOtherIds) {
  m_requester.listenDevWithVid(0x264A, 0x1002);
  EXPECT_FALSE(m_requester.isDevOn());
  m_requester.listenDevWithVid(0x264B, 0x1001);
  EXPECT_FALSE(m_requester.isDevOn());
}

TEST_F(Requester, SendsAndFills) {
  listen();
  Bytes data{0xDF, 25, 0, 0, 0, 0, 0, 0};
  LXDeviceRequest request = setRequest(data);
  EXPECT_TRUE(m_requester.sendDeviceRequest(request));
  EXPECT_EQ(request.wLenDone, 8U);
  request = getRequest(data);
  EXPECT_TRUE(m_requester.sendDeviceRequest(request));
  EXPECT_EQ(request.wLenDone, 8U);
  EXPECT_EQ(data, (Bytes{0xDF, 25, 0, 0, 0xA0, 0, 0, 0}));
}

TEST_F(Requester, ReachesTheLongReports) {
  listen();
  Bytes name = nameReport(6, "over the port");
  LXDeviceRequest request{0x21, 0x09, 0x0306, 1, name};
  EXPECT_TRUE(m_requester.sendDeviceRequest(request));
  EXPECT_EQ(request.wLenDone, 70U);
  EXPECT_EQ(m_mouse->slotName(6), "over the port");
}

TEST_F(Requester, LeavesTheDataAloneOnFailure) {
  const Bytes before(8, 0x5A);
  Bytes data = before;
  const auto expectFailure = [&](LXDeviceRequest request) {
    EXPECT_FALSE(m_requester.sendDeviceRequest(request));
    EXPECT_EQ(request.wLenDone, 0U);
    EXPECT_EQ(data, before);
  };
  expectFailure(getRequest(data));  // not listening
  listen();
  expectFailure(setRequest(data));                   // a command that stalls
  expectFailure({0xA1, 0x01, 0x0305, 1, data, 99});  // too short for the report
  expectFailure({0x80, 0x06, 0x0100, 0, data, 99});  // no such transfer
  m_mouse->detach();
  expectFailure(getRequest(data));
}

TEST_F(Requester, RefusesMoreDataThanATransferCarries) {
  listen();
  Bytes data(65536, 0x5A);
  LXDeviceRequest request = getRequest(data);
  EXPECT_FALSE(m_requester.sendDeviceRequest(request));
  EXPECT_TRUE(m_mouse->transcript().empty());
}

TEST_F(Requester, FillsOnlyWhatAShortAnswerHas) {
  listen();
  m_mouse->setScenario({MouseScenario::Kind::AnswersShort});
  Bytes data(8, 0x5A);
  LXDeviceRequest request = getRequest(data);
  EXPECT_TRUE(m_requester.sendDeviceRequest(request));
  EXPECT_EQ(request.wLenDone, 3U);
  EXPECT_EQ(data, (Bytes{0, 0, 0, 0x5A, 0x5A, 0x5A, 0x5A, 0x5A}));
}

TEST_F(Requester, LosesTheMouseBetweenTwoTransfers) {
  listen();
  m_mouse->setScenario({MouseScenario::Kind::UnpluggedAfter, 1});
  Bytes data{0xC4, 0x07, 3, 0, 0, 0, 0, 0};
  LXDeviceRequest request = setRequest(data);
  EXPECT_TRUE(m_requester.sendDeviceRequest(request));
  EXPECT_FALSE(m_requester.isDevOn());
  EXPECT_FALSE(m_requester.sendDeviceRequest(request));
}

TEST_F(Requester, LogsTransfersWhenAsked) {
  listen();
  const LogLines log;
  Bytes data{0xDF, 25, 0, 0, 0, 0, 0, 0};
  LXDeviceRequest request = setRequest(data);
  m_requester.sendDeviceRequest(request);
  EXPECT_TRUE(log.lines().empty());
  m_requester.setIsPrintMsg(true);
  m_requester.sendDeviceRequest(request);
  request = getRequest(data);
  m_requester.sendDeviceRequest(request);
  data[0] = 0x99;
  request = setRequest(data);
  m_requester.sendDeviceRequest(request);
  EXPECT_EQ(log.lines(),
            (std::vector<std::string>{"SET 0300 0 df19000000000000", "GET 0300 0 df190000a0000000",
                                      "SET 0300 0 stalled"}));
}

TEST_F(Requester, LogsNoKeysOfAMacro) {
  listen();
  m_requester.setIsPrintMsg(true);
  const LogLines log;
  Bytes macro(VirtualMouse::macroReportSize, 0x2C);
  macro[0] = 4;
  LXDeviceRequest request = setRequest(macro);
  request.wValue = 0x0304;
  request.wIndex = 1;
  m_requester.sendDeviceRequest(request);
  EXPECT_EQ(log.lines(), (std::vector<std::string>{"SET 0304 1 042c2c... (2053 bytes)"}));
}
