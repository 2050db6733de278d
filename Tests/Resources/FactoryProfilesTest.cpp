#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <stdlib.h>
#include <sys/wait.h>

// The ten factory profiles, read by offset and independently of the records that wrote them.

#include "Tests/Support/Scratch.h"

namespace {

using Json = nlohmann::json;
using Bytes = std::vector<unsigned char>;
namespace fs = std::filesystem;

constexpr std::size_t profileOffset = 268;

Json fixture() {
  std::ifstream stream(NERIN_FIXTURES "/factory-profiles.json");
  return Json::parse(stream);
}

Json shippedSource() {
  std::ifstream stream(FACTORY_PROFILES_SOURCE);
  return Json::parse(stream, nullptr, true, true);
}

Bytes contents(const fs::path& path) {
  std::ifstream stream(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(stream), {}};
}

std::uint32_t word(const Bytes& file, std::size_t offset) {
  return file.at(offset) | std::uint32_t{file.at(offset + 1)} << 8 |
         std::uint32_t{file.at(offset + 2)} << 16 | std::uint32_t{file.at(offset + 3)} << 24;
}

// Word `index` of the profile record in the file.
std::uint32_t profileWord(const Bytes& file, std::size_t index) {
  return word(file, profileOffset + 4 * index);
}

std::vector<std::uint32_t> profileWords(const Bytes& file, std::size_t index, std::size_t count) {
  std::vector<std::uint32_t> words;
  for (std::size_t offset = 0; offset < count; ++offset) {
    words.push_back(profileWord(file, index + offset));
  }
  return words;
}

class FactoryProfiles : public testing::TestWithParam<std::size_t> {
 protected:
  const Json m_fixture = fixture();
  const Json m_expected = m_fixture.at("profiles").at(GetParam());
  const std::string m_name = m_fixture.at("files").at(GetParam()).get<std::string>();
  const Bytes m_file = contents(fs::path(NERIN_RESOURCES) / m_name);

  void SetUp() override { ASSERT_EQ(m_file.size(), 5264U) << m_name; }
};

INSTANTIATE_TEST_SUITE_P(OneToTen, FactoryProfiles,
                         testing::Range(std::size_t{0}, std::size_t{10}));

TEST_P(FactoryProfiles, CarryTheirIdAndName) {
  EXPECT_EQ(word(m_file, 0), m_expected.at("profileId").get<std::uint32_t>());
  EXPECT_EQ(word(m_file, 4), 0U);
  EXPECT_EQ(m_file[8], 1);
  const std::string name(reinterpret_cast<const char*>(m_file.data() + 9));
  EXPECT_EQ(name, m_expected.at("profileName").get<std::string>());
  EXPECT_EQ(name + ".pro", m_name);
}

TEST_P(FactoryProfiles, AreLinkedToNoApplication) {
  EXPECT_TRUE(
      std::all_of(m_file.begin() + 5000, m_file.end(), [](auto byte) { return byte == 0; }));
}

TEST_P(FactoryProfiles, HoldTheSixteenButtons) {
  const Json& buttons = m_fixture.at("buttons");
  ASSERT_EQ(buttons.size(), 16U);
  for (const Json& button : buttons) {
    const auto index = button.at("index").get<std::size_t>();
    const std::size_t start = 72 * index;
    SCOPED_TRACE(button.at("function").get<std::string>());
    EXPECT_EQ(profileWord(m_file, start), button.at("FuncID").get<std::uint32_t>());
    EXPECT_EQ(profileWord(m_file, start + 1), button.at("FuncTableId").get<std::uint32_t>());
    EXPECT_EQ(profileWord(m_file, start + 2), button.at("btnType").get<std::uint32_t>());
    EXPECT_EQ(profileWords(m_file, start + 3, 4),
              button.at("KeyBit").get<std::vector<std::uint32_t>>());
    EXPECT_EQ(profileWords(m_file, start + 7, 64), std::vector<std::uint32_t>(64, 0));
    EXPECT_EQ(profileWord(m_file, start + 71), button.at("MacroID").get<std::uint32_t>());
  }
}

TEST_P(FactoryProfiles, HoldTheSettings) {
  using Words = std::vector<std::uint32_t>;
  const Json& common = m_fixture.at("common");
  EXPECT_EQ(profileWord(m_file, 1152), common.at("modeType").get<std::uint32_t>());
  EXPECT_EQ(profileWords(m_file, 1153, 4), common.at("islightOnArr").get<Words>());
  EXPECT_EQ(profileWord(m_file, 1169), common.at("dpiLevel").get<std::uint32_t>());
  EXPECT_EQ(profileWord(m_file, 1170), common.at("currSelectDPI").get<std::uint32_t>());
  EXPECT_EQ(profileWords(m_file, 1171, 5), common.at("xSensArr").get<Words>());
  EXPECT_EQ(profileWords(m_file, 1176, 5), common.at("ySensArr").get<Words>());
  EXPECT_EQ(profileWord(m_file, 1181), common.at("liftHeight").get<std::uint32_t>());
  EXPECT_EQ(profileWord(m_file, 1182), common.at("poRate").get<std::uint32_t>());
}

TEST_P(FactoryProfiles, ShineInOneColorInAllZones) {
  const auto color = m_expected.at("lightColor_all_zones").get<std::vector<std::uint32_t>>();
  for (std::size_t zone = 0; zone < 4; ++zone) {
    EXPECT_EQ(profileWords(m_file, 1157 + 3 * zone, 3), color) << "zone " << zone;
  }
}

// Runs the tool on a source of the test.
class FactoryProfilesTool : public testing::Test {
 protected:
  Scratch m_folder;
  std::string m_output;

