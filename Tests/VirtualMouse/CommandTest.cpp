#include <gtest/gtest.h>

#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;

namespace {

// What a command changed in an image: byte number and new value.
using Changes = std::vector<std::pair<std::size_t, int>>;

Changes changesOf(const Bytes& before, const Bytes& after) {
  Changes changes;
  for (std::size_t index = 4; index < before.size(); ++index) {
    if (before[index] != after[index]) {
      changes.emplace_back(index, after[index]);
    }
  }
  return changes;
}

std::vector<Bytes> allImages(const VirtualMouse& mouse) {
  std::vector<Bytes> images(10);
  for (int slot = 0; slot < 10; ++slot) {
    images[static_cast<std::size_t>(slot)] = copyOf(mouse.imageReport(slot));
  }
  return images;
}

struct LiveCase {
  const char* name;
  Bytes command;
  Changes changes;
  bool isFault;
};

void PrintTo(const LiveCase& live, std::ostream* stream) {
  *stream << live.name;
}

class LiveCommand : public testing::TestWithParam<LiveCase> {};

}  // namespace

TEST_P(LiveCommand, ChangesTheImageOfTheActiveSlotOnly) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x07, 4});
  const std::vector<Bytes> before = allImages(mouse);
  EXPECT_EQ(command(mouse, GetParam().command), TransferStatus::Done);
  for (int slot = 0; slot < 10; ++slot) {
    const Bytes after = copyOf(mouse.imageReport(slot));
    EXPECT_EQ(changesOf(before[static_cast<std::size_t>(slot)], after),
              slot == 4 ? GetParam().changes : Changes{});
    EXPECT_EQ(sealed(after), after);
  }
  EXPECT_EQ(mouse.faults().size(), GetParam().isFault ? 1U : 0U);
}

INSTANTIATE_TEST_SUITE_P(
    Commands, LiveCommand,
    testing::Values(
        LiveCase{"Rate", {0xC4, 0x0F, 0, 0, 8}, {{4, 8}}, false},
        LiveCase{"Lift", {0xC4, 0x0F, 0, 1, 0x23}, {{5, 0x23}}, false},
        LiveCase{"Levels", {0xC4, 0x0F, 0, 2, 0x31}, {{6, 0x31}}, false},
        LiveCase{"FirstY", {0xC4, 0x0F, 0, 3, 99}, {{7, 99}}, false},
        LiveCase{"LastX", {0xC4, 0x0F, 0, 24, 99}, {{28, 99}}, false},
        LiveCase{"ZoneMode", {0xC4, 0x0F, 0, 50, 3}, {{54, 3}}, false},
        LiveCase{"ZoneBlue", {0xC4, 0x0F, 0, 53, 7}, {{57, 7}}, false},
        LiveCase{"LastSetting", {0xC4, 0x0F, 0, 149, 9}, {{153, 9}}, false},
        LiveCase{"SettingPastTheImage", {0xC4, 0x0F, 0, 150, 9}, {}, true},
        LiveCase{"ActiveLevel", {0xC4, 0x0F, 1, 4, 0}, {{6, 0x54}}, false},
        LiveCase{"ActiveLevelFillsItsNibble", {0xC4, 0x0F, 1, 15, 0}, {{6, 0x5F}}, false},
        LiveCase{"ActiveLevelPastItsNibble", {0xC4, 0x0F, 1, 16, 0}, {}, true},
        LiveCase{"SecondLift", {0xC5, 0x00, 46, 3, 0}, {{5, 0x23}}, false},
        LiveCase{"SecondLiftKeepsTheOtherBits", {0xC5, 0x00, 46, 0xFF, 0}, {{5, 0x3F}}, false},
        LiveCase{"FirstButton",
                 {0xC4, 0x0E, 0, 6, 5, 255, 1, 2},
                 {{58, 6}, {59, 5}, {60, 255}, {61, 1}, {62, 2}},
                 false},
        LiveCase{"LastButton",
                 {0xC4, 0x0E, 18, 2, 8, 0x4F, 3, 4},
                 {{148, 2}, {149, 8}, {150, 0x4F}, {151, 3}, {152, 4}},
                 false},
        LiveCase{"ButtonPastTheLast", {0xC4, 0x0E, 19, 2, 8, 79, 3, 4}, {}, true},
        LiveCase{"Refresh", {0xC4, 0x00}, {}, false}, LiveCase{"Reset", {0xC4, 0x01}, {}, false},
        LiveCase{"LedCommit", {0xC4, 0x03, 3, 3}, {}, false}),
    [](const auto& live) { return live.param.name; });

