#include "Tests/Support/WireVectors.h"

#include <algorithm>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/JsonFixture.h"
#include "Tests/Support/SlotAsRead.h"

namespace {

Bytes bytesOfBase64(const std::string& text) {
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  Bytes bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char digit : text) {
    const auto value = digits.find(digit);
    if (value == std::string::npos) {
      break;
    }
    bits = (bits << 6U) | static_cast<unsigned>(value);
    count += 6;
    if (count >= 8) {
      count -= 8;
      bytes.push_back(static_cast<std::uint8_t>(bits >> static_cast<unsigned>(count)));
    }
  }
  return bytes;
}

WireVector vectorOf(const nlohmann::json& json) {
  WireVector vector{json.at("slot"),        json.at("name"),         bytesOfBase64(json.at("pro")),
                    json.at("name_report"), json.at("image_report"), {},
                    json.at("settings")};
  for (const auto& report : json.at("macro_reports")) {
    vector.macroReports.push_back({report.at("button"), report.at("report")});
  }
  return vector;
}

std::string readyToWrite(int slot, int button) {
  const int position = button > 13 ? button + 3 : button;
  return "0300 0 c40b" + hexOf(Bytes{static_cast<std::uint8_t>(slot * 19 + position)}) +
         "0100000000";
}

constexpr const char* refresh = "0300 0 c400000000000000";

}  // namespace

const std::vector<WireVector>& wireVectors() {
  static const std::vector<WireVector> vectors = [] {
    std::vector<WireVector> all;
    for (const auto& profile : jsonFixture("wire-vectors.json").at("profiles")) {
      all.push_back(vectorOf(profile));
    }
    return all;
  }();
  return vectors;
}

const std::vector<std::string>& factoryImages() {
  static const std::vector<std::string> images = [] {
    std::vector<std::string> all;
    for (const auto& profile : jsonFixture("factory-profiles.json").at("profiles")) {
      all.push_back(profile.at("expected_image_hex"));
    }
    return all;
  }();
  return images;
}

void WireVectorTest::takeMacros() {
  beginProgram();
  for (const auto& macro : jsonFixture("wire-vectors.json").at("macros")) {
    addMacro(macro.at("macroId"), macro.at("name"), macro.at("events").get<Events>())
        ->setLoopTime(macro.at("loopTime"));
  }
  NerinAction::refreshMenuList();
}

_Nerin_PROFILE WireVectorTest::load(const WireVector& vector) {
  EXPECT_EQ(vector.file.size(), 5264U);
  const auto path = home() / "vector.pro";
  writeText(path, {reinterpret_cast<const char*>(vector.file.data()), vector.file.size()});
  const auto profile = ProfileValue::initWithPath(path);
  EXPECT_EQ(profile->name(), vector.name);
  return profile->profileData();
}

void WireVectorTest::write(const WireVector& vector) {
  editState->edit() = load(vector);
  library().setCurrFWProfileName(vector.name);
  mouse().clearTranscript();
  EXPECT_TRUE(NerinAction::writeSlot(vector.slot).isDone());
}

std::vector<std::string> WireVectorTest::transfersToTheMouse() {
  std::vector<std::string> transfers;
  for (const TransferRecord& record : mouse().transcript()) {
    EXPECT_EQ(record.status, TransferStatus::Done);
    if (record.setup.requestType == 0x21) {
      const Bytes value{static_cast<std::uint8_t>(record.setup.value >> 8U),
                        static_cast<std::uint8_t>(record.setup.value)};
      transfers.push_back(hexOf(value) + ' ' + std::to_string(record.setup.index) + ' ' +
                          hexOf(record.data));
    }
  }
  return transfers;
}

