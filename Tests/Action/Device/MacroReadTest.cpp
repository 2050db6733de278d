#include <algorithm>

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXLogger.h"
#include "Tests/Support/ActionTest.h"

// Reading macros from the mouse into the catalogue.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class MacroRead : public ActionTest {
 protected:
  MacroRead() { NerinAction::startListenDev(); }

  // A macro report with that name and stream.
  static Bytes report(const std::string& name, const Bytes& stream, std::uint8_t type = 5,
                      std::uint8_t count = 255) {
    Bytes bytes(2053);
    bytes[4] = type;
    bytes[5] = count;
    bytes[6] = 1;
    bytes[7] = static_cast<std::uint8_t>(stream.size());
    bytes[8] = static_cast<std::uint8_t>(stream.size() >> 8U);
    bytes[9] = static_cast<std::uint8_t>(2 * name.size());
    for (std::size_t at = 0; at < name.size(); ++at) {
      bytes[10 + 2 * at] = static_cast<std::uint8_t>(name[at]);
    }
    std::copy(stream.begin(), stream.end(), bytes.begin() + 52);
    return bytes;
  }

  // Puts the report into button 3 of slot 0 and reads it.
  void readBack(const Bytes& bytes) {
    putMacro(3, bytes);
    clearTrace();
    EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  }

  Events eventsAfterReading(const Bytes& stream) {
    readBack(report("m", stream));
    const auto macro = NerinAction::getMacroByName("m");
    return macro ? eventsOf(*macro) : Events{};
  }

  static const _BTN_INFO& readButton() { return editState->currFWProfile().btnInfo[3]; }
};

TEST_F(MacroRead, IsAnnouncedReadAndFollowedByNoPause) {
  EXPECT_TRUE(NerinAction::getFWMacroData(2, 15).isDone());
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c40b380000000000", "SLEEP 30",
                                   "GET 0304 1 04" + std::string(2 * 2052, '0')));
}

TEST_F(MacroRead, AnEmptyMacroSlotChangesNothing) {
  editState->currFWProfile().btnInfo[3] = macroButton(9, 8, 7);
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  EXPECT_EQ(readButton().MacroID, 9U);
  EXPECT_EQ(readButton().KeyBit[0], 8U);
  EXPECT_EQ(readButton().KeyBit[1], 7U);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, IsEmpty());
  EXPECT_EQ(NerinAction::macroStore->macroNode, nullptr);
}

TEST_F(MacroRead, CreatesTheMacroUnderItsName) {
  readBack(report("Combo", {0x2C, 0xAC}, 4, 6));
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(1));
  const MacroInfo& macro = *NerinAction::macroStore->macroListArrs.front();
  EXPECT_EQ(macro.nameStr(), "Combo");
  EXPECT_EQ(macro.macroId(), 1);
  EXPECT_FALSE(macro.isNoDisplay());
  EXPECT_EQ(eventsOf(macro), (Events{{49, 0, 0}, {49, 1, 0}}));
  EXPECT_EQ(readButton().MacroID, 1U);
  EXPECT_EQ(readButton().KeyBit[0], 2U);
  EXPECT_EQ(readButton().KeyBit[1], 7U);
  EXPECT_FALSE(editState->isHaveNewName());
}

TEST_F(MacroRead, ReplacesTheEventsOfTheMacroOfThatName) {
  const auto macro = addMacro(8, "Combo", {{1, 0, 0}, {1, 1, 0}});
  const auto* events = &macro->keyInfoArr();
  readBack(report("Combo", {0x2C}));
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(1));
  EXPECT_EQ(&macro->keyInfoArr(), events);
  EXPECT_EQ(eventsOf(*macro), (Events{{49, 0, 0}}));
  EXPECT_EQ(readButton().MacroID, 8U);
}

TEST_F(MacroRead, HitsTheFirstOfTwoMacrosOfOneName) {
  const auto first = addMacro(8, "Combo", {{1, 0, 0}});
  const auto second = addMacro(9, "Combo", {{2, 0, 0}});
  readBack(report("Combo", {0x2C}));
  EXPECT_EQ(readButton().MacroID, 8U);
  EXPECT_EQ(eventsOf(*first), (Events{{49, 0, 0}}));
  EXPECT_EQ(eventsOf(*second), (Events{{2, 0, 0}}));
}

TEST_F(MacroRead, RebuildsTheMenuEachTime) {
  int rebuilt = 0;
  NerinAction::macroStore->macroMenuRebuilt = [&](const auto&) { ++rebuilt; };
  readBack(report("a", {}));
  readBack(report("b", {}));
  EXPECT_EQ(rebuilt, 2);
  EXPECT_THAT(NerinAction::macroStore->macroNode->children(), SizeIs(2));
}

