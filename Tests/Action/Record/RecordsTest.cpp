#include <cstring>
#include <string>

#include <gtest/gtest.h>

#include "Action/Record/Records.h"
#include "Tests/Support/JsonFixture.h"

namespace {

using Json = nlohmann::json;

// The place of a field in the table, in words or in bytes.
struct Place {
  std::size_t offset;
  std::size_t length;
  bool operator==(const Place&) const = default;
};

Place placeIn(const Json& record, const std::string& name) {
  for (const Json& field : record.at("fields")) {
    if (field.at(0) == name) {
      return {field.at(1), field.at(2)};
    }
  }
  return {~std::size_t{0}, 0};
}

#define WORD_PLACE(type, field) (Place{offsetof(type, field) / 4, sizeof(type::field) / 4})
#define BYTE_PLACE(type, field) (Place{offsetof(type, field), sizeof(type::field)})

TEST(Records, AButtonHasItsFieldsWhereTheFileHasThem) {
  const Json& record = protocolTable("records").at("_BTN_INFO");
  EXPECT_EQ(sizeof(_BTN_INFO), record.at("bytes").get<std::size_t>());
  EXPECT_EQ(WORD_PLACE(_BTN_INFO, FuncID), placeIn(record, "FuncID"));
  EXPECT_EQ(WORD_PLACE(_BTN_INFO, FuncTableId), placeIn(record, "FuncTableId"));
  EXPECT_EQ(WORD_PLACE(_BTN_INFO, btnType), placeIn(record, "btnType"));
  EXPECT_EQ(WORD_PLACE(_BTN_INFO, KeyBit), placeIn(record, "KeyBit"));
  EXPECT_EQ(WORD_PLACE(_BTN_INFO, app_path), placeIn(record, "app_path(char[256])"));
  EXPECT_EQ(WORD_PLACE(_BTN_INFO, MacroID), placeIn(record, "MacroID"));
}

TEST(Records, AProfileHasItsFieldsWhereTheFileHasThem) {
  const Json& record = protocolTable("records").at("_Nerin_PROFILE");
  EXPECT_EQ(sizeof(_Nerin_PROFILE), record.at("bytes").get<std::size_t>());
  EXPECT_EQ(sizeof(_LightColorInfo),
            protocolTable("records").at("_LightColorInfo").at("bytes").get<std::size_t>());
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, btnInfo), placeIn(record, "btnInfo[16]"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, modeType), placeIn(record, "modeType"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, islightOnArr), placeIn(record, "islightOnArr[4]"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, lightColorArr), placeIn(record, "lightColorArr[4]"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, dpiLevel), placeIn(record, "dpiLevel"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, currSelectDPI), placeIn(record, "currSelectDPI"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, xSensArr), placeIn(record, "xSensArr[5]"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, ySensArr), placeIn(record, "ySensArr[5]"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, liftHeight), placeIn(record, "liftHeight"));
  EXPECT_EQ(WORD_PLACE(_Nerin_PROFILE, poRate), placeIn(record, "poRate"));
}

TEST(Records, AStoredProfileHasItsFieldsWhereTheFileHasThem) {
  const Json& record = protocolTable("records").at("_Nerin_CONFIG");
  EXPECT_EQ(sizeof(_Nerin_CONFIG), record.at("bytes").get<std::size_t>());
  EXPECT_EQ(BYTE_PLACE(_Nerin_CONFIG, profileId), placeIn(record, "profileId"));
  EXPECT_EQ(BYTE_PLACE(_Nerin_CONFIG, isDefault), placeIn(record, "isDefault"));
  EXPECT_EQ(BYTE_PLACE(_Nerin_CONFIG, profileName), placeIn(record, "profileName"));
  EXPECT_EQ(BYTE_PLACE(_Nerin_CONFIG, profile), placeIn(record, "profile"));
  EXPECT_EQ(BYTE_PLACE(_Nerin_CONFIG, isActiveApp), placeIn(record, "isActiveApp"));
  EXPECT_EQ(BYTE_PLACE(_Nerin_CONFIG, activeAppPath), placeIn(record, "activeAppPath"));
}

TEST(Records, ATextEndsAtItsNulOrAtByte255) {
  char field[256];
  std::memset(field, 'x', sizeof field);
  EXPECT_EQ(getlen(field), 255U);
  field[255] = '\0';
  EXPECT_EQ(getlen(field), 255U);
  field[3] = '\0';
  EXPECT_EQ(getlen(field), 3U);
  EXPECT_EQ(textOf(field), "xxx");
  field[0] = '\0';
  EXPECT_EQ(getlen(field), 0U);
}

TEST(Records, ACopiedTextLeavesTheBytesBehindItsNul) {
  char field[256] = "a longer text";
  setText(field, "short");
  EXPECT_EQ(std::string(field, 13), std::string("short\0er text", 13));
}

TEST(Records, ATextThatIsTooLongIsCutBetweenCharacters) {
  char field[256];
  std::memset(field, 'x', sizeof field);
  std::string text(254, 'a');
  text += "\xC3\xA4";
  setText(field, text);
  EXPECT_EQ(textOf(field), std::string(254, 'a'));
  setText(field, std::string(300, 'b'));
  EXPECT_EQ(textOf(field), std::string(255, 'b'));
}

TEST(Records, TheFileIsLittleEndian) {
  _Nerin_CONFIG config{};
  config.profileId = 0x0102030405060708;
  config.profile.poRate = 0x11121314;
  const ConfigBytes bytes = bytesOf(config);
  EXPECT_EQ(std::string(bytes.data(), 8), "\x08\x07\x06\x05\x04\x03\x02\x01");
  EXPECT_EQ(std::string(bytes.data() + 4996, 4), "\x14\x13\x12\x11");
  const _Nerin_CONFIG back = configOf(bytes);
  EXPECT_EQ(std::memcmp(&back, &config, sizeof config), 0);
}

TEST(Records, WhatAShorterFileLacksIsZero) {
  const std::string bytes = "\x05";
  const _Nerin_CONFIG config = configOf(bytes);
  EXPECT_EQ(config.profileId, 5U);
  EXPECT_EQ(config.profile.poRate, 0U);
  EXPECT_EQ(configOf({}).profileId, 0U);
}

}  // namespace
