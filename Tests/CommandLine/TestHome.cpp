#include "Tests/CommandLine/TestHome.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Kit/Core/LXAction.h"

namespace fs = std::filesystem;

using testing::HasSubstr;
using testing::StartsWith;

namespace {

// The lines of standard error that say more than a warning.
Lines complaintsOf(const RunResult& result) {
  Lines errors = linesOf(result.errors);
  std::erase_if(errors,
                [](const std::string& line) { return line.starts_with("nerinctl: warning: "); });
  return errors;
}

}  // namespace

TestHome::TestHome()
    : home(m_folder.folder() / "home"),
      mouseFile(m_folder.folder() / "mouse"),
      files(m_folder.folder() / "files") {
  fs::create_directories(home);
  fs::create_directories(files);
}

RunResult TestHome::run(const Words& arguments, RunSettings settings) const {
  if (settings.home.empty()) {
    settings.home = home;
  }
  settings.workingFolder = files;
  return runProgram(arguments, settings);
}

RunResult TestHome::runWithMouse(const Words& arguments, const RunSettings& settings) const {
  Words words{"--virtual", mouseFile.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  return run(words, settings);
}

RunResult TestHome::run(const Words& arguments) const {
  return run(arguments, {});
}

RunResult TestHome::runWithMouse(const Words& arguments) const {
  return runWithMouse(arguments, {});
}

nlohmann::json TestHome::json(const Words& arguments) const {
  Words words{"--json"};
  words.insert(words.end(), arguments.begin(), arguments.end());
  const RunResult result = runWithMouse(words);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_THAT(complaintsOf(result), testing::IsEmpty());
  auto document = nlohmann::json::parse(result.output, nullptr, false);
  EXPECT_FALSE(document.is_discarded()) << result.output;
  return document;
}

Lines TestHome::lines(const Words& arguments) const {
  const RunResult result = runWithMouse(arguments);
  EXPECT_EQ(result.exitCode, 0) << result.errors;
  EXPECT_EQ(result.errors, "");
  return linesOf(result.output);
}

void TestHome::prepare(const Words& arguments) const {
  const RunResult result = runWithMouse(arguments);
  ASSERT_EQ(result.exitCode, 0) << result.errors;
}

Lines TestHome::trace(const Words& arguments) const {
  const fs::path file = files / "trace";
  Words words{"--trace", file.string()};
  words.insert(words.end(), arguments.begin(), arguments.end());
  prepare(words);
  return linesOf(readFile(file));
}

std::map<std::string, std::string> TestHome::library() const {
  std::map<std::string, std::string> contents;
  for (const auto& entry : fs::recursive_directory_iterator(home)) {
    // The lock file is not the user's data.
    if (entry.is_regular_file() && entry.path().filename() != ".lock") {
      contents[entry.path().string()] = readFile(entry.path());
    }
  }
  return contents;
}

std::string TestHome::mouseMemory() const {
  return readFile(mouseFile);
}

UserFolders TestHome::folders() const {
  return UserFolders::inXdg(home / ".local/share", home / ".config", home / ".local/state",
                            "com.corvex.NerinOption");
}

void TestHome::addProfile(ProfileValue profile) const {
  const fs::path file = files / "added.pro";
  ASSERT_FALSE(profile.saveToPath(file));
  prepare({"profiles", "import", file.string()});
}

void TestHome::addMacro(const std::string& name, const MacroInfo& macro) const {
  const fs::path file = files / (name + ".mac");
  ASSERT_TRUE(LXAction::SaveObject(macro, file));
  prepare({"macros", "import", file.string()});
}

void expectComplaint(const RunResult& result, int exitCode, const std::string& part) {
  EXPECT_EQ(result.exitCode, exitCode) << result.errors;
  EXPECT_EQ(result.output, "");
  const Lines errors = complaintsOf(result);
  ASSERT_EQ(errors.size(), 1U) << result.errors;
  EXPECT_THAT(errors[0], StartsWith("nerinctl: "));
  EXPECT_THAT(errors[0], HasSubstr(part));
  expectHarmless(result.errors);
}

void expectHarmless(const std::string& text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool isControl = (byte < 0x20U && byte != '\n') || byte == 0x7FU;
    const bool isSecondPage =
        byte == 0xC2U && i + 1 < text.size() && static_cast<unsigned char>(text[i + 1]) < 0xA0U;
    EXPECT_FALSE(isControl || isSecondPage) << "at " << i << " of " << hex(text);
  }
}

ProfileValue profileNamed(const std::string& name) {
  ProfileValue profile = *ProfileValue::initWithPath(fs::path(NERIN_RESOURCES) / "Profile#1.pro");
  profile.setName(name);
  profile.setIsDefault(false);
  return profile;
}

void setMacro(ProfileValue& profile, std::size_t button, std::uint32_t macroId, std::uint32_t mode,
              std::uint32_t count) {
  _Nerin_PROFILE record = profile.profileData();
  _BTN_INFO& info = record.btnInfo[button];
  info = {};
  info.FuncID = 6;
  info.FuncTableId = 6;
  info.btnType = ButtonTypeMacro;
  info.KeyBit[0] = mode;
  info.KeyBit[1] = count;
  info.MacroID = macroId;
  profile.setProfileData(record);
}

MacroInfo clickMacro(const std::string& name) {
  constexpr std::int32_t keyR = 15;
  constexpr std::int32_t leftButton = 120;
  MacroInfo macro;
  macro.setNameStr(name);
  macro.setKeyInfoArr({std::make_shared<MacroKeyInfo>(keyR, MacroKeyInfo::KeyPress, 50),
                       std::make_shared<MacroKeyInfo>(keyR, MacroKeyInfo::KeyRelease, 0),
                       std::make_shared<MacroKeyInfo>(leftButton, MacroKeyInfo::MousePress, 20),
                       std::make_shared<MacroKeyInfo>(leftButton, MacroKeyInfo::MouseRelease, 0)});
  return macro;
}

std::string readFile(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void writeFile(const fs::path& path, const std::string& bytes) {
  std::ofstream(path, std::ios::binary) << bytes;
}

Lines linesOf(const std::string& text) {
  Lines lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) {
    lines.push_back(line);
  }
  return lines;
}