TEST(VirtualMouse, SwitchesTheActiveSlot) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x07, 9});
  EXPECT_EQ(mouse.activeSlot(), 9);
  EXPECT_EQ(readMemory(mouse, 25), 0xA9);
  EXPECT_EQ(command(mouse, {0xC4, 0x07, 10}), TransferStatus::Done);
  EXPECT_EQ(mouse.activeSlot(), 9);
  ASSERT_EQ(mouse.faults().size(), 1U);
  EXPECT_EQ(mouse.faults()[0], "switch to slot 10, which does not exist");
}

TEST(VirtualMouse, WritesAndReadsSingleBytes) {
  VirtualMouse mouse;
  // The write has the value between the two halves of the address; the read has the halves
  // together.
  command(mouse, {0xDE, 0x34, 0x56, 0x02});
  command(mouse, {0xDF, 0x34, 0x02});
  EXPECT_EQ(answer(mouse), (Bytes{0xDF, 0x34, 0x02, 0, 0x56, 0, 0, 0}));
  EXPECT_EQ(readMemory(mouse, 0x0134), mouse.imageReport(0)[0x38]);
}

TEST(VirtualMouse, AnswersTheActiveSlotByteAsHeld) {
  VirtualMouse mouse;
  writeMemory(mouse, 25, 0xA3);
  EXPECT_EQ(mouse.activeSlot(), 3);
  EXPECT_EQ(readMemory(mouse, 25), 0xA3);
  writeMemory(mouse, 25, 0x5E);
  EXPECT_EQ(mouse.activeSlot(), 14);
  EXPECT_EQ(readMemory(mouse, 25), 0x5E);
}

TEST(VirtualMouse, ShowsMemoryAndImageAsOne) {
  VirtualMouse mouse;
  for (int slot = 0; slot < 10; ++slot) {
    writeMemory(mouse, 294 + slot * 256, static_cast<std::uint8_t>(0x40 + slot));
    EXPECT_EQ(mouse.imageReport(slot)[42], 0x40 + slot);
    const Bytes report = numberedReport(5, slot, slot);
    write(mouse, report);
    for (const int imageByte : {4, 42, 153}) {
      EXPECT_EQ(readMemory(mouse, (slot + 1) * 256 + imageByte - 4),
                report[static_cast<std::size_t>(imageByte)]);
    }
  }
}