TEST_F(MacroRead, AMacroWithoutANameGetsAHiddenGeneratedOne) {
  putMacro(4 * 19 + 18, report("", {0x2C}));
  EXPECT_TRUE(NerinAction::getFWMacroData(4, 15).isDone());
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(1));
  // The name uses the button's index, not its position.
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->nameStr(), "dmr_fw_macro_tag_4_15");
  EXPECT_TRUE(NerinAction::macroStore->macroListArrs.front()->isNoDisplay());
  EXPECT_TRUE(editState->isHaveNewName());
  EXPECT_THAT(NerinAction::macroStore->macroNode->children(), IsEmpty());
}

TEST_F(MacroRead, ANameOfForeignBytesCountsAsNone) {
  readBack(report("\xE9\xE8", {0x2C}));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->nameStr(), "dmr_fw_macro_tag_0_3");
}

TEST_F(MacroRead, AfterAGeneratedNameNewMacrosAreHiddenToo) {
  const auto known = addMacro(1, "known");
  readBack(report("", {}));
  readBack(report("named", {}));
  readBack(report("known", {}));
  EXPECT_TRUE(NerinAction::getMacroByName("named")->isNoDisplay());
  EXPECT_FALSE(known->isNoDisplay());
}

TEST_F(MacroRead, AWrittenGeneratedNameReadsBackUnderAName) {
  addMacro(5, "dmr_fw_macro_tag_9_9", {{49, 0, 0}});
  editState->currFWProfile().btnInfo[3] = macroButton(5);
  ASSERT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  EXPECT_NE(NerinAction::getMacroByName("dmr_fw_macro_tag_0_3"), nullptr);
}

TEST_F(MacroRead, ButtonsFourteenAndFifteenKeepTheirMacro) {
  for (const int index : {14, 15}) {
    putMacro(index + 3, report("m" + std::to_string(index), {0x2C}));
    EXPECT_TRUE(NerinAction::getFWMacroData(0, index).isDone());
    EXPECT_EQ(editState->currFWProfile().btnInfo[index].MacroID,
              static_cast<std::uint32_t>(index - 13));
    EXPECT_EQ(editState->currFWProfile().btnInfo[index].KeyBit[0], 1U);
  }
}

TEST_F(MacroRead, AFullCatalogueDropsTheMacro) {
  for (int id = 1; id <= 100; ++id) {
    addMacro(id, "m" + std::to_string(id));
  }
  NerinAction::refreshMenuList();
  editState->currFWProfile().btnInfo[3].MacroID = 5;
  readBack(report("new", {0x2C}));
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(100));
  EXPECT_EQ(readButton().MacroID, 0U);
  readBack(report("m7", {0x2C}));
  EXPECT_EQ(readButton().MacroID, 7U);
}

TEST_F(MacroRead, NamesAreReadUpTo21Characters) {
  Bytes bytes = report(std::string(21, 'n'), {});
  bytes[9] = 200;
  bytes[52] = 'x';
  readBack(bytes);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->nameStr(), std::string(21, 'n'));
}

TEST_F(MacroRead, AnOddNameLengthIsHalvedDownwards) {
  Bytes bytes = report("abcd", {});
  bytes[9] = 7;
  readBack(bytes);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->nameStr(), "abc");
}

TEST_F(MacroRead, ANameOf22CharactersBecomesASecondMacro) {
  const std::string name(22, 'n');
  const auto macro = addMacro(1, name, {{49, 0, 0}});
  editState->currFWProfile().btnInfo[3] = macroButton(1);
  ASSERT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(2));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.back()->nameStr(), name.substr(0, 21));
  EXPECT_FALSE(NerinAction::macroStore->macroListArrs.back()->isNoDisplay());
  EXPECT_EQ(readButton().MacroID, 2U);
  EXPECT_EQ(macro->keyInfoArr().size(), 1U);
}

TEST_F(MacroRead, ADeletedOrRenamedMacroIsMadeAgain) {
  addMacro(1, "old", {{49, 0, 0}});
  editState->currFWProfile().btnInfo[3] = macroButton(1);
  ASSERT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  NerinAction::macroStore->macroListArrs.front()->setNameStr("new");
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  EXPECT_EQ(readButton().MacroID, 2U);
  NerinAction::macroStore->macroListArrs.clear();
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  EXPECT_NE(NerinAction::getMacroByName("old"), nullptr);
}

TEST_F(MacroRead, DelaysBelongToTheEventBefore) {
  EXPECT_EQ(eventsAfterReading({0x2C, 1, 0x2C, 0x01, 0xAC, 1, 0xFF, 0xFF}),
            (Events{{49, 0, 300}, {49, 1, 65535}}));
}

TEST_F(MacroRead, ADelayBeforeTheFirstEventIsPassedOver) {
  EXPECT_EQ(eventsAfterReading({1, 5, 6, 0x2C}), (Events{{49, 0, 0}}));
}

