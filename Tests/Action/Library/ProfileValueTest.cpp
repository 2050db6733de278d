#include <cstring>
#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Library/ProfileValue.h"
#include "Tests/Support/ActionTest.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;

class ProfileFile : public ActionTest {
 protected:
  std::shared_ptr<ProfileValue> load(std::string_view bytes) {
    writeText(m_path, bytes);
    return ProfileValue::initWithPath(m_path);
  }

  std::string saved(ProfileValue& profile) {
    EXPECT_FALSE(profile.saveToPath(m_path));
    return textOfFile(m_path);
  }

  static bool isAllZero(const _Nerin_PROFILE& profile) {
    const _Nerin_PROFILE zero{};
    return std::memcmp(&profile, &zero, sizeof zero) == 0;
  }

  const fs::path m_path = home() / "Game.pro";
};

TEST_F(ProfileFile, ANewProfileIsAllZero) {
  ProfileValue profile;
  EXPECT_EQ(profile.profileId(), 0U);
  EXPECT_EQ(profile.name(), std::nullopt);
  EXPECT_EQ(profile.pathName(), std::nullopt);
  EXPECT_EQ(profile.activeAppPath(), std::nullopt);
  EXPECT_FALSE(profile.isDefault());
  EXPECT_FALSE(profile.isActiveApp());
  EXPECT_TRUE(isAllZero(profile.profileData()));
  EXPECT_EQ(saved(profile), std::string(5264, '\0'));
}

TEST_F(ProfileFile, WhatWasSavedIsLoaded) {
  ProfileValue profile;
  profile.setProfileId(0x0102030405060708);
  profile.setIsDefault(true);
  profile.setName("Sp\xC3\xA4ter");
  profile.setIsActiveApp(true);
  profile.setActiveAppPath("/usr/bin/game");
  _Nerin_PROFILE record{};
  auto* words = reinterpret_cast<unsigned char*>(&record);
  for (std::size_t at = 0; at < sizeof record; ++at) {
    words[at] = static_cast<unsigned char>(at * 31 + 7);
  }
  profile.setProfileData(record);
  EXPECT_EQ(saved(profile).size(), 5264U);

  const auto loaded = ProfileValue::initWithPath(m_path);
  ASSERT_NE(loaded, nullptr);
  EXPECT_EQ(loaded->profileId(), 0x0102030405060708U);
  EXPECT_TRUE(loaded->isDefault());
  EXPECT_EQ(loaded->name(), "Sp\xC3\xA4ter");
  EXPECT_TRUE(loaded->isActiveApp());
  EXPECT_EQ(loaded->activeAppPath(), "/usr/bin/game");
  EXPECT_EQ(loaded->pathName(), "Game.pro");
  EXPECT_EQ(std::memcmp(&loaded->profileData(), &record, sizeof record), 0);
}

TEST_F(ProfileFile, EveryFieldLiesAtItsOffset) {
  ProfileValue profile;
  profile.setProfileId(0x1122);
  profile.setIsDefault(true);
  profile.setName("Name");
  profile.setIsActiveApp(true);
  profile.setActiveAppPath("/app");
  _Nerin_PROFILE record{};
  record.btnInfo[0].FuncID = 0x33;
  record.poRate = 0x44;
  profile.setProfileData(record);
  const std::string bytes = saved(profile);
  EXPECT_EQ(bytes.substr(0, 9), std::string("\x22\x11\0\0\0\0\0\0\x01", 9));
  EXPECT_EQ(bytes.substr(9, 5), std::string("Name\0", 5));
  EXPECT_EQ(bytes[268], 0x33);
  EXPECT_EQ(bytes[4996], 0x44);
  EXPECT_EQ(bytes[5000], 1);
  EXPECT_EQ(bytes.substr(5001, 5), std::string("/app\0", 5));
}

TEST_F(ProfileFile, WithoutAFileThereIsNoProfile) {
  EXPECT_EQ(ProfileValue::initWithPath(m_path), nullptr);
  EXPECT_EQ(ProfileValue::initWithPath(""), nullptr);
}

TEST_F(ProfileFile, AnEmptyFileIsAnAllZeroProfile) {
  const auto profile = load("");
  ASSERT_NE(profile, nullptr);
  EXPECT_EQ(profile->profileId(), 0U);
  EXPECT_EQ(profile->name(), "");
  EXPECT_EQ(profile->pathName(), "Game.pro");
  EXPECT_TRUE(isAllZero(profile->profileData()));
}

TEST_F(ProfileFile, AFolderInItsPlaceIsNoProfile) {
  fs::create_directories(m_path);
  EXPECT_EQ(ProfileValue::initWithPath(m_path), nullptr);
}

TEST_F(ProfileFile, AShortFileIsZeroWhereItEnds) {
  const auto profile = load(profileBytes(7, "Game", 3).substr(0, 300));
  ASSERT_NE(profile, nullptr);
  EXPECT_EQ(profile->profileId(), 7U);
  EXPECT_EQ(profile->name(), "Game");
  EXPECT_EQ(profile->profileData().poRate, 0U);
}

