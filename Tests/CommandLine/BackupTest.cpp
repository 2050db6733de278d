#include <algorithm>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Wire/MacroImage.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/CommandLine/TestHome.h"
#include "Tests/Support/PrivateBus.h"

// Backing up the whole mouse to files, and restoring it.

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::ElementsAre;

// The complete content of the mouse's slots.
Lines reportsOf(const fs::path& mouseFile) {
  const VirtualMouse mouse(mouseFile);
  Lines reports;
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    reports.push_back(hex(mouse.nameReport(slot)));
    reports.push_back(hex(mouse.imageReport(slot)));
  }
  for (int slot = 0; slot < VirtualMouse::macroSlotCount; ++slot) {
    reports.push_back(hex(mouse.macroReport(slot)));
  }
  return reports;
}

// Keys, all mouse buttons that the mouse knows, short and long delays.
MacroInfo busyMacro(const std::string& name, int seed) {
  MacroInfo macro;
  macro.setNameStr(name);
  const auto add = [&](std::int32_t code, std::int32_t flag, std::int32_t delay) {
    macro.keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(code, flag, delay));
  };
  for (std::int32_t button = 120; button <= 126; ++button) {
    add(button, MacroKeyInfo::MousePress, seed);
    add(button, MacroKeyInfo::MouseRelease, 0);
  }
  for (std::int32_t key = 1; key <= 9; ++key) {
    add(key, MacroKeyInfo::KeyPress, key == 9 ? 65535 : key * 100);
    add(key, MacroKeyInfo::KeyRelease, 0);
  }
  return macro;
}

// Fills a slot with the reports that any host sends.
void fillSlot(VirtualMouse& mouse, int slot, const std::string& name, const ProfileValue& profile,
              const std::map<int, MacroInfo>& macros) {
  const _Nerin_PROFILE& record = profile.profileData();
  MouseHost::write(mouse, MouseHost::nameReport(slot, name));
  for (const auto& [button, macro] : macros) {
    const std::uint8_t macroSlot =
        NerinAction::macroSlotOf(static_cast<std::uint8_t>(slot), button);
    MouseHost::announceMacro(mouse, macroSlot);
    MouseHost::write(mouse, MouseHost::copyOf(NerinAction::encodeMacroReport(
                                macroSlot, NerinAction::streamOf(macro, record.btnInfo[button]))));
  }
  auto disabled = NerinAction::macroButtonsOf(record);
  for (const auto& [button, macro] : macros) {
    disabled.reset(static_cast<std::size_t>(button));
  }
  MouseHost::write(mouse, MouseHost::copyOf(NerinAction::encodeProfileImage(
                              static_cast<std::uint8_t>(slot), record, disabled)));
  ASSERT_THAT(mouse.faults(), testing::IsEmpty());
}

// Ten slots with no common values and twelve macros, some without a name.
void fillMouse(const fs::path& file) {
  VirtualMouse mouse(file);
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    const auto word = static_cast<std::uint32_t>(slot);
    ProfileValue profile = profileNamed("");
    _Nerin_PROFILE record = profile.profileData();
    record.poRate = word % 4;
    record.liftHeight = word * 3;
    record.modeType = word % 2;
    record.dpiLevel = 1 + word % 5;
    record.currSelectDPI = word % record.dpiLevel;
    record.xSensArr[0] = 2 + word;
    record.lightColorArr[2] = {word, 255 - word, 17 * word};
    profile.setProfileData(record);
    std::map<int, MacroInfo> macros;
    if (slot % 2 == 1) {
      setMacro(profile, 14, 1, 1 + word / 2 % 4, 200);
      macros[14] = busyMacro("M" + std::to_string(slot), slot + 1);
    }
    if (slot % 3 == 0) {
      setMacro(profile, word, 1, 2, 1 + 7 * word);
      // The program gives this name to a macro that has none in the mouse.
      macros[slot] = busyMacro(NerinAction::generatedMacroName, 65535 - slot);
    }
    if (slot == 5) {
      for (const std::size_t button : {8U, 9U, 10U}) {
        setMacro(profile, button, 1, 4);
        macros[static_cast<int>(button)] = busyMacro(std::string(21, 'x'), 1);
      }
    }
    const std::string name = slot == 4 ? std::string(65, 'n') : "Slot " + std::to_string(slot + 1);
    fillSlot(mouse, slot, name, profile, macros);
  }
}

