#include <gmock/gmock.h>

#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = PlayedEvent::Kind;
using Repeat = MacroPlayback::Repeat;
using std::chrono::milliseconds;

namespace {

constexpr std::size_t eventBytes = 52;

Bytes macroReport(const Bytes& codes, std::uint8_t type = 5, std::uint8_t count = 255) {
  Bytes report(2053);
  report[0] = 4;
  report[4] = type;
  report[5] = count;
  report[6] = 1;
  report[7] = static_cast<std::uint8_t>(codes.size() & 0xFFU);
  report[8] = static_cast<std::uint8_t>(codes.size() >> 8U);
  std::copy(codes.begin(), codes.end(), report.begin() + eventBytes);
  return report;
}

PlayedEvent down(int usage, int time) {
  return {Kind::Key, static_cast<std::uint8_t>(usage), true, milliseconds(time)};
}

PlayedEvent up(int usage, int time) {
  return {Kind::Key, static_cast<std::uint8_t>(usage), false, milliseconds(time)};
}

}  // namespace

TEST(MacroPlayback, OfAWrittenSlotIsWhatWasWritten) {
  VirtualMouse mouse;
  announceMacro(mouse, 36);
  Bytes report = macroReport({0x04, 1, 120, 0, 0x84, 1, 0x2C, 1, 0x1D, 0x9D});
  report[2] = 36;
  ASSERT_EQ(write(mouse, sealed(report)), TransferStatus::Done);
  const MacroPlayback playback = mouse.playMacro(36);
  EXPECT_THAT(playback.events,
              ElementsAre(down(0x04, 0), up(0x04, 120), down(0x1D, 420), up(0x1D, 420)));
  EXPECT_EQ(playback.duration, milliseconds(420));
  EXPECT_THAT(mouse.playMacro(35).events, IsEmpty());
  EXPECT_THROW(mouse.playMacro(190), std::out_of_range);
}

TEST(MacroPlayback, ModifiersHaveCodesOfTheirOwn) {
  const MacroPlayback playback =
      playbackOf(macroReport({112, 113, 114, 115, 116, 117, 118, 119, 113 + 128, 119 + 128}));
  EXPECT_THAT(playback.events,
              ElementsAre(down(0xE0, 0), down(0xE1, 0), down(0xE2, 0), down(0xE3, 0), down(0xE5, 0),
                          down(0xE6, 0), down(0xE4, 0), up(0xE1, 0), up(0xE4, 0)));
}

TEST(MacroPlayback, ButtonsOfTheMouseAreCountedFromOne) {
  const MacroPlayback playback = playbackOf(macroReport({120, 120 + 128, 121, 122, 126 + 128}));
  EXPECT_THAT(playback.events,
              ElementsAre(PlayedEvent{Kind::MouseButton, 1, true, milliseconds(0)},
                          PlayedEvent{Kind::MouseButton, 1, false, milliseconds(0)},
                          PlayedEvent{Kind::MouseButton, 2, true, milliseconds(0)},
                          PlayedEvent{Kind::MouseButton, 3, true, milliseconds(0)},
                          PlayedEvent{Kind::MouseButton, 7, false, milliseconds(0)}));
}

TEST(MacroPlayback, ACodeWithoutAKeyIsOnlyItsPause) {
  const MacroPlayback playback = playbackOf(macroReport({0, 1, 10, 0, 128, 1, 5, 0, 0x04}));
  EXPECT_THAT(playback.events, ElementsAre(down(0x04, 15)));
}

TEST(MacroPlayback, TheLastPauseBelongsToTheRun) {
  const MacroPlayback playback = playbackOf(macroReport({0x04, 0x84, 1, 0xFF, 0xFF}));
  EXPECT_THAT(playback.events, SizeIs(2));
  EXPECT_EQ(playback.duration, milliseconds(65535));
}

TEST(MacroPlayback, APauseThatIsCutOffIsNone) {
  for (const Bytes& codes : {Bytes{0x04, 1}, Bytes{0x04, 1, 7}}) {
    const MacroPlayback playback = playbackOf(macroReport(codes));
    EXPECT_THAT(playback.events, ElementsAre(down(0x04, 0)));
    EXPECT_EQ(playback.duration, milliseconds(0));
  }
}

TEST(MacroPlayback, HasRoomForTwoThousandBytes) {
  Bytes report = macroReport(Bytes(2000, 0x04));
  report[7] = 0xFF;
  report[8] = 0xFF;
  report[2052] = 0x05;
  EXPECT_THAT(playbackOf(report).events, SizeIs(2000));
}

TEST(MacroPlayback, RepeatsAsItsTypeSays) {
  EXPECT_EQ(playbackOf(macroReport({}, 5, 255)).repeat, Repeat::Once);
  EXPECT_EQ(playbackOf(macroReport({}, 7, 255)).repeat, Repeat::WhilePressed);
  EXPECT_EQ(playbackOf(macroReport({}, 4, 255)).repeat, Repeat::UntilStopped);
  for (const auto& [count, runs] : {std::pair(0, 1), std::pair(4, 5), std::pair(254, 255)}) {
    const auto playback = playbackOf(macroReport({}, 4, static_cast<std::uint8_t>(count)));
    EXPECT_EQ(playback.repeat, Repeat::Counted);
    EXPECT_EQ(playback.runs, runs);
  }
}

TEST(MacroPlayback, OfGarbageStaysInItsReport) {
  VirtualMouse mouse;
  mouse.setScenario({.kind = MouseScenario::Kind::HoldsGarbage});
  int played = 0;
  for (int macroSlot = 0; macroSlot < VirtualMouse::macroSlotCount; ++macroSlot) {
    played += mouse.playMacro(macroSlot).events.empty() ? 0 : 1;
  }
  EXPECT_GT(played, 0);
}