void WireVectorTest::expectWritten(const WireVector& vector) {
  write(vector);
  std::vector<std::string> expected{"0306 1 " + vector.nameReport, refresh};
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (editState->selProfile().btnInfo[index].FuncTableId != 6) {
      continue;
    }
    expected.push_back(readyToWrite(vector.slot, index));
    const auto report =
        std::find_if(vector.macroReports.begin(), vector.macroReports.end(),
                     [&](const WireVector::MacroReport& item) { return item.button == index; });
    if (report != vector.macroReports.end()) {
      expected.push_back("0304 1 " + report->hex);
    }
  }
  expected.push_back("0305 1 " + vector.imageReport);
  expected.push_back(refresh);
  EXPECT_EQ(transfersToTheMouse(), expected);

  EXPECT_TRUE(mouse().faults().empty());
  EXPECT_EQ(hexOf(mouse().nameReport(vector.slot)), vector.nameReport);
  EXPECT_EQ(hexOf(mouse().imageReport(vector.slot)), vector.imageReport);
  for (const WireVector::MacroReport& report : vector.macroReports) {
    const int position = report.button > 13 ? report.button + 3 : report.button;
    const std::string held = hexOf(mouse().macroReport(vector.slot * 19 + position));
    EXPECT_EQ(held.substr(0, 2), "b0");
    EXPECT_EQ(held.substr(2), report.hex.substr(2));
  }
}

void WireVectorTest::expectReadBack(const WireVector& vector) {
  write(vector);
  const _Nerin_PROFILE expected = slotAsRead(vector.slot, editState->selProfile());
  std::vector<std::pair<int, MacroEvents>> macros;
  for (const WireVector::MacroReport& report : vector.macroReports) {
    const std::uint32_t id = editState->selProfile().btnInfo[report.button].MacroID;
    macros.emplace_back(report.button,
                        eventsAsRead(*NerinAction::getMacroById(static_cast<std::int32_t>(id))));
  }
  editState->edit() = {};
  EXPECT_TRUE(NerinAction::loadSlot(vector.slot).value);
  EXPECT_EQ(differenceOf(editState->selProfile(), expected), "");
  EXPECT_EQ(library().currFWProfileName(), vector.name.substr(0, 65));
  // If two buttons share a macro, or the mouse cuts two names to one, the last read wins.
  for (const auto& [button, events] : macros) {
    const std::uint32_t id = editState->selProfile().btnInfo[button].MacroID;
    const bool isReadLast = std::none_of(macros.begin(), macros.end(), [&](const auto& other) {
      return other.first > button && editState->selProfile().btnInfo[other.first].MacroID == id;
    });
    const auto macro = NerinAction::getMacroById(static_cast<std::int32_t>(id));
    ASSERT_NE(macro, nullptr);
    if (isReadLast) {
      EXPECT_EQ(eventsOf(*macro), events) << button;
    }
  }
}

void WireVectorTest::expectSettings(const WireVector& vector) {
  editState->currSetProfile() = load(vector);
  mouse().clearTranscript();
  EXPECT_TRUE(NerinAction::setSettingToDevice().isDone());
  std::vector<std::string> expected;
  for (const std::string& command : vector.settings) {
    expected.push_back("0300 0 " + command);
  }
  EXPECT_EQ(transfersToTheMouse(), expected);
  EXPECT_TRUE(mouse().faults().empty());
}

void WireVectorTest::expectFactoryProfile(int slot) {
  const std::string& image = factoryImages().at(static_cast<std::size_t>(slot));
  library().setCurrFWProfileIndex(slot);
  const auto factory = library().defaultProfile();
  ASSERT_NE(factory, nullptr);
  mouse().clearSlot(slot);
  editState->edit() = factory->profileData();
  library().setCurrFWProfileName(factory->name());
  mouse().clearTranscript();
  EXPECT_TRUE(NerinAction::writeSlot(slot).isDone());
  const auto transfers = transfersToTheMouse();
  ASSERT_EQ(transfers.size(), 4U);
  EXPECT_EQ(transfers[2], "0305 1 " + image);
  EXPECT_EQ(hexOf(mouse().imageReport(slot)), image);
  EXPECT_EQ(mouse().slotName(slot), "Profile#" + std::to_string(slot + 1));

  const _Nerin_PROFILE expected = slotAsRead(slot, editState->selProfile());
  EXPECT_TRUE(NerinAction::loadSlot(slot).value);
  EXPECT_EQ(differenceOf(editState->selProfile(), expected), "");
  const auto again =
      NerinAction::encodeProfileImage(static_cast<std::uint8_t>(slot), editState->selProfile(), {});
  EXPECT_EQ(hexOf(again), image);
}