  // Returns the exit code. The output is in m_output, the written files in m_folder / "out".
  int run(const fs::path& source) {
    const std::string command = std::string("'" FACTORY_PROFILES_TOOL "' '") + source.string() +
                                "' '" + (m_folder / "out").string() + "' 2>&1";
    m_output.clear();
    FILE* pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) {
      return -1;
    }
    std::array<char, 256> line{};
    while (fgets(line.data(), line.size(), pipe) != nullptr) {
      m_output += line.data();
    }
    const int status = pclose(pipe);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  int runOnText(const std::string& text) {
    const fs::path source = m_folder / "source.json";
    std::ofstream(source) << text;
    return run(source);
  }

  void expectRefused(const Json& source, const std::string& reason) {
    EXPECT_EQ(runOnText(source.dump()), 1) << reason;
    EXPECT_NE(m_output.find(reason), std::string::npos) << m_output;
    EXPECT_FALSE(fs::exists(m_folder / "out"));
  }
};

TEST_F(FactoryProfilesTool, WritesTenFilesAndNothingElse) {
  ASSERT_EQ(runOnText(shippedSource().dump()), 0) << m_output;
  std::size_t count = 0;
  for (const auto& entry : fs::directory_iterator(m_folder / "out")) {
    ++count;
    EXPECT_EQ(contents(entry.path()),
              contents(fs::path(NERIN_RESOURCES) / entry.path().filename()));
  }
  EXPECT_EQ(count, 10U);
}

TEST_F(FactoryProfilesTool, RefusesAMissingKey) {
  Json source = shippedSource();
  source["settings"].erase("poRate");
  expectRefused(source, "settings has no \"poRate\"");

  source = shippedSource();
  source["buttons"][3].erase("KeyBit");
  expectRefused(source, "buttons[3] has no \"KeyBit\"");

  source = shippedSource();
  source.erase("lightColors");
  expectRefused(source, "the source has no \"lightColors\"");
}

TEST_F(FactoryProfilesTool, RefusesAValueOutOfRange) {
  Json source = shippedSource();
  source["settings"]["currSelectDPI"] = 5;
  expectRefused(source, "settings.currSelectDPI is 5, not a whole number from 0 to 4");

  source = shippedSource();
  source["settings"]["xSensArr"][4] = 165;
  expectRefused(source, "settings.xSensArr[4] is 165, not a whole number from 2 to 164");

  source = shippedSource();
  source["buttons"][15]["KeyBit"][0] = -1;
  expectRefused(source, "buttons[15].KeyBit[0] is -1");

  source = shippedSource();
  source["lightColors"][9][2] = 256;
  expectRefused(source, "lightColors[9][2] is 256");
}

TEST_F(FactoryProfilesTool, RefusesAValueOfTheWrongKind) {
  Json source = shippedSource();
  source["settings"]["poRate"] = "3";
  expectRefused(source, "settings.poRate is \"3\"");

  source = shippedSource();
  source["buttons"][0] = 7;
  expectRefused(source, "buttons[0] is not an object");
}

TEST_F(FactoryProfilesTool, RefusesAListOfTheWrongLength) {
  Json source = shippedSource();
  source["buttons"].erase(0);
  expectRefused(source, "buttons is not a list of 16");

  source = shippedSource();
  source["lightColors"].push_back({1, 2, 3});
  expectRefused(source, "lightColors is not a list of 10");
}

TEST_F(FactoryProfilesTool, RefusesASourceThatIsNoJson) {
  EXPECT_EQ(runOnText("{ \"settings\": "), 1);
  EXPECT_NE(m_output.find("parse error"), std::string::npos) << m_output;
  EXPECT_FALSE(fs::exists(m_folder / "out"));
}

TEST_F(FactoryProfilesTool, SaysThatTheSourceIsMissing) {
  EXPECT_EQ(run(m_folder / "nowhere.json"), 1);
  EXPECT_NE(m_output.find("cannot read"), std::string::npos) << m_output;
}

TEST_F(FactoryProfilesTool, SaysThatItCannotWrite) {
  fs::create_directories(m_folder / "out" / "Profile#4.pro");
  EXPECT_EQ(run(FACTORY_PROFILES_SOURCE), 1);
  EXPECT_NE(m_output.find("cannot write"), std::string::npos) << m_output;
  EXPECT_NE(m_output.find("Profile#4.pro"), std::string::npos) << m_output;
}

}  // namespace