TEST_F(MacroRead, OfTwoDelaysTheSecondCounts) {
  EXPECT_EQ(eventsAfterReading({0x2C, 1, 5, 0, 1, 9, 0}), (Events{{49, 0, 9}}));
}

TEST_F(MacroRead, Code128IsAPress) {
  EXPECT_EQ(eventsAfterReading({128, 129, 0}), (Events{{0, 0, 0}, {0, 1, 0}, {0, 0, 0}}));
}

TEST_F(MacroRead, Codes120To126AreMouseButtonsWithoutAKey) {
  EXPECT_EQ(eventsAfterReading({119, 120, 126, 127, 128 + 119, 128 + 120, 128 + 126, 255}),
            (Events{{62, 0, 0},
                    {0, 3, 0},
                    {0, 3, 0},
                    {0, 0, 0},
                    {62, 1, 0},
                    {0, 4, 0},
                    {0, 4, 0},
                    {0, 1, 0}}));
}

TEST_F(MacroRead, WhatAMouseEventBecameIsWrittenAsAnUnknownKey) {
  addMacro(1, "m", {{121, 3, 0}, {121, 4, 0}});
  editState->currFWProfile().btnInfo[3] = macroButton(1);
  ASSERT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  ASSERT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  EXPECT_EQ(mouse().macroReport(3)[52], 0);
  EXPECT_EQ(mouse().macroReport(3)[53], 128);
}

TEST_F(MacroRead, AtMost2000BytesAreRead) {
  Bytes bytes = report("m", Bytes(2001, 0x2C));
  bytes[7] = 0xFF;
  bytes[8] = 0xFF;
  readBack(bytes);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs.front()->keyInfoArr(), SizeIs(2000));
}

TEST_F(MacroRead, ADelayRecordPastTheReportEndsTheStream) {
  Bytes stream(2000, 0x2C);
  stream.back() = 1;
  readBack(report("m", stream));
  EXPECT_THAT(NerinAction::macroStore->macroListArrs.front()->keyInfoArr(), SizeIs(1999));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->keyInfoArr().back()->delay(), 0);
}

TEST_F(MacroRead, ADelayRecordAtTheVeryEndOfTheReportCounts) {
  Bytes stream(2000, 0x2C);
  stream[1998] = 1;
  stream[1999] = 7;
  Bytes bytes = report("m", stream);
  bytes[2052] = 2;
  readBack(bytes);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->keyInfoArr().back()->delay(),
            7 + 2 * 256);
}

TEST_F(MacroRead, OnlyAsManyBytesAsAnnouncedAreRead) {
  Bytes bytes = report("m", {0x2C, 0xAC, 0x2C});
  bytes[7] = 2;
  readBack(bytes);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs.front()->keyInfoArr(), SizeIs(2));
}

TEST_F(MacroRead, RepeatModesReadByTheTable) {
  struct Case {
    std::uint8_t type, count;
    std::uint32_t mode, times;
  };
  for (const Case& row : std::initializer_list<Case>{
           {5, 255, 1, 255}, {7, 255, 3, 255}, {4, 0, 2, 1}, {4, 255, 4, 255}, {9, 3, 9, 4}}) {
    readBack(report("m", {}, row.type, row.count));
    EXPECT_EQ(readButton().KeyBit[0], row.mode);
    EXPECT_EQ(readButton().KeyBit[1], row.times);
  }
}

TEST_F(MacroRead, LogsTheNameAsItWasRead) {
  (*NerinAction::sysDeviceReq)->setIsPrintMsg(false);
  putMacro(3, report("Combo", {}));
  std::vector<std::string> lines;
  LXLogger::setObserver([&](LXLogger::Level, std::string_view line) { lines.emplace_back(line); });
  EXPECT_TRUE(NerinAction::getFWMacroData(0, 3).isDone());
  LXLogger::setObserver({});
  EXPECT_THAT(lines, ElementsAre("macroNameStr=Combo"));
}

TEST_F(MacroRead, LookingAtAMacroLeavesTheCatalogue) {
  putMacro(3, report("Combo", {0x2C, 1, 5, 0, 120}, 4, 6));
  const auto stream = NerinAction::readMacroStream(0, 3).value;
  ASSERT_TRUE(stream);
  EXPECT_EQ(stream->name, "Combo");
  EXPECT_EQ(stream->repeatType, 4);
  EXPECT_EQ(stream->repeatCount, 6);
  ASSERT_THAT(stream->events, SizeIs(2));
  EXPECT_EQ(stream->events[0].delay, 5);
  EXPECT_TRUE(stream->events[1].isMouseButton());
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, IsEmpty());
  EXPECT_FALSE(NerinAction::readMacroStream(0, 4).value);
}

}  // namespace
