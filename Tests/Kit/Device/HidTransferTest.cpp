#include <array>
#include <cerrno>
#include <cstdint>
#include <numeric>
#include <span>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Kit/Core/LXLogger.h"
#include "Kit/Device/HidDeviceRequester.h"
#include "Tests/Support/EmulatedMouse.h"

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;

using Bytes = std::vector<std::uint8_t>;

// Makes the sum of the covered bytes and the checksum 0.
void addChecksum(Bytes& report, std::size_t first, std::size_t last) {
  const auto begin = report.begin();
  report[3] =
      static_cast<std::uint8_t>(-std::accumulate(begin + static_cast<std::ptrdiff_t>(first),
                                                 begin + static_cast<std::ptrdiff_t>(last) + 1, 0));
}

// A report in which neighboring bytes differ, so that a shift is noticed.
Bytes patternReport(std::uint8_t reportId, std::uint8_t slot, std::size_t size) {
  Bytes report(size);
  for (std::size_t index = 4; index < size; ++index) {
    report[index] = static_cast<std::uint8_t>(index * 7 + reportId);
  }
  report[0] = reportId;
  report[2] = slot;
  addChecksum(report, 4, size - 2);
  return report;
}

class HidTransfer : public testing::Test {
 protected:
  HidTransfer() : m_requester(m_mouse.udevControl()) {
    m_mouse.plug();
    m_requester.listenDevWithVid(0x264A, 0x1001);
  }

  bool set(std::uint16_t value, std::uint16_t interface, Bytes& data) {
    LXDeviceRequest request{.bmRequestType = 0x21,
                            .bRequest = 0x09,
                            .wValue = value,
                            .wIndex = interface,
                            .data = data};
    const bool isDone = m_requester.sendDeviceRequest(request);
    m_bytesDone = request.wLenDone;
    return isDone;
  }
  bool get(std::uint16_t value, std::uint16_t interface, Bytes& data) {
    LXDeviceRequest request{.bmRequestType = 0xA1,
                            .bRequest = 0x01,
                            .wValue = value,
                            .wIndex = interface,
                            .data = data};
    const bool isDone = m_requester.sendDeviceRequest(request);
    m_bytesDone = request.wLenDone;
    return isDone;
  }
  bool command(Bytes bytes) {
    bytes.resize(8);
    return set(0x0300, 0, bytes);
  }

  void expectLastTransfer(std::uint8_t requestType, std::uint8_t request, std::uint16_t value,
                          std::uint16_t interface, const Bytes& data) {
    ASSERT_FALSE(m_mouse.mouse().transcript().empty());
    const TransferRecord& seen = m_mouse.mouse().transcript().back();
    EXPECT_EQ(seen.setup.requestType, requestType);
    EXPECT_EQ(seen.setup.request, request);
    EXPECT_EQ(seen.setup.value, value);
    EXPECT_EQ(seen.setup.index, interface);
    EXPECT_EQ(seen.setup.length, data.size());
    EXPECT_EQ(seen.status, TransferStatus::Done);
    EXPECT_THAT(seen.data, ElementsAreArray(data));
  }

  void expectLongReportArrives(Bytes report) {
    const Bytes sent = report;
    const auto value = static_cast<std::uint16_t>(0x0300U | sent[0]);
    ASSERT_TRUE(set(value, 1, report));
    EXPECT_EQ(m_bytesDone, sent.size());
    EXPECT_THAT(report, ElementsAreArray(sent));
    expectLastTransfer(0x21, 0x09, value, 1, sent);
    EXPECT_THAT(m_mouse.mouse().faults(), ElementsAre());
  }

  // `held` is what the mouse keeps, and so what it must answer.
  void expectLongReportIsRead(std::uint8_t reportId, std::span<const std::uint8_t> held) {
    const Bytes expected(held.begin(), held.end());
    const auto value = static_cast<std::uint16_t>(0x0300U | reportId);
    Bytes answer(expected.size(), 0xEE);
    answer[0] = reportId;
    ASSERT_TRUE(get(value, 1, answer));
    EXPECT_EQ(m_bytesDone, expected.size());
    EXPECT_THAT(answer, ElementsAreArray(expected));
    expectLastTransfer(0xA1, 0x01, value, 1, expected);
  }

