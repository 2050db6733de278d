#include <map>
#include <set>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Wire/KeyCodes.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

namespace {

using testing::ElementsAre;

using Pairs = std::vector<std::pair<std::uint32_t, std::uint32_t>>;

class KeyCodes : public ActionTest {
 protected:
  // Usage and Mac key, in search order.
  static Pairs keyRows() { return protocolTable("UsageID_MacVk").at("pairs").get<Pairs>(); }

  static std::map<std::uint32_t, std::uint32_t> macroCodesOfKeys() {
    std::map<std::uint32_t, std::uint32_t> codes;
    for (const auto& row : protocolTable("macro_modifier_codes").at("mac_to_device")) {
      codes[row.at(0)] = row.at(1);
    }
    return codes;
  }

  static std::map<std::uint32_t, std::uint32_t> keysOfMacroCodes() {
    std::map<std::uint32_t, std::uint32_t> keys;
    for (const auto& row : protocolTable("macro_modifier_codes").at("device_to_mac")) {
      if (!row.at(1).is_null()) {
        keys[row.at(0)] = row.at(1);
      }
    }
    return keys;
  }

  // A button in the mouse's form.
  static _BTN_INFO raw(std::uint32_t code, std::vector<std::uint32_t> parameters = {}) {
    _BTN_INFO info = button(0, std::move(parameters), 0);
    info.FuncID = code;
    return info;
  }

  static _BTN_INFO normalised(std::uint32_t code, std::vector<std::uint32_t> parameters = {}) {
    _BTN_INFO info = raw(code, std::move(parameters));
    NerinAction::setFunIDAndBtnType(&info);
    return info;
  }

