#include <algorithm>
#include <cmath>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

// Converting between the record and the image, without a mouse.

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;

class ImageTranslation : public ActionTest {
 protected:
  static std::vector<int> indexesOf(const NerinAction::ButtonSet& buttons) {
    std::vector<int> indexes;
    for (std::size_t index = 0; index < buttons.size(); ++index) {
      if (buttons[index]) {
        indexes.push_back(static_cast<int>(index));
      }
    }
    return indexes;
  }

  Bytes encoded(std::uint8_t slot = 0, bool hasMacros = true) {
    const auto macros = NerinAction::macroButtonsOf(m_profile);
    m_written = indexesOf(macros);
    const auto image = NerinAction::encodeProfileImage(
        slot, m_profile, hasMacros ? NerinAction::ButtonSet() : macros);
    return {image.begin(), image.end()};
  }

  void decode(const Bytes& bytes) {
    NerinAction::ProfileImage image{};
    std::copy(bytes.begin(), bytes.end(), image.begin());
    m_read = indexesOf(
        NerinAction::decodeProfileImage(image, m_profile, NerinAction::singleFunctionIdOf));
  }

  // Decodes an image with one byte set.
  void decodeByte(std::size_t at, std::uint8_t value) {
    Bytes image(154);
    image[at] = value;
    decode(image);
  }

  static Bytes part(const Bytes& image, std::size_t at, std::size_t length) {
    const auto begin = image.begin() + static_cast<std::ptrdiff_t>(at);
    return {begin, begin + static_cast<std::ptrdiff_t>(length)};
  }

  Bytes entryOf(const _BTN_INFO& info, bool hasMacros = true) {
    m_profile.btnInfo[3] = info;
    return part(encoded(0, hasMacros), 58 + 5 * 3, 5);
  }

  // Fills the record so that every sent byte is different.
  void fill() {
    m_profile.poRate = 1;
    m_profile.liftHeight = 7;
    m_profile.dpiLevel = 5;
    m_profile.currSelectDPI = 3;
    m_profile.modeType = 1;
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      m_profile.xSensArr[level] = 20 + level;
      m_profile.ySensArr[level] = 40 + level;
    }
    for (std::uint32_t zone = 0; zone < zoneCount; ++zone) {
      m_profile.lightColorArr[zone] = {60 + zone, 70 + zone, 80 + zone};
    }
    for (std::uint32_t index = 0; index < buttonCount; ++index) {
      m_profile.btnInfo[index] = button(16, {100 + index, 120 + index, 140 + index, 160 + index});
    }
  }

  // The bytes of a field in the image report after fill().
  Bytes expectedField(std::size_t at, const std::string& meaning) {
    const auto low = [](std::uint32_t word) { return static_cast<std::uint8_t>(word); };
    const auto number = [&](const char* before) {
      return static_cast<std::size_t>(
          std::stoi(meaning.substr(meaning.find(before) + std::string(before).size())));
    };
    if (meaning.starts_with("DPI level ")) {
      const std::size_t level = number("DPI level ");
      Bytes bytes{low(m_profile.ySensArr[level]), low(m_profile.xSensArr[level])};
      for (const auto& part : protocolTable("Dpi_Led_color").at("rows").at(level)) {
        bytes.push_back(part.get<std::uint8_t>());
      }
      return bytes;
    }
    if (meaning.starts_with("LED zone ")) {
      const _LightColorInfo& color = m_profile.lightColorArr[number("LED zone ")];
      return {3, low(color.cR), low(color.cG), low(color.cB)};
    }
    if (meaning.find("button index ") != std::string::npos) {
      const auto index = static_cast<std::uint32_t>(number("button index "));
      return {16, low(100 + index), low(120 + index), low(140 + index), low(160 + index)};
    }
    if (meaning.find("fixed 0x") != std::string::npos) {
      return {static_cast<std::uint8_t>(
                  std::stoi(meaning.substr(meaning.find("fixed 0x") + 6), nullptr, 16)),
              0, 0, 0, 0};
    }
    switch (at) {
      case 0:
        return {5};
      case 2:
        return {9};
      case 4:
        return {4};
      case 5:
        return {0x27};
      case 6:
        return {0x53};
      default:
        return {};
    }
  }

  _Nerin_PROFILE m_profile{};
  std::vector<int> m_written;
  std::vector<int> m_read;
};

