#include <gmock/gmock.h>

#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Record/EditState.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class DeviceSettings : public ActionTest {
 protected:
  DeviceSettings() {
    NerinAction::startListenDev();
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      editState->currSetProfile().xSensArr[level] = 10 + level;
      editState->currSetProfile().ySensArr[level] = 0x120 + level;  // only the low byte is sent
    }
    for (std::uint32_t zone = 0; zone < zoneCount; ++zone) {
      editState->currSetProfile().lightColorArr[zone] = {0x140 + zone, 0x50 + zone, 0x60 + zone};
    }
    editState->currSetProfile().dpiLevel = 2;
    editState->currSetProfile().currSelectDPI = 1;
    editState->currSetProfile().liftHeight = 9;
  }

  // The value of a word in the table: a number, or the name of a field.
  static std::uint32_t valueOf(const nlohmann::json& word, std::size_t zone) {
    if (word.is_number()) {
      return word.get<std::uint32_t>();
    }
    const auto name = word.get<std::string>();
    const auto index = [&] { return static_cast<std::size_t>(name.at(9) - '0'); };
    const _LightColorInfo& color = editState->currSetProfile().lightColorArr[zone];
    if (name.starts_with("xSensArr[")) {
      return editState->currSetProfile().xSensArr[index()];
    }
    if (name.starts_with("ySensArr[")) {
      return editState->currSetProfile().ySensArr[index()];
    }
    if (name == "currSelectDPI") {
      return editState->currSetProfile().currSelectDPI;
    }
    if (name == "liftHeight") {
      return editState->currSetProfile().liftHeight;
    }
    if (name == "liftHeight|0x20") {
      return editState->currSetProfile().liftHeight | 0x20U;
    }
    if (name == "currSelectDPI + (dpiLevel*16 & 0xFF)") {
      return editState->currSetProfile().currSelectDPI +
             ((editState->currSetProfile().dpiLevel * 16) & 0xFFU);
    }
    if (name == "cR") {
      return color.cR;
    }
    if (name == "cG") {
      return color.cG;
    }
    EXPECT_EQ(name, "cB");
    return color.cB;
  }

  static std::string commandOf(const nlohmann::json& row, std::size_t zone) {
    if (row.is_string()) {
      EXPECT_EQ(row, "LED commit");
      return "c403030300000000";
    }
    const bool isSecond = row.at(0) == "second command";
    Bytes bytes{isSecond ? std::uint8_t{0xC5} : std::uint8_t{0xC4},
                isSecond ? std::uint8_t{0x00} : std::uint8_t{0x0F}};
    for (std::size_t at = isSecond ? 1 : 0; at < row.size(); ++at) {
      bytes.push_back(static_cast<std::uint8_t>(valueOf(row.at(at), zone)));
    }
    bytes.resize(8);
    return hexOf(bytes);
  }

  // Exactly the commands of the table, each followed by its pause.
  void expectSequence(const std::string& name) {
    std::vector<std::string> expected;
    std::size_t row = 0;
    for (const auto& entry : protocolTable("settings_sequences").at(name)) {
      expected.push_back("SET 0300 0 " + commandOf(entry, std::min(row++ / 3, zoneCount - 1)));
      expected.push_back("SLEEP 30");
    }
    EXPECT_EQ(trace(), expected);
    EXPECT_THAT(mouse().faults(), IsEmpty());
  }

  std::uint8_t imageByte(std::size_t at) { return mouse().imageReport(mouse().activeSlot())[at]; }
};

TEST_F(DeviceSettings, DpiAndLiftAreFourteenCommands) {
  EXPECT_TRUE(NerinAction::setSettingToDevice().isDone());
  EXPECT_EQ(sent().size(), 14U);
  expectSequence("setSettingToDevice");
}

TEST_F(DeviceSettings, AllFiveLevelsAreSentWhateverIsInUse) {
  EXPECT_TRUE(NerinAction::setSettingToDevice().isDone());
  for (std::size_t level = 0; level < levelCount; ++level) {
    EXPECT_EQ(imageByte(7 + 5 * level), 0x20 + level);
    EXPECT_EQ(imageByte(8 + 5 * level), 10 + level);
  }
  EXPECT_EQ(imageByte(6), 0x21);
  EXPECT_EQ(imageByte(5), 0x29);
}

TEST_F(DeviceSettings, ALevelCountPastItsNibbleIsTruncated) {
  editState->currSetProfile().dpiLevel = 19;
  editState->currSetProfile().currSelectDPI = 4;
  EXPECT_TRUE(NerinAction::setSettingToDevice().isDone());
  EXPECT_EQ(sent().at(10), "SET 0300 0 c40f000234000000");
}