TEST(NerinctlBackup, BringsTenSlotsWithTheirMacrosBackByteForByte) {
  const TestHome user;
  fillMouse(user.mouseFile);
  const Lines before = reportsOf(user.mouseFile);
  EXPECT_EQ(user.json({"backup", "kept"}),
            json({{"folder", "kept"}, {"slots", 10}, {"macros", 12}, {"notes", json::array()}}));

  fs::remove(user.mouseFile);
  user.prepare({"status"});
  EXPECT_NE(reportsOf(user.mouseFile), before);
  EXPECT_EQ(user.json({"restore", "kept"}),
            json({{"folder", "kept"}, {"slots", 10}, {"macros", 12}, {"notes", json::array()}}));
  EXPECT_EQ(reportsOf(user.mouseFile), before);
  // The backup does not touch the user's library.
  EXPECT_TRUE(user.json({"profiles", "list"}).empty());
  EXPECT_TRUE(user.json({"macros", "list"}).empty());
}

// Every byte of names, images and macros is noise; only their headers are right.
void fillWithNoise(const fs::path& file, unsigned seed) {
  std::mt19937 random(seed);
  const auto noise = [&](int id, int slot) {
    MouseHost::Bytes report(MouseHost::sizeOf(id));
    std::generate(report.begin(), report.end(),
                  [&] { return static_cast<std::uint8_t>(random() >> 8U); });
    report[0] = static_cast<std::uint8_t>(id);
    report[1] = 0;
    report[2] = static_cast<std::uint8_t>(slot);
    return report;
  };
  VirtualMouse mouse(file);
  for (int slot = 0; slot < VirtualMouse::slotCount; ++slot) {
    auto name = noise(6, slot);
    name[4] %= 66;
    MouseHost::write(mouse, MouseHost::sealed(name));
    auto image = noise(5, slot);
    for (const std::size_t button : {2U, 9U}) {
      constexpr std::size_t buttons = 58;
      constexpr std::uint8_t playMacro = 6;
      image[buttons + 5 * button] = playMacro;
      const auto macroSlot =
          NerinAction::macroSlotOf(static_cast<std::uint8_t>(slot), static_cast<int>(button));
      MouseHost::announceMacro(mouse, macroSlot);
      MouseHost::write(mouse, MouseHost::sealed(noise(4, macroSlot)));
    }
    MouseHost::write(mouse, MouseHost::sealed(image));
  }
  ASSERT_THAT(mouse.faults(), testing::IsEmpty());
}

TEST(NerinctlBackup, BringsEveryByteOfAnyMouseBack) {
  for (unsigned seed = 1; seed <= 2; ++seed) {
    const TestHome user;
    fillWithNoise(user.mouseFile, seed);
    const Lines before = reportsOf(user.mouseFile);
    user.prepare({"backup", "kept"});
    fs::remove(user.mouseFile);
    user.prepare({"status"});
    ASSERT_NE(reportsOf(user.mouseFile), before);
    const RunResult result = user.runWithMouse({"restore", "kept"});
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    EXPECT_EQ(linesOf(result.output).size(), 1U) << result.output;
    EXPECT_EQ(reportsOf(user.mouseFile), before);
  }
}

TEST(NerinctlBackup, FallsBackToTheProfileWhereTheBytesAreDamaged) {
  const TestHome user;
  fillMouse(user.mouseFile);
  user.prepare({"backup", "kept"});
  const fs::path file = user.files / "kept" / "slot-02.raw";
  const std::string whole = readFile(file);
  std::string flipped = whole;
  flipped[100] = static_cast<char>(flipped[100] ^ 1);
  for (const std::string& bytes : {std::string(), flipped}) {
    writeFile(file, bytes);
    const json answer = user.json({"restore", "kept"});
    ASSERT_EQ(answer["notes"].size(), 1U) << answer;
    EXPECT_THAT(answer["notes"][0].get<std::string>(),
                testing::StartsWith("slot 2: written from slot-02.pro, since slot-02.raw is "
                                    "damaged"));
    EXPECT_EQ(user.json({"read", "--slot", "2"})["name"], "Slot 2");
  }
  fs::remove(user.files / "kept" / "slot-02.pro");
  expectComplaint(user.runWithMouse({"restore", "kept"}), 1, "slot-02.raw is damaged");
}