TEST_F(ImageTranslation, EveryFieldLiesWhereTheTableSays) {
  fill();
  const Bytes image = encoded(9);
  std::size_t covered = 0;
  for (const auto& report : protocolTable("reports")) {
    if (report.at("name") != "profile image report") {
      continue;
    }
    for (const auto& field : report.at("fields")) {
      const auto at = field.at("offset").get<std::size_t>();
      const auto length = field.at("len").get<std::size_t>();
      const auto meaning = field.at("meaning").get<std::string>();
      Bytes expected = at == 3 ? Bytes{checksumOf(image)} : expectedField(at, meaning);
      expected.resize(length);
      EXPECT_EQ(part(image, at, length), expected) << meaning;
      covered += length;
    }
  }
  EXPECT_EQ(covered, 154U);
}

TEST_F(ImageTranslation, WhatWasEncodedIsDecoded) {
  fill();
  const _Nerin_PROFILE before = m_profile;
  const Bytes image = encoded();
  m_profile = {};
  decode(image);
  EXPECT_EQ(m_profile.poRate, before.poRate);
  EXPECT_EQ(m_profile.liftHeight, before.liftHeight);
  EXPECT_EQ(m_profile.dpiLevel, before.dpiLevel);
  EXPECT_EQ(m_profile.currSelectDPI, before.currSelectDPI);
  EXPECT_EQ(m_profile.modeType, before.modeType);
  for (std::size_t level = 0; level < levelCount; ++level) {
    EXPECT_EQ(m_profile.xSensArr[level], before.xSensArr[level]);
    EXPECT_EQ(m_profile.ySensArr[level], before.ySensArr[level]);
  }
  for (std::size_t zone = 0; zone < zoneCount; ++zone) {
    EXPECT_EQ(m_profile.lightColorArr[zone].cR, before.lightColorArr[zone].cR);
    EXPECT_EQ(m_profile.lightColorArr[zone].cG, before.lightColorArr[zone].cG);
    EXPECT_EQ(m_profile.lightColorArr[zone].cB, before.lightColorArr[zone].cB);
  }
  for (std::size_t index = 0; index < buttonCount; ++index) {
    EXPECT_EQ(m_profile.btnInfo[index].KeyBit[3], before.btnInfo[index].KeyBit[3]);
  }
}

TEST_F(ImageTranslation, AnAllZeroRecordIsValid) {
  const Bytes image = encoded();
  EXPECT_EQ(image[4], 8);
  EXPECT_EQ(image[5], 0x20);
  EXPECT_EQ(image[6], 0);
  EXPECT_THAT(part(image, 7, 35), Each(0));
  EXPECT_EQ(image[42], 1);
  EXPECT_THAT(part(image, 58, 70), Each(0));
  EXPECT_THAT(m_written, IsEmpty());
}

TEST_F(ImageTranslation, AnAllZeroImageIsValid) {
  decode(Bytes(154));
  EXPECT_EQ(m_profile.poRate, 0U);
  EXPECT_EQ(m_profile.dpiLevel, 1U);
  EXPECT_EQ(m_profile.currSelectDPI, 0U);
  EXPECT_EQ(m_profile.btnInfo[15].btnType, 3U);
}

TEST_F(ImageTranslation, TheLevelByteBelowSixteenIsOneLevel) {
  decodeByte(6, 0x00);
  EXPECT_EQ(m_profile.dpiLevel, 1U);
  EXPECT_EQ(m_profile.currSelectDPI, 0U);
  decodeByte(6, 0x0C);
  EXPECT_EQ(m_profile.dpiLevel, 1U);
  EXPECT_EQ(m_profile.currSelectDPI, 12U);
}