TEST_F(DeviceSettings, EveryRateIsItsPowerOfTwo) {
  for (const auto& row : protocolTable("rate_table").at("rows")) {
    EXPECT_TRUE(NerinAction::setRateToDevice(row.at("poRate").get<std::uint32_t>()).isDone());
    EXPECT_EQ(imageByte(4), row.at("device").get<int>());
  }
  clearTrace();
  EXPECT_TRUE(NerinAction::setRateToDevice(0).isDone());
  EXPECT_EQ(imageByte(4), 8);
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c40f000008000000", "SLEEP 30", "SLEEP 30"));
  clearTrace();
  EXPECT_TRUE(NerinAction::setRateToDevice(3).isDone());
  EXPECT_THAT(trace(), ElementsAre("SET 0300 0 c40f000001000000", "SLEEP 30", "SLEEP 30"));
}

TEST_F(DeviceSettings, ARateThatDoesNotExistIsZero) {
  EXPECT_TRUE(NerinAction::setRateToDevice(4).isDone());
  EXPECT_EQ(imageByte(4), 0);
  EXPECT_TRUE(NerinAction::setRateToDevice(0xFFFFFFFF).isDone());
  EXPECT_EQ(imageByte(4), 0);
}

TEST_F(DeviceSettings, TheColorsAreSentWithoutTheModes) {
  library().setCurrFWProfileIndex(3);
  const std::uint8_t mode = imageByte(42);
  EXPECT_TRUE(NerinAction::setColorToDevice2().isDone());
  expectSequence("setColorToDevice2");
  EXPECT_EQ(editState->currSetProfileID(), 3U);
  EXPECT_EQ(imageByte(42), mode);
  EXPECT_EQ(imageByte(55), 0x43);
}

TEST_F(DeviceSettings, NormalModeHasItsOwnValueForZoneTwo) {
  editState->currSetProfile().modeType = 0;
  EXPECT_TRUE(NerinAction::setModelToDevice().isDone());
  expectSequence("setModelToDevice_normal");
}

TEST_F(DeviceSettings, BattleModeIsThreeEverywhere) {
  editState->currSetProfile().modeType = 1;
  EXPECT_TRUE(NerinAction::setModelToDevice().isDone());
  expectSequence("setModelToDevice_battle(modeType!=0)");
}

TEST_F(DeviceSettings, AnyModeButNormalIsBattleWhenSentAtOnce) {
  editState->currSetProfile().modeType = 2;
  EXPECT_TRUE(NerinAction::setModelToDevice().isDone());
  expectSequence("setModelToDevice_battle(modeType!=0)");
}

TEST_F(DeviceSettings, ColorsByMemoryAreSixteenWritesAndARefresh) {
  library().setCurrFWProfileIndex(2);
  editState->currSetProfile().modeType = 1;
  EXPECT_TRUE(NerinAction::setColorToDevice().isDone());
  std::vector<std::string> expected;
  const std::uint32_t base = 294 + 2 * 256;
  for (std::uint32_t at = 0; at < 16; ++at) {
    const _LightColorInfo& color = editState->currSetProfile().lightColorArr[at / 4];
    const std::uint32_t values[] = {3, color.cR, color.cG, color.cB};
    const std::uint32_t address = base + at;
    const Bytes bytes{0xDE,
                      static_cast<std::uint8_t>(address),
                      static_cast<std::uint8_t>(values[at % 4]),
                      static_cast<std::uint8_t>(address >> 8U),
                      0,
                      0,
                      0,
                      0};
    expected.push_back("SET 0300 0 " + hexOf(bytes));
    expected.push_back("SLEEP 30");
  }
  expected.push_back("SET 0300 0 c400000000000000");
  expected.push_back("SLEEP 30");
  EXPECT_EQ(trace(), expected);
  EXPECT_EQ(editState->currSetProfileID(), 2U);
  EXPECT_EQ(mouse().imageReport(2)[42], 3);
  EXPECT_EQ(mouse().imageReport(2)[57], 0x63);
}

TEST_F(DeviceSettings, ColorsByMemoryAreBattleOnlyForModeOne) {
  editState->currSetProfile().modeType = 2;
  EXPECT_TRUE(NerinAction::setColorToDevice().isDone());
  EXPECT_EQ(mouse().imageReport(0)[42], 1);
}

TEST_F(DeviceSettings, WithoutAMouseEndAtTheFirstReport) {
  mouse().detach();
  EXPECT_FALSE(NerinAction::setSettingToDevice().isDone());
  EXPECT_FALSE(NerinAction::setModelToDevice().isDone());
  EXPECT_FALSE(NerinAction::setColorToDevice2().isDone());
  EXPECT_EQ(std::count(trace().begin(), trace().end(), "SLEEP 30"), 0);
  EXPECT_THAT(mouse().transcript(), IsEmpty());
}

}  // namespace