  EmulatedMouse m_mouse;
  HidDeviceRequester m_requester;
  std::uint32_t m_bytesDone = 0;
};

TEST_F(HidTransfer, SendsAllEightBytesOfACommand) {
  Bytes bytes{0xC4, 0x0E, 0x03, 0x01, 0x21, 0x32, 0x43, 0x54};
  ASSERT_TRUE(set(0x0300, 0, bytes));
  EXPECT_EQ(m_bytesDone, 8U);
  expectLastTransfer(0x21, 0x09, 0x0300, 0, {0xC4, 0x0E, 0x03, 0x01, 0x21, 0x32, 0x43, 0x54});
  EXPECT_THAT(m_mouse.mouse().faults(), ElementsAre());
}

TEST_F(HidTransfer, ReadsAllEightBytesOfAnAnswerWithoutTheNumberInFront) {
  ASSERT_TRUE(command({0xDE, 0x20, 0x5A, 0x0A}));
  ASSERT_TRUE(command({0xDF, 0x20, 0x0A}));
  Bytes answer(8, 0xEE);
  ASSERT_TRUE(get(0x0300, 0, answer));
  EXPECT_EQ(m_bytesDone, 8U);
  EXPECT_THAT(answer, ElementsAre(0xDF, 0x20, 0x0A, 0, 0x5A, 0, 0, 0));
  expectLastTransfer(0xA1, 0x01, 0x0300, 0, answer);
}

TEST_F(HidTransfer, SendsAMacroReportWhole) {
  ASSERT_TRUE(command({0xC4, 0x0B, 0x2A, 0x01}));
  expectLongReportArrives(patternReport(4, 0x2A, VirtualMouse::macroReportSize));
}

TEST_F(HidTransfer, SendsAnImageReportWhole) {
  expectLongReportArrives(patternReport(5, 2, VirtualMouse::imageReportSize));
}

TEST_F(HidTransfer, SendsANameReportWhole) {
  Bytes report(VirtualMouse::nameReportSize);
  const std::string name = "a name of sixty-five letters: abcdefghijklmnopqrstuvwxyz012345678";
  ASSERT_EQ(name.size(), 65U);
  report[0] = 6;
  report[2] = 3;
  report[4] = 65;
  std::copy(name.begin(), name.end(), report.begin() + 5);
  addChecksum(report, 4, 68);
  expectLongReportArrives(report);
  EXPECT_EQ(m_mouse.mouse().slotName(3), name);
}

TEST_F(HidTransfer, ReadsAMacroReportWithTheMarkThatTheMousePutInFront) {
  ASSERT_TRUE(command({0xC4, 0x0B, 0x2A, 0x01}));
  Bytes report = patternReport(4, 0x2A, VirtualMouse::macroReportSize);
  ASSERT_TRUE(set(0x0304, 1, report));
  ASSERT_TRUE(command({0xC4, 0x0B, 0x2A, 0x00}));
  ASSERT_EQ(m_mouse.mouse().macroReport(0x2A)[0], 0xB0);
  expectLongReportIsRead(4, m_mouse.mouse().macroReport(0x2A));
}

TEST_F(HidTransfer, ReadsAnImageReportWhole) {
  Bytes report = patternReport(5, 2, VirtualMouse::imageReportSize);
  ASSERT_TRUE(set(0x0305, 1, report));
  ASSERT_TRUE(command({0xC4, 0x0C, 0x02}));
  expectLongReportIsRead(5, m_mouse.mouse().imageReport(2));
}

TEST_F(HidTransfer, ReadsANameReportWhole) {
  ASSERT_TRUE(command({0xC4, 0x0C, 0x04}));
  ASSERT_FALSE(m_mouse.mouse().slotName(4).empty());
  expectLongReportIsRead(6, m_mouse.mouse().nameReport(4));
}