TEST_F(ImageTranslation, TheLevelByteHoldsCountAndActiveLevel) {
  decodeByte(6, 0x53);
  EXPECT_EQ(m_profile.dpiLevel, 5U);
  EXPECT_EQ(m_profile.currSelectDPI, 3U);
}

TEST_F(ImageTranslation, MoreThanFiveLevelsAreFiveAndTheActiveOneIsKept) {
  decodeByte(6, 0x73);
  EXPECT_EQ(m_profile.dpiLevel, 5U);
  EXPECT_EQ(m_profile.currSelectDPI, 3U);
  decodeByte(6, 0xFF);
  EXPECT_EQ(m_profile.dpiLevel, 5U);
  EXPECT_EQ(m_profile.currSelectDPI, 15U);
}

TEST_F(ImageTranslation, IndexesThatDoNotExistAreWrittenAsTheyAre) {
  m_profile.dpiLevel = 3;
  m_profile.currSelectDPI = 15;
  EXPECT_EQ(encoded()[6], 0x3F);
  m_profile.dpiLevel = 0xFFFFFFFF;
  m_profile.currSelectDPI = 2;
  EXPECT_EQ(encoded()[6], 0xF2);
}

TEST_F(ImageTranslation, LevelsNotInUseStayZero) {
  fill();
  m_profile.dpiLevel = 2;
  const Bytes image = encoded();
  EXPECT_THAT(part(image, 7, 10), ElementsAre(40, 20, 255, 0, 0, 41, 21, 0, 0, 255));
  EXPECT_THAT(part(image, 17, 15), Each(0));
  m_profile.dpiLevel = 0;
  EXPECT_THAT(part(encoded(), 7, 25), Each(0));
  m_profile.dpiLevel = 9;
  EXPECT_EQ(encoded()[27], 44);
}

TEST_F(ImageTranslation, TheLevelsReadOverwriteThoseNotInUse) {
  fill();
  m_profile.dpiLevel = 2;
  const Bytes image = encoded();
  decode(image);
  EXPECT_EQ(m_profile.xSensArr[1], 21U);
  EXPECT_EQ(m_profile.xSensArr[2], 0U);
  EXPECT_EQ(m_profile.ySensArr[4], 0U);
}

TEST_F(ImageTranslation, YStandsBeforeX) {
  Bytes image(154);
  image[7] = 11;
  image[8] = 22;
  decode(image);
  EXPECT_EQ(m_profile.ySensArr[0], 11U);
  EXPECT_EQ(m_profile.xSensArr[0], 22U);
}

TEST_F(ImageTranslation, LevelColorsAreConstantAndIgnoredOnReading) {
  fill();
  Bytes image = encoded();
  std::fill_n(image.begin() + 9, 3, std::uint8_t{99});
  decode(image);
  EXPECT_THAT(part(encoded(), 9, 3), ElementsAre(255, 0, 0));
}

TEST_F(ImageTranslation, EveryRateByteReadsAsItsLogarithm) {
  for (const auto& row : protocolTable("rate_table").at("rows")) {
    const auto device = row.at("device").get<std::uint8_t>();
    const auto index = row.at("poRate").get<std::uint32_t>();
    EXPECT_EQ(NerinAction::poRateOf(device), index);
    EXPECT_EQ(NerinAction::rateByteOf(index), device);
  }
  decodeByte(4, 8);
  EXPECT_EQ(m_profile.poRate, 0U);
  decodeByte(4, 1);
  EXPECT_EQ(m_profile.poRate, 3U);
}

TEST_F(ImageTranslation, ARateByteThatIsNoPowerOfTwoIsRoundedTowardsZero) {
  const std::uint32_t expected[] = {0, 3, 2, 1, 1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0};
  for (unsigned value = 0; value < 256; ++value) {
    EXPECT_EQ(NerinAction::poRateOf(static_cast<std::uint8_t>(value)), expected[value % 16])
        << value;
  }
}

TEST_F(ImageTranslation, ARateIndexThatDoesNotExistWritesZero) {
  for (const std::uint32_t index : {4U, 5U, 100U, 0xFFFFFFFFU}) {
    EXPECT_EQ(NerinAction::rateByteOf(index), 0) << index;
  }
}