TEST(NerinctlBackup, ThatFailsLeavesNothingBehind) {
  const TestHome user;
  fillMouse(user.mouseFile);
  for (const char* scenario : {"short", "random", "unplugged-after=5", "unplugged-after=60"}) {
    const RunResult result = user.runWithMouse({"--scenario", scenario, "backup", "kept"});
    EXPECT_NE(result.exitCode, 0) << scenario;
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(fs::exists(user.files / "kept")) << scenario;
  }
  fs::create_directories(user.files / "mine");
  EXPECT_NE(user.runWithMouse({"--scenario", "short", "backup", "mine"}).exitCode, 0);
  EXPECT_TRUE(fs::is_empty(user.files / "mine"));
}

TEST(NerinctlBackup, SaysWhichMacroTheMouseKeepsAgainstIt) {
  const TestHome user;
  ProfileValue profile = profileNamed("");
  setMacro(profile, 2, 1, 1);
  {
    VirtualMouse mouse(user.mouseFile);
    MouseHost::write(
        mouse, MouseHost::copyOf(NerinAction::encodeProfileImage(1, profile.profileData(), {})));
  }
  user.prepare({"backup", "kept"});
  {
    VirtualMouse mouse(user.mouseFile);
    fillSlot(mouse, 1, "Later", profile, {{2, busyMacro("M", 1)}});
  }
  EXPECT_THAT(user.lines({"restore", "kept"}),
              ElementsAre("10 slots and 0 macros are on the mouse again",
                          "slot 2, button 3: plays the macro that the mouse had there, since the "
                          "backup has none"));
}

TEST(NerinctlBackup, WritesFilesThatTheLibraryTakes) {
  const TestHome user;
  fillMouse(user.mouseFile);
  EXPECT_THAT(user.lines({"backup", "kept"}), ElementsAre("10 slots and 12 macros are in kept"));
  std::set<std::string> names;
  for (const auto& entry : fs::directory_iterator(user.files / "kept")) {
    names.insert(entry.path().filename().string());
  }
  EXPECT_EQ(names.size(), 32U);
  EXPECT_THAT(names, testing::IsSupersetOf({"slot-01.raw", "slot-10.raw", "slot-01.pro",
                                            "slot-10.pro", "slot-01-button-01.mac",
                                            "slot-06-button-11.mac", "slot-10-button-15.mac"}));
  EXPECT_EQ(user.json({"profiles", "import", "kept/slot-02.pro"})["name"], "Slot 2");
  user.prepare({"macros", "import", "kept/slot-02-button-15.mac"});
  EXPECT_EQ(user.json({"macros", "show", "slot-02-button-15"})["events"].size(), 32U);
}

TEST(NerinctlBackup, RefusesAFolderThatIsNotEmpty) {
  const TestHome user;
  fs::create_directories(user.files / "full");
  writeFile(user.files / "full" / "letter", "to keep");
  writeFile(user.files / "file", "to keep");
  expectComplaint(user.runWithMouse({"backup", "full"}), 1, "not empty");
  expectComplaint(user.runWithMouse({"backup", "file"}), 1, "not a folder");
  expectComplaint(user.runWithMouse({"backup", "file/below"}), 1, "cannot be made");
  EXPECT_EQ(readFile(user.files / "full" / "letter"), "to keep");
  EXPECT_EQ(readFile(user.files / "file"), "to keep");
}

// A backup of one slot with one macro, which is quick to restore.
class NerinctlRestore : public testing::Test {
 protected:
  void SetUp() override {
    ProfileValue profile = profileNamed("Kept");
    setMacro(profile, 8, 1, 1);
    fs::create_directories(folder);
    ASSERT_FALSE(profile.saveToPath(folder / "slot-05.pro"));
    writeFile(macroFile, keyedarchive::archive(clickMacro("Reload")));
    user.prepare({"profiles", "add", "Office"});
  }

  void expectNothingWritten(const std::string& complaint) {
    const auto library = user.library();
    const std::string memory = user.mouseMemory();
    expectComplaint(user.runWithMouse({"restore", folder.string()}), 1, complaint);
    EXPECT_EQ(user.library(), library);
    EXPECT_EQ(user.mouseMemory(), memory);
  }