TEST_F(ProfileFile, WhatALongerFileHasMoreIsPassedOver) {
  const auto profile = load(profileBytes(7, "Game", 3) + std::string(1000, 'x'));
  EXPECT_EQ(profile->profileId(), 7U);
  EXPECT_EQ(profile->profileData().poRate, 3U);
  EXPECT_EQ(profile->activeAppPath(), "");
  EXPECT_EQ(saved(*profile).size(), 5264U);
}

TEST_F(ProfileFile, ATextWithoutANulEndsWithItsField) {
  std::string bytes = profileBytes(1, "");
  bytes.replace(9, 256, std::string(256, 'n'));
  bytes.replace(5001, 256, std::string(256, 'p'));
  const auto profile = load(bytes);
  EXPECT_EQ(profile->name(), std::string(255, 'n'));
  EXPECT_EQ(profile->activeAppPath(), std::string(255, 'p'));
}

TEST_F(ProfileFile, ATextThatIsNoUtf8IsNone) {
  std::string bytes = profileBytes(1, "\xFF\xFE");
  bytes.replace(5001, 2, "\xC3(");
  const auto profile = load(bytes);
  EXPECT_EQ(profile->name(), std::nullopt);
  EXPECT_EQ(profile->activeAppPath(), std::nullopt);
  // Bytes that are not valid text survive, too.
  EXPECT_EQ(saved(*profile), bytes);
}

TEST_F(ProfileFile, ClearingTheLinkedProgramKeepsItsBytesInTheFile) {
  ProfileValue profile;
  profile.setIsActiveApp(true);
  profile.setActiveAppPath("/usr/bin/game");
  saved(profile);
  const auto loaded = ProfileValue::initWithPath(m_path);
  loaded->setIsActiveApp(false);
  loaded->setActiveAppPath("");
  std::string bytes = saved(*loaded);
  EXPECT_EQ(bytes[5000], 0);
  EXPECT_EQ(bytes.substr(5001, 14), std::string("/usr/bin/game\0", 14));
  loaded->setActiveAppPath(std::nullopt);
  bytes = saved(*loaded);
  EXPECT_EQ(bytes.substr(5001, 14), std::string("/usr/bin/game\0", 14));
}

TEST_F(ProfileFile, BytesWithoutAFieldSurvive) {
  std::string bytes = profileBytes(1, "A long name", 2);
  bytes[265] = 'p';
  bytes[267] = 'q';
  bytes[5263] = 'z';
  bytes[100] = 's';
  const auto profile = load(bytes);
  profile->setName("B");
  const std::string after = saved(*profile);
  EXPECT_EQ(after.substr(9, 11), std::string("B\0long name", 11));
  EXPECT_EQ(after[100], 's');
  EXPECT_EQ(after[265], 'p');
  EXPECT_EQ(after[267], 'q');
  EXPECT_EQ(after[5263], 'z');
}

TEST_F(ProfileFile, FlagsAreAnyNonZeroByte) {
  std::string bytes = profileBytes(1, "Game");
  bytes[8] = static_cast<char>(0x80);
  bytes[5000] = 2;
  const auto profile = load(bytes);
  EXPECT_TRUE(profile->isDefault());
  EXPECT_TRUE(profile->isActiveApp());
}

TEST_F(ProfileFile, ALongNameIsCutBetweenCharacters) {
  ProfileValue profile;
  profile.setName(std::string(254, 'n') + "\xC3\xA4");
  saved(profile);
  EXPECT_EQ(ProfileValue::initWithPath(m_path)->name(), std::string(254, 'n'));
}

TEST_F(ProfileFile, SettingTheRateTouchesNothingElse) {
  const std::string bytes = profileBytes(9, "Game", 1, true);
  const auto profile = load(bytes);
  profile->setProRate(0x01020304);
  std::string expected = bytes;
  expected.replace(4996, 4, "\x04\x03\x02\x01");
  EXPECT_EQ(saved(*profile), expected);
}

TEST_F(ProfileFile, IsReplacedWholeOrNotAtAll) {
  const auto profile = load(profileBytes(9, "Game"));
  const fs::path nowhere = home() / "missing" / "Game.pro";
  EXPECT_TRUE(profile->saveToPath(nowhere));
  EXPECT_FALSE(fs::exists(nowhere));
  EXPECT_FALSE(profile->saveToPath(m_path));
  EXPECT_THAT(namesIn(home()), ElementsAre("Game.pro"));
}

TEST_F(ProfileFile, RecordsAreTakenAndGivenByValue) {
  ProfileValue profile;
  _Nerin_PROFILE record{};
  record.poRate = 2;
  profile.setProfileData(record);
  record.poRate = 3;
  EXPECT_EQ(profile.profileData().poRate, 2U);
  _Nerin_CONFIG config{};
  config.isDefault = 1;
  profile.setConfigPro(config);
  config.isDefault = 0;
  EXPECT_EQ(profile.configPro().isDefault, 1);
  profile.setPathName("x.pro");
  EXPECT_EQ(profile.pathName(), "x.pro");
}

}  // namespace
