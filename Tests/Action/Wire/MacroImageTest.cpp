#include <algorithm>
#include <map>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MenuInfo.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXLogger.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

// Writing macros to the mouse.

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class MacroWrite : public ActionTest {
 protected:
  MacroWrite() { NerinAction::startListenDev(); }

  static NerinAction::MacroReport reportOf(std::uint8_t macroSlot, const _BTN_INFO& info,
                                           const MacroInfo& macro) {
    return NerinAction::encodeMacroReport(macroSlot, NerinAction::streamOf(macro, info));
  }

  Bytes encoded(const std::string& name, const Events& events) {
    const auto macro = addMacro(1, name, events);
    const auto report = reportOf(0, macroButton(1), *macro);
    return {report.begin(), report.end()};
  }

  Bytes stream(const Events& events, std::size_t length) {
    return part(encoded("m", events), 52, length);
  }

  static Bytes part(const Bytes& report, std::size_t at, std::size_t length) {
    const auto begin = report.begin() + static_cast<std::ptrdiff_t>(at);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
  }

  static Events presses(std::size_t count, int delay = 0) {
    return Events(count, {49, MacroKeyInfo::KeyPress, delay});
  }

  // Adds a combination to the macro-insert menu.
  static void addCombination(int id, std::vector<int> keys) {
    keys.resize(4, 255);
    auto entry = std::make_shared<MenuInfo>();
    entry->setFunctionID(id);
    entry->setKeyBit1(keys[0]);
    entry->setKeyBit2(keys[1]);
    entry->setKeyBit3(keys[2]);
    entry->setKeyBit4(keys[3]);
    if (!NerinAction::functionMenus->macroInsertMenuNode) {
      NerinAction::functionMenus->macroInsertMenuNode = std::make_shared<LXTreeNode>();
    }
    NerinAction::functionMenus->macroInsertMenuNode->addChild(entry);
  }
};

TEST_F(MacroWrite, EveryFieldLiesWhereTheTableSays) {
  const auto macro = addMacro(1, "Combo", {{49, 0, 300}, {49, 1, 0}});
  const auto array = reportOf(133, macroButton(1, 2, 9), *macro);
  const Bytes report(array.begin(), array.end());
  const std::map<std::size_t, Bytes> fields{
      {0, {4}},
      {1, {0}},
      {2, {133}},
      {3, {checksumOf(report)}},
      {4, {4}},
      {5, {8}},
      {6, {1}},
      {7, {5}},
      {8, {0}},
      {9, {10}},
      {10, {'C', 0, 'o', 0, 'm', 0, 'b', 0, 'o'}},
      {52, {0x2C, 1, 0x2C, 1, 0x2C + 128}},
      {2052, {0}},
  };
  std::size_t covered = 0;
  for (const auto& table : protocolTable("reports")) {
    if (table.at("name") != "macro report") {
      continue;
    }
    for (const auto& field : table.at("fields")) {
      const auto at = field.at("offset").get<std::size_t>();
      const auto length = field.at("len").get<std::size_t>();
      Bytes expected = fields.at(at);
      expected.resize(length);
      EXPECT_EQ(part(report, at, length), expected) << field.at("meaning");
      covered += length;
    }
  }
  EXPECT_EQ(covered, 2053U);
}

TEST_F(MacroWrite, EveryButtonOfEverySlotHasItsMacroSlot) {
  const auto perSlot = protocolTable("device_positions").at("per_slot_macro_positions").get<int>();
  for (int slot = 0; slot < 10; ++slot) {
    for (int index = 0; index < 16; ++index) {
      const int position = index > 13 ? index + 3 : index;
      EXPECT_EQ(NerinAction::macroSlotOf(static_cast<std::uint8_t>(slot), index),
                slot * perSlot + position);
    }
  }
}

TEST_F(MacroWrite, ADelayIsARecordOfThreeBytesBehindItsEvent) {
  EXPECT_THAT(stream({{49, 0, 0}, {49, 1, 0}}, 3), ElementsAre(0x2C, 0xAC, 0));
  EXPECT_THAT(stream({{49, 0, 300}}, 5), ElementsAre(0x2C, 0x01, 0x2C, 0x01, 0));
}

TEST_F(MacroWrite, ANegativeDelayIsNone) {
  EXPECT_THAT(stream({{49, 0, -5}, {49, 1, 0}}, 3), ElementsAre(0x2C, 0xAC, 0));
}

TEST_F(MacroWrite, ADelayPastSixteenBitsIsTruncated) {
  EXPECT_THAT(stream({{49, 0, 65536}}, 5), ElementsAre(0x2C, 1, 0, 0, 0));
  EXPECT_THAT(stream({{49, 0, 65537 + 512}}, 5), ElementsAre(0x2C, 1, 1, 2, 0));
}