TEST(VirtualMouse, KeepsMemoryBesideTheImages) {
  VirtualMouse mouse;
  for (const int address : {0, 255, 256 + 150, 11 * 256 - 1}) {
    writeMemory(mouse, address, 0x5A);
    EXPECT_EQ(readMemory(mouse, address), 0x5A);
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(VirtualMouse, RecordsAddressesThatItDoesNotHave) {
  VirtualMouse mouse;
  writeMemory(mouse, 11 * 256, 1);
  EXPECT_EQ(readMemory(mouse, 0xFFFF), 0);
  EXPECT_EQ(mouse.faults(),
            (std::vector<std::string>{"write to address 0b00, which does not exist",
                                      "read of address ffff, which does not exist"}));
}

TEST(VirtualMouse, DropsLiveCommandsWhileAnImpossibleSlotIsActive) {
  VirtualMouse mouse;
  writeMemory(mouse, 25, 0xAF);
  const std::vector<Bytes> before = allImages(mouse);
  const std::vector<Bytes> commands{
      {0xC4, 0x0E, 0, 1, 2}, {0xC4, 0x0F, 0, 0, 8}, {0xC4, 0x0F, 1, 1}, {0xC5, 0x00, 46, 1}};
  for (const Bytes& bytes : commands) {
    EXPECT_EQ(command(mouse, bytes), TransferStatus::Done);
  }
  EXPECT_EQ(allImages(mouse), before);
  ASSERT_EQ(mouse.faults().size(), 4U);
  EXPECT_EQ(mouse.faults()[3],
            "command c5002e0100000000 while slot 15 is active, which does not exist");
}

TEST(VirtualMouse, AnswersTheLastCommand) {
  VirtualMouse mouse;
  EXPECT_EQ(answer(mouse), Bytes(8));
  command(mouse, {0xC4, 0x07, 2});
  EXPECT_EQ(answer(mouse), (Bytes{0xC4, 0x07, 2, 0, 0, 0, 0, 0}));
  readMemory(mouse, 25);
  command(mouse, {0xC4, 0x00});
  EXPECT_EQ(answer(mouse), (Bytes{0xC4, 0, 0, 0, 0, 0, 0, 0}));
}

TEST(VirtualMouse, StallsCommandsThatItDoesNotKnow) {
  const std::vector<Bytes> unknown{
      {0x00},          {0xFF},           {0xC4, 0x02},         {0xC4, 0x03, 3, 2},
      {0xC4, 0x03, 2}, {0xC4, 0xFF},     {0xC4, 0x0B, 0, 2},   {0xC4, 0x0C, 0, 1},
      {0xC5, 0x01},    {0xC5, 0x00, 45}, {0xC4, 0x0F, 2, 0, 1}};
  for (const Bytes& bytes : unknown) {
    VirtualMouse mouse;
    const Bytes before = copyOf(mouse.imageReport(0));
    EXPECT_EQ(command(mouse, bytes), TransferStatus::Stalled);
    ASSERT_EQ(mouse.faults().size(), 1U);
    EXPECT_TRUE(mouse.faults()[0].starts_with("unknown command ")) << mouse.faults()[0];
    EXPECT_EQ(copyOf(mouse.imageReport(0)), before);
  }
}

TEST(VirtualMouse, StallsTransfersThatItDoesNotKnow) {
  const std::vector<SetupPacket> unknown{
      {0x80, 0x06, 0x0100, 0, 18},   // a standard request
      {0x21, 0x0A, 0x0300, 0, 8},    // another class request
      {0xA1, 0x09, 0x0300, 0, 8},    // directions mixed up
      {0x21, 0x01, 0x0300, 0, 8},    // directions mixed up
      {0x21, 0x09, 0x0200, 0, 8},    // not a feature report
      {0x21, 0x09, 0x0300, 1, 8},    // short command on the wrong interface
      {0xA1, 0x01, 0x0305, 0, 154},  // long report on the wrong interface
      {0xA1, 0x01, 0x0303, 1, 70},   // no such report
      {0xA1, 0x01, 0x0307, 1, 70},   // no such report
      {0x21, 0x09, 0x0300, 2, 8},    // no such interface
      {0xA1, 0x01, 0x0205, 1, 154},  // not a feature report
  };
  for (const SetupPacket& setup : unknown) {
    VirtualMouse mouse;
    Bytes data(setup.length, 0x33);
    const TransferResult result = mouse.controlTransfer(setup, data);
    EXPECT_EQ(result.status, TransferStatus::Stalled);
    EXPECT_EQ(result.bytes, 0U);
    EXPECT_EQ(data, Bytes(setup.length, 0x33));
    ASSERT_EQ(mouse.faults().size(), 1U);
    EXPECT_TRUE(mouse.faults()[0].starts_with("unknown transfer ")) << mouse.faults()[0];
  }
}

TEST(VirtualMouse, StallsTransfersOfTheWrongSize) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x0C, 0});
  std::size_t faults = 0;
  const auto expectStall = [&](TransferStatus status) {
    EXPECT_EQ(status, TransferStatus::Stalled);
    EXPECT_EQ(mouse.faults().size(), ++faults);
  };
  for (const std::size_t size : {0U, 7U, 9U}) {
    expectStall(set(mouse, 0x0300, 0, Bytes(size, 0xC4)).status);
  }
  for (const std::size_t size : {0U, 1U, 153U, 155U}) {
    expectStall(set(mouse, 0x0305, 1, Bytes(size, 5)).status);
  }
  for (const std::size_t size : {0U, 3U, 69U}) {
    Bytes data(size, 0x44);
    expectStall(get(mouse, 0x0306, 1, data).status);
    EXPECT_EQ(data, Bytes(size, 0x44));
  }
  Bytes seven(7);
  expectStall(get(mouse, 0x0300, 0, seven).status);
  EXPECT_EQ(mouse.faults()[0], "transfer 2109 0300 0000 of 0 bytes must have 8");
}