TEST_F(HidTransfer, CopiesNoMoreThanAShortAnswerHolds) {
  ASSERT_TRUE(command({0xC4, 0x0C, 0x00}));
  m_mouse.mouse().setScenario({.kind = MouseScenario::Kind::AnswersShort});
  Bytes answer(VirtualMouse::imageReportSize, 0xEE);
  answer[0] = 5;
  ASSERT_TRUE(get(0x0305, 1, answer));
  ASSERT_GT(m_bytesDone, 0U);
  ASSERT_LT(m_bytesDone, answer.size());
  const Bytes& seen = m_mouse.mouse().transcript().back().data;
  EXPECT_THAT(std::span(answer).first(m_bytesDone), ElementsAreArray(seen));
  EXPECT_THAT(std::span(answer).subspan(m_bytesDone), testing::Each(0xEE));

  Bytes shortAnswer(8, 0xEE);
  ASSERT_TRUE(get(0x0300, 0, shortAnswer));
  const Bytes& seenShort = m_mouse.mouse().transcript().back().data;
  ASSERT_EQ(m_bytesDone, seenShort.size());
  EXPECT_THAT(std::span(shortAnswer).first(m_bytesDone), ElementsAreArray(seenShort));
  EXPECT_THAT(std::span(shortAnswer).subspan(m_bytesDone), testing::Each(0xEE));
}

TEST_F(HidTransfer, LeavesTheDataAloneWhenTheMouseStalls) {
  Bytes answer(VirtualMouse::imageReportSize, 0xEE);
  answer[0] = 5;
  const Bytes before = answer;
  EXPECT_FALSE(get(0x0305, 1, answer));
  EXPECT_EQ(m_bytesDone, 0U);
  EXPECT_THAT(answer, ElementsAreArray(before));
  EXPECT_EQ(m_mouse.mouse().transcript().back().status, TransferStatus::Stalled);
}

TEST_F(HidTransfer, StaysOpenWhenTheMouseStalls) {
  const int opens = m_mouse.openCount();
  EXPECT_FALSE(command({0x77}));
  EXPECT_TRUE(m_requester.isDevOn());
  EXPECT_EQ(m_mouse.openCount(), opens);
}

TEST_F(HidTransfer, RefusesWhatHidrawCannotCarry) {
  Bytes bytes{0x05, 1, 2, 3, 4, 5, 6, 7};
  const Bytes before = bytes;
  const auto refuses = [&](LXDeviceRequest request) {
    const bool isRefused = !m_requester.sendDeviceRequest(request);
    return isRefused && request.wLenDone == 0 && bytes == before;
  };
  Bytes huge(0x4000);
  Bytes none;
  // Each differs in one field from a transfer that the node can carry.
  EXPECT_TRUE(refuses({0x20, 0x09, 0x0300, 0, bytes}));
  EXPECT_TRUE(refuses({0xA1, 0x09, 0x0300, 0, bytes}));
  EXPECT_TRUE(refuses({0x21, 0x01, 0x0300, 0, bytes}));
  EXPECT_TRUE(refuses({0x80, 0x06, 0x0300, 0, bytes}));
  EXPECT_TRUE(refuses({0x21, 0x09, 0x0200, 0, bytes}));
  EXPECT_TRUE(refuses({0xA1, 0x01, 0x0100, 0, bytes}));
  EXPECT_TRUE(refuses({0x21, 0x09, 0x0300, 2, bytes}));
  EXPECT_TRUE(refuses({0xA1, 0x01, 0x0300, 0x0100, bytes}));
  EXPECT_TRUE(refuses({0x21, 0x09, 0x0306, 1, bytes}));
  EXPECT_TRUE(refuses({0x21, 0x09, 0x0300, 0, none}));
  EXPECT_TRUE(refuses({0xA1, 0x01, 0x0300, 0, none}));
  EXPECT_TRUE(refuses({0x21, 0x09, 0x0300, 0, huge}));
  EXPECT_THAT(m_mouse.mouse().transcript(), ElementsAre());
}

