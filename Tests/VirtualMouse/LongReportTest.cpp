#include <gtest/gtest.h>

#include "Tests/VirtualMouse/MouseHost.h"

using namespace MouseHost;

TEST(LongReport, NameIsReadAsWritten) {
  VirtualMouse mouse;
  const std::string maximumName(65, 'x');
  for (int slot = 0; slot < 10; ++slot) {
    const Bytes report = nameReport(slot, slot == 9 ? maximumName : "Name " + std::to_string(slot));
    EXPECT_EQ(write(mouse, report), TransferStatus::Done);
    EXPECT_EQ(readAfterReady(mouse, 6, slot), report);
  }
  EXPECT_EQ(mouse.slotName(3), "Name 3");
  EXPECT_EQ(mouse.slotName(9), maximumName);
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(LongReport, ImageIsReadAsWritten) {
  VirtualMouse mouse;
  for (int slot = 0; slot < 10; ++slot) {
    const Bytes report = numberedReport(5, slot, slot);
    EXPECT_EQ(write(mouse, report), TransferStatus::Done);
    EXPECT_EQ(readAfterReady(mouse, 5, slot), report);
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(LongReport, MacroIsReadAsWrittenButForItsMark) {
  VirtualMouse mouse;
  for (int macroSlot = 0; macroSlot < 190; ++macroSlot) {
    announceMacro(mouse, macroSlot);
    EXPECT_EQ(write(mouse, numberedReport(4, macroSlot, macroSlot)), TransferStatus::Done);
  }
  for (int macroSlot = 0; macroSlot < 190; ++macroSlot) {
    Bytes expected = numberedReport(4, macroSlot, macroSlot);
    expected[0] = 0xB0;
    EXPECT_EQ(readAfterReady(mouse, 4, macroSlot), expected);
    EXPECT_EQ(copyOf(mouse.macroReport(macroSlot)), expected);
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(LongReport, ChecksumFollowsSingleBytes) {
  VirtualMouse mouse;
  writeMemory(mouse, 294, 0x99);
  const Bytes report = readAfterReady(mouse, 5, 0);
  EXPECT_EQ(report[42], 0x99);
  EXPECT_EQ(report, sealed(report));
}

TEST(LongReport, WithAWrongChecksumIsAcknowledgedAndDropped) {
  for (const int id : {4, 5, 6}) {
    VirtualMouse mouse;
    announceMacro(mouse, 1);
    Bytes report = id == 6 ? nameReport(1, "new") : numberedReport(id, 1);
    ++report[3];
    EXPECT_EQ(write(mouse, report), TransferStatus::Done);
    ASSERT_EQ(mouse.faults().size(), 1U);
    EXPECT_NE(mouse.faults()[0].find("checksum"), std::string::npos) << mouse.faults()[0];
    EXPECT_EQ(mouse.slotName(1), "Profile#2");
    EXPECT_EQ(mouse.imageReport(1)[4], 1);
    EXPECT_EQ(mouse.macroReport(1)[0], 4);
    EXPECT_FALSE(mouse.hasUnrefreshedWrites());
  }
}

TEST(LongReport, ChecksumDoesNotCoverTheLastByte) {
  VirtualMouse mouse;
  for (const int id : {4, 5, 6}) {
    announceMacro(mouse, 2);
    Bytes report = id == 6 ? nameReport(2, "new") : numberedReport(id, 2);
    report.back() ^= 0x55;
    write(mouse, report);
    EXPECT_EQ(readAfterReady(mouse, id, 2).back(), report.back());
  }
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(LongReport, ThatNamesNoSlotIsDropped) {
  VirtualMouse mouse;
  write(mouse, nameReport(10, "x"));
  write(mouse, numberedReport(5, 255));
  write(mouse, numberedReport(4, 190));
  EXPECT_EQ(mouse.faults(), (std::vector<std::string>{
                                "report 6 for slot 10 dropped: there is no such slot",
                                "report 5 for slot 255 dropped: there is no such slot",
                                "report 4 for macro slot 190 dropped: there is no such slot"}));
}

TEST(LongReport, WithAnotherIdThanTheTransferIsDropped) {
  VirtualMouse mouse;
  Bytes report = numberedReport(5, 0);
  report[0] = 6;
  EXPECT_EQ(set(mouse, 0x0305, 1, report).status, TransferStatus::Done);
  EXPECT_EQ(mouse.faults(),
            std::vector<std::string>{"report 5 for slot 0 dropped: its first byte is 6"});
  EXPECT_EQ(mouse.imageReport(0)[4], 1);
}

TEST(LongReport, WithANameLongerThanItsFieldIsDropped) {
  VirtualMouse mouse;
  Bytes report = nameReport(0, "x");
  report[4] = 66;
  write(mouse, sealed(report));
  EXPECT_EQ(mouse.faults().size(), 1U);
  EXPECT_EQ(mouse.slotName(0), "Profile#1");
}

TEST(LongReport, MacroMustBeAnnouncedForItsOwnSlot) {
  struct Case {
    const char* what;
    Bytes announcement;
  };
  const std::vector<Case> wrong{{"nothing", {0xC4, 0x00}},
                                {"another slot", {0xC4, 0x0B, 6, 1}},
                                {"a read", {0xC4, 0x0B, 5, 0}},
                                {"a profile", {0xC4, 0x0C, 5, 0}},
                                {"no slot", {0xC4, 0x0B, 190, 1}}};
  for (const Case& each : wrong) {
    VirtualMouse mouse;
    command(mouse, each.announcement);
    mouse.clearFaults();
    EXPECT_EQ(write(mouse, numberedReport(4, 5)), TransferStatus::Done) << each.what;
    EXPECT_EQ(mouse.faults(),
              std::vector<std::string>{"report 4 for macro slot 5 dropped: it was not announced"})
        << each.what;
    EXPECT_EQ(mouse.macroReport(5)[0], 4) << each.what;
  }
}

TEST(LongReport, OneAnnouncementIsForOneMacro) {
  VirtualMouse mouse;
  announceMacro(mouse, 5);
  write(mouse, numberedReport(4, 5, 1));
  write(mouse, numberedReport(4, 5, 2));
  EXPECT_EQ(mouse.faults().size(), 1U);
  EXPECT_EQ(mouse.macroReport(5)[52], numberedReport(4, 5, 1)[52]);
}

TEST(LongReport, NameAndImageMayComeBetweenAnnouncementAndMacro) {
  VirtualMouse mouse;
  announceMacro(mouse, 5);
  write(mouse, nameReport(0, "between"));
  write(mouse, numberedReport(5, 0));
  write(mouse, numberedReport(4, 5));
  EXPECT_TRUE(mouse.faults().empty());
  EXPECT_EQ(mouse.macroReport(5)[0], 0xB0);
}

TEST(LongReport, ReadStallsWithoutItsReadyCommand) {
  struct Case {
    int id;
    Bytes ready;
  };
  const std::vector<Case> cases{{4, {0xC4, 0x00}},       {5, {0xC4, 0x00}},
                                {6, {0xC4, 0x00}},       {5, {0xC4, 0x0B, 1, 0}},
                                {6, {0xC4, 0x0B, 1, 0}}, {4, {0xC4, 0x0C, 1, 0}},
                                {4, {0xC4, 0x0B, 1, 1}}, {5, {0xC4, 0x0C, 10, 0}}};
  for (const Case& each : cases) {
    VirtualMouse mouse;
    command(mouse, each.ready);
    mouse.clearFaults();
    EXPECT_TRUE(read(mouse, each.id).empty());
    EXPECT_EQ(mouse.faults(), std::vector<std::string>{"report " + std::to_string(each.id) +
                                                       " read without its ready command"});
  }
}

TEST(LongReport, LastReadyCommandChoosesTheSlot) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x0B, 3, 0});
  command(mouse, {0xC4, 0x0C, 3, 0});
  command(mouse, {0xC4, 0x0C, 8, 0});
  EXPECT_EQ(read(mouse, 6)[2], 8);
  EXPECT_EQ(read(mouse, 5)[2], 8);
  EXPECT_TRUE(mouse.faults().empty());
}

TEST(LongReport, ResetForgetsTheReadyCommand) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x0C, 3, 0});
  command(mouse, {0xC4, 0x01});
  EXPECT_TRUE(read(mouse, 6).empty());
}

TEST(LongReport, AwaitsARefreshAndCanBeReadBeforeIt) {
  for (const int id : {4, 5, 6}) {
    VirtualMouse mouse;
    EXPECT_FALSE(mouse.hasUnrefreshedWrites());
    announceMacro(mouse, 0);
    write(mouse, id == 6 ? nameReport(0, "new") : numberedReport(id, 0));
    EXPECT_TRUE(mouse.hasUnrefreshedWrites());
    EXPECT_EQ(readAfterReady(mouse, id, 0).size(), sizeOf(id));
    EXPECT_TRUE(mouse.hasUnrefreshedWrites());
    command(mouse, {0xC4, 0x00});
    EXPECT_FALSE(mouse.hasUnrefreshedWrites());
  }
}

TEST(LongReport, LiveCommandsAwaitNoRefresh) {
  VirtualMouse mouse;
  command(mouse, {0xC4, 0x0F, 0, 0, 8});
  command(mouse, {0xC4, 0x0E, 0, 1, 2});
  writeMemory(mouse, 294, 3);
  EXPECT_FALSE(mouse.hasUnrefreshedWrites());
}