  TestHome user;
  const std::string fromTheProfile =
      "slot 5: written from slot-05.pro, since slot-05.raw is missing; bytes that only the mouse "
      "knows are not restored";
  fs::path folder = user.files / "kept";
  fs::path macroFile = folder / "slot-05-button-09.mac";
};

TEST_F(NerinctlRestore, WritesTheSlotsThatTheFolderHas) {
  const std::string before = hex(VirtualMouse(user.mouseFile).imageReport(3));
  PrivateBus bus;
  RunSettings settings;
  settings.hasTerminal = true;
  settings.environment["DBUS_SESSION_BUS_ADDRESS"] = getenv("DBUS_SESSION_BUS_ADDRESS");
  const RunResult result = user.runWithMouse({"restore", folder.string()}, settings);
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_EQ(result.output, "1 slots and 1 macros are on the mouse again\n" + fromTheProfile + "\n");
  EXPECT_EQ(result.errors, "writing name\r\nwriting macro 1 of 1\r\nwriting image\r\n");
  const auto message = bus.nextNotification();
  ASSERT_TRUE(message);
  EXPECT_EQ(message->body, "s:101");
  const json slot = user.json({"read", "--slot", "5"});
  EXPECT_EQ(slot["name"], "Kept");
  EXPECT_EQ(slot["buttons"][8]["function"], "Macro Reload, once");
  EXPECT_EQ(hex(VirtualMouse(user.mouseFile).imageReport(3)), before);
}

TEST_F(NerinctlRestore, SaysWhichMacroTheBackupLacks) {
  fs::remove(macroFile);
  EXPECT_THAT(user.lines({"restore", folder.string()}),
              ElementsAre("1 slots and 0 macros are on the mouse again", fromTheProfile,
                          "slot 5, button 9: disabled, since the backup has no macro for it"));
  EXPECT_EQ(user.json({"read", "--slot", "5"})["buttons"][8]["type"], "disabled");
}

TEST_F(NerinctlRestore, ChecksEverythingBeforeItWrites) {
  ASSERT_FALSE(profileNamed("Other").saveToPath(folder / "slot-01.pro"));
  writeFile(macroFile, "no macro");
  expectNothingWritten("no macro file");
  writeFile(macroFile, "");
  expectNothingWritten("no macro file");
  fs::remove(macroFile);
  fs::create_directories(macroFile);
  expectNothingWritten("no macro file");
  fs::remove(macroFile);
  fs::resize_file(folder / "slot-05.pro", 5263);
  expectNothingWritten("no profile file");
  fs::remove(folder / "slot-05.pro");
  fs::create_directories(folder / "slot-05.pro");
  expectNothingWritten("a folder, not a file");
}

TEST_F(NerinctlRestore, RefusesAFolderWithoutABackup) {
  fs::remove_all(folder);
  expectNothingWritten("no such folder");
  fs::create_directories(folder);
  expectNothingWritten("no backup");
  writeFile(folder / "slot-11.pro", readFile(fs::path(NERIN_RESOURCES) / "Profile#1.pro"));
  expectNothingWritten("no backup");
  fs::remove_all(folder);
  writeFile(folder, "a file");
  expectNothingWritten("no such folder");
}

TEST(NerinctlBackup, NotesWhatNoFileCanHold) {
  const TestHome user;
  fillMouse(user.mouseFile);
  {
    VirtualMouse mouse(user.mouseFile);
    MouseHost::write(mouse, MouseHost::nameReport(0, "M\xC3\xBCnchen"));
    ProfileValue profile = profileNamed("");
    setMacro(profile, 2, 1, 1);
    // The image names a macro that was never written.
    auto image = MouseHost::copyOf(NerinAction::encodeProfileImage(1, profile.profileData(), {}));
    MouseHost::write(mouse, image);
  }
  EXPECT_THAT(user.lines({"backup", "kept"}),
              ElementsAre("10 slots and 11 macros are in kept",
                          "slot 1: its name is not ASCII and is left out of the profile file",
                          "slot 2, button 3: the mouse holds no macro for it"));
}

}  // namespace