TEST_F(HidTransfer, FailsWithoutAMouseAndLeavesTheDataAlone) {
  m_mouse.unplug();
  Bytes bytes{0xC4, 0x0C, 0, 0, 0, 0, 0, 9};
  const Bytes before = bytes;
  EXPECT_FALSE(set(0x0300, 0, bytes));
  EXPECT_FALSE(get(0x0300, 0, bytes));
  EXPECT_EQ(m_bytesDone, 0U);
  EXPECT_THAT(bytes, ElementsAreArray(before));
}

TEST_F(HidTransfer, LogsEveryTransferOnlyWhenAskedTo) {
  std::vector<std::string> lines;
  LXLogger::setObserver([&](LXLogger::Level, std::string_view line) { lines.emplace_back(line); });
  ASSERT_TRUE(command({0xC4, 0x0C, 0x01}));
  EXPECT_THAT(lines, ElementsAre());

  m_requester.setIsPrintMsg(true);
  ASSERT_TRUE(command({0xC4, 0x0C, 0x01}));
  Bytes image(VirtualMouse::imageReportSize);
  image[0] = 5;
  ASSERT_TRUE(get(0x0305, 1, image));
  ASSERT_FALSE(command({0x77}));
  ASSERT_TRUE(command({0xC4, 0x0E, 0x05, 0x01, 0x02, 0x2C}));
  m_requester.setIsPrintMsg(false);
  ASSERT_TRUE(command({0xC4, 0x0C, 0x01}));
  LXLogger::setObserver({});

  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0], "SET 0300 0 c40c010000000000");
  EXPECT_EQ(lines[1], "GET 0305 1 050001... (154 bytes)");
  EXPECT_THAT(lines[2], HasSubstr("SET 0300 0 failed"));
  EXPECT_EQ(lines[3], "SET 0300 0 c40e05... (8 bytes)");
}

class LostMouse : public HidTransfer, public testing::WithParamInterface<int> {};

TEST_P(LostMouse, IsGoneAndLookedForAgain) {
  const int opens = m_mouse.openCount();
  m_mouse.setTransferError(GetParam());
  Bytes bytes(8, 0xEE);
  EXPECT_FALSE(get(0x0300, 0, bytes));
  EXPECT_EQ(m_bytesDone, 0U);
  EXPECT_THAT(bytes, testing::Each(0xEE));

  m_mouse.setTransferError(0);
  EXPECT_TRUE(m_requester.isDevOn());
  EXPECT_EQ(m_mouse.openCount(), opens + 2);
  EXPECT_TRUE(command({0xC4, 0x00}));
}

TEST_P(LostMouse, IsOffWhenTheLookFindsNothing) {
  m_mouse.setTransferError(GetParam());
  Bytes bytes(8);
  EXPECT_FALSE(get(0x0300, 0, bytes));
  // The transfer notices the removal before udevd reports it.
  m_mouse.setIsSilent(true);
  m_mouse.unplug();
  EXPECT_FALSE(m_requester.isDevOn());

  m_mouse.setIsSilent(false);
  m_mouse.setTransferError(0);
  m_mouse.plug(6);
  EXPECT_TRUE(m_requester.isDevOn());
  EXPECT_TRUE(command({0xC4, 0x00}));
}

INSTANTIATE_TEST_SUITE_P(HidTransfer, LostMouse, testing::Values(ENODEV, EPROTO, ETIMEDOUT),
                         [](const auto& error) { return "Errno" + std::to_string(error.param); });

TEST_F(HidTransfer, LosesTheMouseInTheMiddleOfASeries) {
  m_mouse.mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = 2});
  EXPECT_TRUE(command({0xC4, 0x00}));
  EXPECT_TRUE(command({0xC4, 0x00}));
  EXPECT_FALSE(command({0xC4, 0x00}));
  m_mouse.unplug();
  EXPECT_FALSE(m_requester.isDevOn());
  m_mouse.plug(7);
  EXPECT_TRUE(command({0xC4, 0x00}));
}

}  // namespace