TEST_F(MacroWrite, MouseButtonsKeepTheirCodeAndReleasesAdd128) {
  const auto& table = protocolTable("macro_event_stream");
  for (const auto& [code, button] : table.at("mouse_codes").items()) {
    if (code.find('.') == std::string::npos) {
      const int number = std::stoi(code);
      EXPECT_THAT(stream({{number, 3, 0}, {number, 4, 0}}, 2), ElementsAre(number, number + 128));
    }
  }
  for (const auto& flag : table.at("release_keyFlags")) {
    EXPECT_GE(stream({{121, flag.get<int>(), 0}}, 1).front(), 128);
  }
  for (const auto& flag : table.at("press_keyFlags")) {
    EXPECT_LT(stream({{121, flag.get<int>(), 0}}, 1).front(), 128);
  }
}

TEST_F(MacroWrite, ModifiersTravelUnderTheirMacroCodes) {
  EXPECT_THAT(stream({{55, 0, 0}, {60, 0, 0}, {60, 1, 0}}, 3), ElementsAre(115, 117, 117 + 128));
}

TEST_F(MacroWrite, KeysThatTheMouseDoesNotKnowAreZeroAnd128) {
  EXPECT_THAT(stream({{24, 0, 0}, {24, 1, 0}, {54, 0, 0}, {54, 1, 0}}, 4),
              ElementsAre(0, 128, 0, 128));
}

TEST_F(MacroWrite, ACombinationIsPressedInOrderAndReleasedInReverse) {
  addCombination(0x21, {30, 31});
  const Events events{{0x21, MacroKeyInfo::Function, 500}, {49, 0, 0}};
  // ] and O, without a delay record even though the event has a delay.
  EXPECT_THAT(stream(events, 6), ElementsAre(0x30, 0x12, 0x92, 0xB0, 0x2C, 0));
}

TEST_F(MacroWrite, ACombinationIsAsLongAsItCounts) {
  addCombination(1, {255});
  addCombination(2, {0});
  addCombination(3, {0, 1});
  addCombination(4, {0, 1, 2});
  addCombination(5, {0, 1, 2, 3});
  for (int id = 1; id <= 5; ++id) {
    const auto macro = addMacro(id, "m", {{id, MacroKeyInfo::Function, 9}});
    const auto report = reportOf(0, macroButton(1), *macro);
    const Bytes bytes(report.begin(), report.end());
    const auto length = static_cast<std::size_t>(macro->getMacroCount());
    EXPECT_EQ(length, 2U * static_cast<std::size_t>(id - 1));
    EXPECT_EQ(bytes[7], length);
    EXPECT_THAT(part(bytes, 52, length), Each(testing::Ne(0)));
    EXPECT_THAT(part(bytes, 52 + length, 8), Each(0));
  }
}

TEST_F(MacroWrite, ACombinationThatIsMissingWritesNothing) {
  EXPECT_THAT(stream({{9, MacroKeyInfo::Function, 9}, {49, 0, 0}}, 2), ElementsAre(0x2C, 0));
}

TEST_F(MacroWrite, TheCountIsClampedInItsLowByteOnly) {
  const auto countOf = [&](std::size_t events) {
    const Bytes report = encoded("m", presses(events));
    return std::pair{report[7], report[8]};
  };
  EXPECT_EQ(countOf(1999), (std::pair<std::uint8_t, std::uint8_t>{0xCF, 0x07}));
  EXPECT_EQ(countOf(2000), (std::pair<std::uint8_t, std::uint8_t>{0xD0, 0x07}));
  EXPECT_EQ(countOf(2001), (std::pair<std::uint8_t, std::uint8_t>{0xD0, 0x07}));
  EXPECT_EQ(countOf(2048), (std::pair<std::uint8_t, std::uint8_t>{0xD0, 0x08}));
}

TEST_F(MacroWrite, WhatDoesNotFitIsLeftOut) {
  const Bytes report = encoded("m", presses(3000));
  EXPECT_THAT(part(report, 52, 2001), Each(0x2C));
  EXPECT_EQ(report[3], checksumOf(report));
}

TEST_F(MacroWrite, ADelayRecordThatDoesNotFitEndsTheStream) {
  Events events = presses(1998);
  events.push_back({0, 0, 300});  // its delay would end two bytes after the report
  events.push_back({1, 0, 0});
  EXPECT_THAT(part(encoded("m", events), 2048, 5), ElementsAre(0x2C, 0x2C, 0x04, 0, 0));
  events = presses(1997);
  events.push_back({0, 0, 300});
  EXPECT_THAT(part(encoded("m", events), 2048, 5), ElementsAre(0x2C, 0x04, 1, 0x2C, 1));
}

TEST_F(MacroWrite, AGeneratedNameIsNotWritten) {
  const Bytes report = encoded("dmr_fw_macro_tag_3_4", {{49, 0, 0}});
  EXPECT_EQ(report[9], 0);
  EXPECT_THAT(part(report, 10, 42), Each(0));
  EXPECT_EQ(report[52], 0x2C);
}