  static std::vector<std::uint32_t> keyBits(const _BTN_INFO& info) {
    return {std::begin(info.KeyBit), std::end(info.KeyBit)};
  }
};

TEST_F(KeyCodes, TheKeyTableHas105Rows) {
  EXPECT_EQ(keyRows().size(), 105U);
}

TEST_F(KeyCodes, EveryMacKeyIsWrittenByTheFirstRowThatHasIt) {
  auto expected = macroCodesOfKeys();
  for (const auto& [usage, key] : keyRows()) {
    expected.emplace(key, usage);
  }
  for (std::uint32_t key = 0; key <= 300; ++key) {
    const auto found = expected.find(key);
    EXPECT_EQ(NerinAction::GetFWKeyCode(key), found == expected.end() ? 0 : found->second) << key;
  }
}

TEST_F(KeyCodes, EveryDeviceCodeIsReadByTheFirstRowThatHasIt) {
  auto expected = keysOfMacroCodes();
  for (const auto& [usage, key] : keyRows()) {
    expected.emplace(usage, key);
  }
  for (std::uint32_t code = 0; code <= 300; ++code) {
    const auto found = expected.find(code);
    EXPECT_EQ(NerinAction::GetKeyCodeByFW(code), found == expected.end() ? 0 : found->second)
        << code;
  }
}

TEST_F(KeyCodes, TheEqualSignHasNoUsage) {
  EXPECT_EQ(NerinAction::GetFWKeyCode(24), 0U);
  EXPECT_EQ(NerinAction::GetKeyCodeByFW(0x2E), 69U);
}

TEST_F(KeyCodes, DoubledKeysAreWrittenByTheirFirstUsage) {
  EXPECT_EQ(NerinAction::GetFWKeyCode(42), 0x31U);
  EXPECT_EQ(NerinAction::GetFWKeyCode(69), 0x2EU);
  EXPECT_EQ(NerinAction::GetFWKeyCode(0), 0x04U);
  EXPECT_EQ(NerinAction::GetKeyCodeByFW(0x31), 42U);
  EXPECT_EQ(NerinAction::GetKeyCodeByFW(0x32), 42U);
  EXPECT_EQ(NerinAction::GetKeyCodeByFW(0x57), 69U);
}

TEST_F(KeyCodes, UnknownDeviceCodesReadAsTheKeyA) {
  for (const std::uint32_t code : {0U, 1U, 3U, 0x64U, 0x66U, 116U, 120U, 126U, 128U, 0xE7U, 255U}) {
    EXPECT_EQ(NerinAction::GetKeyCodeByFW(code), 0U) << code;
  }
}

TEST_F(KeyCodes, KeysThatTheMouseDoesNotKnowAreWrittenAsZero) {
  for (const std::uint32_t key :
       {10U, 24U, 54U, 63U, 64U, 79U, 80U, 81U, 90U, 93U, 94U, 95U, 102U, 104U, 106U}) {
    EXPECT_EQ(NerinAction::GetFWKeyCode(key), 0U) << key;
  }
}

TEST_F(KeyCodes, CapsLockIsAKeyAndNoModifier) {
  EXPECT_EQ(NerinAction::GetFWKeyCode(57), 0x39U);
  EXPECT_EQ(NerinAction::getFWKeyCodeFlag(57), 0U);
}

TEST_F(KeyCodes, RightHandModifiersFoldOntoTheLeftOnesInKeyEntries) {
  std::map<std::uint32_t, std::uint32_t> expected;
  for (const auto& row : protocolTable("modifier_mac_to_bit").at("rows")) {
    expected[row.at(0)] = row.at(1);
  }
  ASSERT_EQ(expected.size(), 8U);
  for (std::uint32_t key = 0; key <= 300; ++key) {
    const auto found = expected.find(key);
    EXPECT_EQ(NerinAction::getFWKeyCodeFlag(key), found == expected.end() ? 0 : found->second)
        << key;
  }
}

TEST_F(KeyCodes, OnlyASingleModifierBitNamesAKey) {
  std::map<std::uint32_t, std::uint32_t> expected;
  for (const auto& row : protocolTable("modifier_device_bits").at("rows")) {
    expected[row.at(0)] = row.at(1);
  }
  ASSERT_EQ(expected.size(), 8U);
  for (std::uint32_t bits = 0; bits <= 256; ++bits) {
    const auto found = expected.find(bits);
    EXPECT_EQ(NerinAction::getKeyCodeFlagByFW(bits), found == expected.end() ? 0 : found->second)
        << bits;
  }
  EXPECT_EQ(NerinAction::getKeyCodeFlagByFW(3), 0U);
}

TEST_F(KeyCodes, TheModifierBitsAreNotInTheHidOrder) {
  EXPECT_EQ(NerinAction::getKeyCodeFlagByFW(0x01), 55U);
  EXPECT_EQ(NerinAction::getKeyCodeFlagByFW(0x08), 59U);
  EXPECT_EQ(NerinAction::getFWKeyCodeFlag(55), 0x01U);
}

TEST_F(KeyCodes, RightShiftStaysItselfInMacrosOnly) {
  EXPECT_EQ(NerinAction::getKeyCodeFlagByFW(NerinAction::getFWKeyCodeFlag(60)), 56U);
  EXPECT_EQ(NerinAction::GetFWKeyCode(60), 117U);
  EXPECT_EQ(NerinAction::GetKeyCodeByFW(117), 60U);
}

TEST_F(KeyCodes, RightCommandHasNoCodeInMacros) {
  EXPECT_EQ(NerinAction::GetFWKeyCode(54), 0U);
  EXPECT_EQ(NerinAction::GetKeyCodeByFW(116), 0U);
}

TEST_F(KeyCodes, EveryFunctionCodeGetsTheTypeOfTheTable) {
  std::set<std::uint32_t> listed;
  for (const auto& row : protocolTable("function_codes").at("rows")) {
    if (row.at("code").is_string()) {
      continue;
    }
    const auto code = row.at("code").get<std::uint32_t>();
    SCOPED_TRACE(code);
    listed.insert(code);
    const _BTN_INFO info = normalised(code, {0x41, 0x42, 0x43, 0x44});
    EXPECT_EQ(info.btnType, row.at("btnType").get<std::uint32_t>());
    EXPECT_EQ(info.FuncTableId, code);
    const auto& id = row.at("FuncID");
    EXPECT_EQ(info.FuncID, id.is_number() ? id.get<std::uint32_t>() : code);
    EXPECT_EQ(info.MacroID, row.value("MacroID", 0U));
  }
  EXPECT_THAT(listed, ElementsAre(0, 1, 2, 4, 6, 9, 10, 11, 15, 16, 21, 255));
  for (std::uint32_t code = 0; code < 256; ++code) {
    if (!listed.contains(code)) {
      const _BTN_INFO info = normalised(code, {1, 2, 3, 4});
      EXPECT_EQ(info.btnType, 1U) << code;
      EXPECT_EQ(info.FuncID, code);
      EXPECT_EQ(info.FuncTableId, code);
      EXPECT_THAT(keyBits(info), ElementsAre(1, 2, 3, 4));
    }
  }
}

TEST_F(KeyCodes, TheFiveDpiFunctionsAreNumberedInTheRecord) {
  for (const auto& [id, code] : protocolTable("dpi_function_codes").at("FuncID_to_code").items()) {
    const _BTN_INFO info = normalised(code.get<std::uint32_t>(), {0x40, 0x40});
    EXPECT_EQ(info.btnType, 4U);
    EXPECT_EQ(info.FuncID, static_cast<std::uint32_t>(std::stoi(id)));
    EXPECT_EQ(NerinAction::getFunIdByBtn(info), code.get<std::uint32_t>());
    EXPECT_THAT(keyBits(info), ElementsAre(0x40, 0x40, 0, 0));
  }
}

TEST_F(KeyCodes, TheLevelCycleIsTheFifthDpiFunction) {
  const _BTN_INFO info = normalised(21);
  EXPECT_EQ(info.btnType, 4U);
  EXPECT_EQ(info.FuncID, 5U);
  EXPECT_EQ(info.FuncTableId, 21U);
}

TEST_F(KeyCodes, ControlWithAHorizontalArrowIsAFunctionOfItsOwn) {
  for (const auto& row : protocolTable("special_functions").at("rows")) {
    const auto entry = row.at("device_entry").get<std::vector<std::uint32_t>>();
    _BTN_INFO info = normalised(entry[0], {entry[1], entry[2], 7, 8});
    const auto& record = row.at("record");
    EXPECT_EQ(info.FuncTableId, record.at("FuncTableId").get<std::uint32_t>());
    EXPECT_EQ(info.btnType, record.at("btnType").get<std::uint32_t>());
    EXPECT_EQ(info.MacroID, record.at("MacroID").get<std::uint32_t>());
    EXPECT_EQ(info.FuncID, record.at("FuncID").get<std::uint32_t>());
    EXPECT_THAT(keyBits(info), ElementsAre(record.at("KeyBit0").get<std::uint32_t>(),
                                           record.at("KeyBit1").get<std::uint32_t>(), 7, 8));
  }
}

TEST_F(KeyCodes, OtherControlKeysAreTheModifierAlone) {
  const _BTN_INFO info = normalised(2, {0x08, 0x51});
  EXPECT_EQ(info.FuncTableId, 2U);
  EXPECT_EQ(info.KeyBit[0], 59U);
  EXPECT_EQ(info.MacroID, 2U);
}

TEST_F(KeyCodes, AKeyEntryWithAModifierDropsTheKey) {
  EXPECT_EQ(normalised(2, {0x02, 0x4F}).KeyBit[0], 56U);
  EXPECT_EQ(normalised(2, {0x10, 0x04}).KeyBit[0], 54U);
}

TEST_F(KeyCodes, AKeyEntryWithTwoModifiersReadsAsTheKeyA) {
  EXPECT_EQ(normalised(2, {0x03, 0x2C}).KeyBit[0], 0U);
}

TEST_F(KeyCodes, AKeyEntryKeepsItsRawUsageAsSecondParameter) {
  const _BTN_INFO info = normalised(2, {0, 0x2C, 3, 4});
  EXPECT_EQ(info.btnType, 3U);
  EXPECT_EQ(info.FuncID, 2U);
  EXPECT_THAT(keyBits(info), ElementsAre(49, 0x2C, 3, 4));
}

TEST_F(KeyCodes, AMouseFunctionTakesItsIdFromTheCatalogue) {
  NerinAction::initMenuList();
  EXPECT_EQ(normalised(1, {6}).FuncID, 10U);
  EXPECT_EQ(normalised(1, {1}).FuncID, 1U);
}

TEST_F(KeyCodes, AMouseFunctionThatTheCatalogueLacksKeepsItsCodeAsId) {
  NerinAction::initMenuList();
  EXPECT_EQ(normalised(1, {1, 0, 0, 1}).FuncID, 1U);
  EXPECT_EQ(normalised(4, {1}).FuncID, 4U);
  EXPECT_EQ(normalised(0).FuncID, 0U);
  EXPECT_EQ(normalised(4, {1}).MacroID, 1U);
}

TEST_F(KeyCodes, ThePrimaryClickIsKnownByIdCodeAndKey) {
  NerinAction::initMenuList();
  const auto& expected = protocolTable("primary_click");
  const _BTN_INFO info = normalised(1, {1});
  EXPECT_EQ(info.FuncID, expected.at("FuncID").get<std::uint32_t>());
  EXPECT_EQ(info.FuncTableId, expected.at("FuncTableId").get<std::uint32_t>());
  EXPECT_EQ(info.KeyBit[0], expected.at("KeyBit0").get<std::uint32_t>());
}

struct Repeat {
  int type;
  int count;
  bool operator==(const Repeat&) const = default;
};

Repeat repeatOf(std::uint32_t mode, std::uint32_t times) {
  _BTN_INFO info{};
  info.KeyBit[0] = mode;
  info.KeyBit[1] = times;
  std::uint8_t type = 0;
  std::uint8_t count = 0;
  NerinAction::getMacroRepeatType(type, count, info);
  return {type, count};
}

TEST(MacroRepeat, EveryModeIsWrittenByTheTable) {
  for (const auto& row : protocolTable("repeat_record_to_device").at("rows")) {
    if (!row.at("mode").is_number() || !row.at("count").is_number()) {
      continue;
    }
    const auto mode = row.at("mode").get<std::uint32_t>();
    EXPECT_EQ(repeatOf(mode, 17), (Repeat{row.at("type"), row.at("count")})) << mode;
  }
}

TEST(MacroRepeat, ACountIsWrittenAsTheRepetitionsAfterTheFirstRun) {
  for (std::uint32_t times = 1; times <= 254; ++times) {
    EXPECT_EQ(repeatOf(2, times), (Repeat{4, static_cast<int>(times) - 1}));
  }
  EXPECT_EQ(repeatOf(2, 0), (Repeat{4, 0}));
  EXPECT_EQ(repeatOf(2, 255), (Repeat{4, 255}));
}

TEST(MacroRepeat, ACountPastAByteIsWrittenAsTheLargest) {
  for (const std::uint32_t times : {256U, 257U, 300U, 511U, 9999U, 0xFFFFFFFFU}) {
    EXPECT_EQ(repeatOf(2, times), (Repeat{4, 253})) << times;
  }
}

TEST(MacroRepeat, ACountThatCannotBeStoredBecomesTheNearestThatCan) {
  using NerinAction::storableRepeatCount;
  EXPECT_EQ(storableRepeatCount(0), 1U);
  EXPECT_EQ(storableRepeatCount(1), 1U);
  EXPECT_EQ(storableRepeatCount(254), 254U);
  for (const std::uint32_t count : {255U, 256U, 511U, 9999U, 0xFFFFFFFFU}) {
    EXPECT_EQ(storableRepeatCount(count), 254U) << count;
  }
}

TEST(MacroRepeat, AnUnknownModeWritesNoType) {
  for (const std::uint32_t mode : {0U, 5U, 12U, 255U, 258U}) {
    EXPECT_EQ(repeatOf(mode, 3), (Repeat{0, 255})) << mode;
  }
}

TEST(MacroRepeat, EveryDeviceTypeIsReadByTheTable) {
  EXPECT_EQ(NerinAction::getMacroRepeatTypeFromFW(5, 0), 1U);
  EXPECT_EQ(NerinAction::getMacroRepeatTypeFromFW(7, 9), 3U);
  EXPECT_EQ(NerinAction::getMacroRepeatTypeFromFW(4, 0), 2U);
  EXPECT_EQ(NerinAction::getMacroRepeatTypeFromFW(4, 254), 2U);
  EXPECT_EQ(NerinAction::getMacroRepeatTypeFromFW(4, 255), 4U);
  for (std::uint32_t type = 0; type < 256; ++type) {
    if (type != 4 && type != 5 && type != 7) {
      EXPECT_EQ(NerinAction::getMacroRepeatTypeFromFW(static_cast<std::uint8_t>(type), 255), type);
    }
  }
}

TEST(MacroRepeat, ACountIsReadAsTheRunsInAll) {
  EXPECT_EQ(NerinAction::getMacroRepeatCountFromFW(0), 1U);
  EXPECT_EQ(NerinAction::getMacroRepeatCountFromFW(253), 254U);
  EXPECT_EQ(NerinAction::getMacroRepeatCountFromFW(254), 255U);
  EXPECT_EQ(NerinAction::getMacroRepeatCountFromFW(255), 255U);
}

TEST(MacroRepeat, MenuPositionsAndDeviceTypesTranslateByTheirOwnTable) {
  const auto& table = protocolTable("getMacroType");
  for (const int index : {-1, 4, 100}) {
    EXPECT_EQ(NerinAction::getMacroType(index), 0) << index;
  }
  for (const int index : {0, 1, 2, 3}) {
    EXPECT_EQ(NerinAction::getMacroType(index),
              table.at("index_to_type").at(std::to_string(index)).get<int>());
  }
  const auto& back = table.at("getMacroType2_type_to_index");
  for (int type = 0; type < 256; ++type) {
    EXPECT_EQ(NerinAction::getMacroType2(static_cast<std::uint8_t>(type)),
              back.value(std::to_string(type), 0))
        << type;
  }
}

}  // namespace