TEST_F(ImageTranslation, TheLiftHeightSharesItsByteWithAFlag) {
  m_profile.liftHeight = 31;
  EXPECT_EQ(encoded()[5], 0x3F);
  decodeByte(5, 0xFF);
  EXPECT_EQ(m_profile.liftHeight, 31U);
  decodeByte(5, 0x20);
  EXPECT_EQ(m_profile.liftHeight, 0U);
}

TEST_F(ImageTranslation, OnlyModeOneIsWrittenAsBattle) {
  m_profile.modeType = 1;
  EXPECT_EQ(encoded()[50], 3);
  m_profile.modeType = 2;
  const Bytes image = encoded();
  for (const std::size_t at : {42U, 46U, 50U, 54U}) {
    EXPECT_EQ(image[at], 1);
  }
}

TEST_F(ImageTranslation, TheModeIsReadFromZoneZero) {
  decodeByte(42, 3);
  EXPECT_EQ(m_profile.modeType, 1U);
  decodeByte(46, 3);
  EXPECT_EQ(m_profile.modeType, 0U);
  decodeByte(42, 2);
  EXPECT_EQ(m_profile.modeType, 0U);
}

TEST_F(ImageTranslation, ButtonsFourteenAndFifteenLieBehindTheFixedPositions) {
  const auto& table = protocolTable("device_positions");
  for (int index = 0; index < 14; ++index) {
    EXPECT_EQ(NerinAction::devicePosition(index), index);
  }
  EXPECT_EQ(NerinAction::devicePosition(14), 17);
  EXPECT_EQ(NerinAction::devicePosition(15), 18);
  m_profile.btnInfo[14] = button(1, {6});
  m_profile.btnInfo[15] = button(1, {7});
  const Bytes image = encoded();
  EXPECT_THAT(part(image, 143, 10), ElementsAre(1, 6, 0, 0, 0, 1, 7, 0, 0, 0));
  for (const auto& [position, code] : table.at("fixed").items()) {
    const std::size_t at = 58 + 5 * std::stoul(position);
    EXPECT_EQ(part(image, at, 5), (Bytes{code.get<std::uint8_t>(), 0, 0, 0, 0}));
  }
  EXPECT_EQ(image[128], 0xFF);
  EXPECT_EQ(image[133], 0x0D);
  EXPECT_EQ(image[138], 0x12);
}

TEST_F(ImageTranslation, TheFixedPositionsAreSkippedOnReading) {
  Bytes image(154);
  for (std::size_t at = 128; at < 143; ++at) {
    image[at] = 6;
  }
  decode(image);
  EXPECT_THAT(m_read, IsEmpty());
  for (const _BTN_INFO& info : m_profile.btnInfo) {
    EXPECT_EQ(info.FuncTableId, 0U);
  }
}

TEST_F(ImageTranslation, TheLastByteIsUnusedAndNotCovered) {
  fill();
  Bytes image = encoded();
  EXPECT_EQ(image[153], 0);
  EXPECT_EQ(image[3], checksumOf(image));
}

TEST_F(ImageTranslation, TheChecksumIsNotVerifiedOnReading) {
  Bytes image(154);
  image[3] = 0x77;
  image[5] = 3;
  decode(image);
  EXPECT_EQ(m_profile.liftHeight, 3U);
}

TEST_F(ImageTranslation, TheSpecialFunctionsAreWrittenAsControlWithAnArrow) {
  for (const auto& row : protocolTable("special_functions").at("rows")) {
    const _BTN_INFO info = button(1, {row.at("special").get<std::uint32_t>(), 9, 9, 9});
    EXPECT_EQ(entryOf(info), row.at("device_entry").get<Bytes>());
  }
}

TEST_F(ImageTranslation, AKeyWithTheNumberOfASpecialFunctionIsNone) {
  EXPECT_THAT(entryOf(button(2, {241})), ElementsAre(2, 0, 0, 0, 0));
  EXPECT_THAT(entryOf(button(4, {241, 1, 2, 3})), ElementsAre(4, 241, 1, 2, 3));
}