TEST_F(MacroWrite, ANameThatIsNotAsciiIsNotWritten) {
  const Bytes report = encoded("M\xC3\xA4kro", {{49, 0, 0}});
  EXPECT_EQ(report[9], 0);
  EXPECT_THAT(part(report, 10, 42), Each(0));
}

TEST_F(MacroWrite, ANameOfThirtyCharactersIsAnnouncedShortAndWrittenWhole) {
  const std::string name = "abcdefghijklmnopqrstuvwxyz0123";
  const Bytes report = encoded(name, {{49, 0, 300}});
  EXPECT_EQ(report[9], 42);
  for (std::size_t at = 0; at < 21; ++at) {
    EXPECT_EQ(report[10 + 2 * at], name[at]);
  }
  // The stream overwrites the first bytes of the name's tail.
  EXPECT_THAT(part(report, 52, 6), ElementsAre(0x2C, 1, 0x2C, 1, name[23], 0));
  EXPECT_EQ(report[68], name[29]);
  EXPECT_EQ(report[70], 0);
  EXPECT_EQ(report[3], checksumOf(report));
}

TEST_F(MacroWrite, ANameStopsAtTheEndOfTheReport) {
  const Bytes report = encoded(std::string(3000, 'n'), {{49, 0, 0}});
  EXPECT_EQ(report[9], 42);
  EXPECT_EQ(report[2052], 'n');
  EXPECT_EQ(report[2051], 0);
  EXPECT_EQ(report[52], 0x2C);
}

TEST_F(MacroWrite, AnUnknownRepeatModeHasTypeZero) {
  const auto macro = addMacro(1, "m");
  const auto report = reportOf(0, macroButton(1, 9, 3), *macro);
  EXPECT_EQ(report[4], 0);
  EXPECT_EQ(report[5], 255);
}

TEST_F(MacroWrite, TheRepeatCountOfTheMacroItselfIsNotSent) {
  const auto macro = addMacro(1, "m");
  const auto before = reportOf(0, macroButton(1), *macro);
  macro->setLoopTime(77);
  EXPECT_EQ(reportOf(0, macroButton(1), *macro), before);
}

TEST_F(MacroWrite, IsAnnouncedThenSentAndThenPauses) {
  addMacro(5, "Five", {{49, 0, 0}});
  editState->currFWProfile().btnInfo[14] = macroButton(5);
  EXPECT_TRUE(NerinAction::setFWMacroData(6, 14).value);
  const int macroSlot = 6 * 19 + 17;
  const Bytes slotByte{static_cast<std::uint8_t>(macroSlot)};
  EXPECT_THAT(trace(),
              ElementsAre("SET 0300 0 c40b" + hexOf(slotByte) + "0100000000", "SLEEP 30",
                          testing::StartsWith("SET 0304 1 0400" + hexOf(slotByte)), "SLEEP 30"));
  EXPECT_EQ(mouse().macroReport(macroSlot)[0], 0xB0);
  EXPECT_THAT(mouse().faults(), IsEmpty());
}

TEST_F(MacroWrite, AMissingMacroIsAnnouncedAllTheSame) {
  editState->currFWProfile().btnInfo[3] = macroButton(5);
  EXPECT_FALSE(NerinAction::setFWMacroData(0, 3).value);
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c40b030100000000", "SLEEP 30"));
}

TEST_F(MacroWrite, MacroZeroIsTheFirstImportedOne) {
  addMacro(0, "first import", {{0, 0, 0}});
  addMacro(0, "second import", {{1, 0, 0}});
  EXPECT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  EXPECT_EQ(mouse().macroReport(3)[52], 0x04);
}

TEST_F(MacroWrite, ButtonsThatDoNotExistHaveNoMacro) {
  addMacro(0, "m");
  for (const int index : {-1, 16, 1000}) {
    EXPECT_FALSE(NerinAction::setFWMacroData(0, index).value);
    EXPECT_TRUE(NerinAction::getFWMacroData(0, index).isDone());
  }
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(MacroWrite, LogsTheLengthOfTheNameAndTheChecksum) {
  addMacro(5, std::string(30, 'n'), {{49, 0, 0}});
  editState->currFWProfile().btnInfo[3] = macroButton(5);
  (*NerinAction::sysDeviceReq)->setIsPrintMsg(false);
  std::vector<std::string> lines;
  LXLogger::setObserver([&](LXLogger::Level, std::string_view line) { lines.emplace_back(line); });
  EXPECT_TRUE(NerinAction::setFWMacroData(0, 3).value);
  LXLogger::setObserver({});
  EXPECT_THAT(lines, ElementsAre("60", std::to_string(mouse().macroReport(3)[3])));
}

}  // namespace