TEST(VirtualMouse, AnswersNoMoreThanItHas) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x0C, 2});
  Bytes data(100, 0x44);
  const TransferResult result = get(mouse, 0x0306, 1, data);
  EXPECT_EQ(result.status, TransferStatus::Done);
  EXPECT_EQ(result.bytes, 70U);
  EXPECT_EQ(Bytes(data.begin(), data.begin() + 70), copyOf(mouse.nameReport(2)));
  EXPECT_EQ(Bytes(data.begin() + 70, data.end()), Bytes(30, 0x44));
}

TEST(VirtualMouse, ForgetsTheOldestTransfersOfALongLife) {
  VirtualMouse mouse;
  for (std::size_t count = 0; count < VirtualMouse::transcriptLimit; ++count) {
    command(mouse, {0xC4, 0x07, 2});
  }
  command(mouse, {0xC4, 0x07, 3});
  EXPECT_EQ(mouse.transcript().size(), VirtualMouse::transcriptLimit);
  EXPECT_EQ(mouse.transcript().back().data[2], 3);
  mouse.setTranscriptLimit(2);
  command(mouse, {0xC4, 0x07, 4});
  ASSERT_EQ(mouse.transcript().size(), 2U);
  EXPECT_EQ(mouse.transcript()[0].data[2], 3);
  EXPECT_EQ(mouse.transcript()[1].data[2], 4);
}

TEST(VirtualMouse, KeepsATranscript) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x07, 2});
  answer(mouse);
  command(mouse, {0x99});
  Bytes none(3, 1);
  get(mouse, 0x0300, 0, none);
  const auto& records = mouse.transcript();
  ASSERT_EQ(records.size(), 4U);
  EXPECT_EQ(records[0].setup.requestType, 0x21);
  EXPECT_EQ(records[0].setup.request, 0x09);
  EXPECT_EQ(records[0].setup.value, 0x0300);
  EXPECT_EQ(records[0].setup.index, 0);
  EXPECT_EQ(records[0].setup.length, 8);
  EXPECT_EQ(records[0].data, (Bytes{0xC4, 0x07, 2, 0, 0, 0, 0, 0}));
  EXPECT_EQ(records[0].status, TransferStatus::Done);
  EXPECT_EQ(records[1].setup.requestType, 0xA1);
  EXPECT_EQ(records[1].data, (Bytes{0xC4, 0x07, 2, 0, 0, 0, 0, 0}));
  EXPECT_EQ(records[2].status, TransferStatus::Stalled);
  EXPECT_EQ(records[2].data[0], 0x99);
  EXPECT_EQ(records[3].status, TransferStatus::Stalled);
  EXPECT_TRUE(records[3].data.empty());

  mouse.clearTranscript();
  EXPECT_TRUE(mouse.transcript().empty());
  EXPECT_FALSE(mouse.faults().empty());
  mouse.clearFaults();
  EXPECT_TRUE(mouse.faults().empty());
}