TEST_F(ImageTranslation, AModifierKeyIsABitAndAnyOtherKeyAUsage) {
  EXPECT_THAT(entryOf(button(2, {55, 9, 9, 9})), ElementsAre(2, 0x01, 0, 0, 0));
  EXPECT_THAT(entryOf(button(2, {60})), ElementsAre(2, 0x02, 0, 0, 0));
  EXPECT_THAT(entryOf(button(2, {49, 9, 9, 9})), ElementsAre(2, 0, 0x2C, 0, 0));
  EXPECT_THAT(entryOf(button(2, {57})), ElementsAre(2, 0, 0x39, 0, 0));
  EXPECT_THAT(entryOf(button(2, {24})), ElementsAre(2, 0, 0, 0, 0));
}

TEST_F(ImageTranslation, ARightShiftReadsBackAsShift) {
  m_profile.btnInfo[0] = button(2, {60});
  decode(encoded());
  EXPECT_EQ(m_profile.btnInfo[0].KeyBit[0], 56U);
}

TEST_F(ImageTranslation, AMacroButtonKeepsItsParameters) {
  EXPECT_THAT(entryOf(button(6, {2, 5, 7, 8})), ElementsAre(6, 2, 5, 7, 8));
  EXPECT_THAT(m_written, ElementsAre(3));
}

TEST_F(ImageTranslation, AMacroThatIsMissingDisablesTheButton) {
  EXPECT_THAT(entryOf(button(6, {2, 5, 7, 8}), false), ElementsAre(0xFF, 0, 0, 0, 0));
}

TEST_F(ImageTranslation, ADisabledButtonStillSendsItsParameters) {
  EXPECT_THAT(entryOf(button(255, {1, 2, 3, 4})), ElementsAre(255, 1, 2, 3, 4));
}

TEST_F(ImageTranslation, DpiButtonsSendTheirParameters) {
  EXPECT_THAT(entryOf(button(16, {64, 65})), ElementsAre(16, 64, 65, 0, 0));
}

TEST_F(ImageTranslation, OnlyLowBytesAreSent) {
  EXPECT_THAT(entryOf(button(0x110, {0x201, 0x302, 0x403, 0x504})), ElementsAre(0x10, 1, 2, 3, 4));
  m_profile.lightColorArr[0] = {0x101, 0x202, 0x303};
  EXPECT_THAT(part(encoded(), 42, 4), ElementsAre(1, 1, 2, 3));
}

TEST_F(ImageTranslation, MacrosAreReadForMacroButtonsOnlyAndInOrder) {
  Bytes image(154);
  image[58 + 5 * 2] = 6;
  image[58 + 5 * 18] = 6;
  image[58 + 5 * 4] = 2;
  image[58 + 5 * 4 + 1] = 0x08;
  image[58 + 5 * 4 + 2] = 0x4F;  // its function id is 6, but its type is not that of a macro
  decode(image);
  EXPECT_EQ(m_profile.btnInfo[4].FuncID, 6U);
  EXPECT_THAT(m_read, ElementsAre(2, 15));
}

TEST_F(ImageTranslation, AMacroButtonKeepsItsParametersUntilTheMacroIsRead) {
  Bytes image(154);
  image[58] = 6;
  image[59] = 3;
  decode(image);
  EXPECT_THAT(m_read, ElementsAre(0));
  EXPECT_EQ(m_profile.btnInfo[0].btnType, 2U);
  EXPECT_EQ(m_profile.btnInfo[0].KeyBit[0], 3U);
}

TEST_F(ImageTranslation, WhatTheImageLacksIsNotTouched) {
  m_profile.islightOnArr[2] = 1;
  m_profile.btnInfo[5].app_path[0] = 'x';
  decode(Bytes(154));
  EXPECT_EQ(m_profile.islightOnArr[2], 1U);
  EXPECT_EQ(m_profile.btnInfo[5].app_path[0], 'x');
}

}  // namespace
