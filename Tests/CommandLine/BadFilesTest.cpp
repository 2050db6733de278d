#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "Tests/CommandLine/TestHome.h"

// Files with wrong content.

namespace {

namespace fs = std::filesystem;
using nlohmann::json;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

TEST(NerinctlFiles, ThatAreMissingOrFoldersAreNamed) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  user.addMacro("Reload", clickMacro("Reload"));
  const auto before = user.library();
  fs::create_directories(user.files / "folder");
  const std::string longName(300, 'x');
  for (const Words& command : std::vector<Words>{{"profiles", "import"}, {"macros", "import"}}) {
    const auto with = [&](const std::string& file) {
      return user.run({command[0], command[1], file});
    };
    expectComplaint(with("nowhere.pro"), 1, "no such file: nowhere.pro");
    expectComplaint(with("folder"), 1, "a folder, not a file: folder");
    expectComplaint(with(""), 1, "no such file");
    expectComplaint(with(longName), 1, "no such file");
    expectComplaint(with("evil\x1B[2J\nname"), 1, "no such file: evil?[2J?name");
  }
  expectComplaint(user.run({"show", "folder"}), 1, "a folder, not a file");
  expectComplaint(user.run({"show", longName}), 4, "no such profile or file");
  for (const std::string& target : {std::string("folder"), std::string("nowhere/file"), longName}) {
    expectComplaint(user.run({"profiles", "export", "Office", target}), 1, "could not be written");
    expectComplaint(user.run({"macros", "export", "Reload", target}), 1, "could not be written");
    expectComplaint(user.runWithMouse({"read", "--slot", "1", "--output", target}), 1,
                    "could not be written");
  }
  expectComplaint(user.run({"profiles", "import", "folder"}), 1, "Profile data destruction");
  EXPECT_EQ(user.library(), before);
  EXPECT_TRUE(fs::is_empty(user.files / "folder"));
}

TEST(NerinctlFiles, ThatAreNoProfilesOrMacrosAreRefused) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  const auto before = user.library();
  writeFile(user.files / "empty", "");
  writeFile(user.files / "text", "just a text");
  writeFile(user.files / "short", std::string(5263, '\0'));
  writeFile(user.files / "cut", keyedarchive::archive(clickMacro("Reload")).substr(0, 100));
  ASSERT_EQ(mkfifo((user.files / "pipe").c_str(), 0600), 0);
  for (const std::string& file : Words{"empty", "text", "short", "cut", "pipe", "/dev/zero"}) {
    expectComplaint(user.run({"profiles", "import", file}), 1,
                    "Profile data destruction: no profile file");
    expectComplaint(user.run({"show", file}), 1, "no profile file");
    expectComplaint(user.run({"macros", "import", file}), 1, "no macro file");
  }
  EXPECT_EQ(user.library(), before);
}

TEST(NerinctlFiles, FullOfNoiseAreImportedWithoutHarm) {
  const TestHome user;
  std::string noise(5264, '\0');
  unsigned state = 1;
  for (char& byte : noise) {
    state = state * 1103515245U + 12345U;
    byte = static_cast<char>(state >> 16U);
  }
  writeFile(user.files / "noise.pro", noise);
  user.prepare({"profiles", "import", "noise.pro"});
  const RunResult shown = user.run({"show", "noise.pro"});
  EXPECT_EQ(shown.exitCode, 0);
  expectHarmless(shown.output);
  const std::string name = user.json({"profiles", "list"})[0]["name"];
  user.prepare({"profiles", "rename", name, "Noise"});
  user.prepare({"apply", "Noise", "--slot", "3"});
  expectHarmless(user.run({"show", "Noise"}).output);
  EXPECT_EQ(user.json({"read", "--slot", "3"})["name"], "Noise");
}

TEST(NerinctlNames, OfFilesAndMiceDoNotSteerTheTerminal) {
  const TestHome user;
  // An escape sequence, a bell, a backspace, and a C1 escape (C2 9B).
  const std::string evil =
      "\x1B[2Jevil\x07\x08\x7F\xC2\x9B"
      "31m";
  // An import would spell the name in plain letters.
  fs::create_directories(user.profileFolder());
  ProfileValue named = profileNamed(evil);
  ASSERT_FALSE(named.saveToPath(user.profileFolder() / "evil.pro"));
  ProfileValue linked = profileNamed("Linked");
  linked.setIsActiveApp(true);
  linked.setActiveAppPath(evil);
  _Nerin_PROFILE record = linked.profileData();
  record.btnInfo[0].btnType = ButtonTypeLaunch;
  setText(record.btnInfo[0].app_path, "/bin/" + evil);
  linked.setProfileData(record);
  user.addProfile(linked);
  user.addMacro("Reload", clickMacro("Reload"));
  const fs::path catalogue = user.supportFolder() / "MenuInfo.xml";
  std::string text = readFile(catalogue);
  text.replace(text.find("\"Reload\""), 8, "\"&#27;[2J&#155;macro\"");
  writeFile(catalogue, text);
  {
    VirtualMouse mouse(user.mouseFile);
    MouseHost::write(mouse, MouseHost::nameReport(0, "\x1B[2Jslot"));
  }
  const std::string macro = user.json({"macros", "list"})[0]["name"];
  for (const bool isJson : {false, true}) {
    for (Words command : std::vector<Words>{{"profiles", "list"},
                                            {"show", evil},
                                            {"show", "Linked"},
                                            {"profiles", "copy", evil},
                                            {"profiles", "export", evil, evil},
                                            {"macros", "list"},
                                            {"macros", "show", macro},
                                            {"macros", "export", macro, evil},
                                            {"status"},
                                            {"slots"},
                                            {"read", "--slot", "1"}}) {
      if (isJson) {
        command.insert(command.begin(), "--json");
      }
      const RunResult result = user.runWithMouse(command);
      EXPECT_EQ(result.exitCode, 0) << result.errors;
      EXPECT_NE(result.output, "");
      expectHarmless(result.output);
      expectHarmless(result.errors);
    }
  }
  EXPECT_EQ(user.json({"show", evil})["name"], evil);
  user.prepare({"profiles", "copy", evil});
  const std::string copied = user.json({"profiles", "list"}).back()["name"];
  const RunResult applied = user.runWithMouse({"apply", copied, "--slot", "2"});
  EXPECT_EQ(applied.exitCode, 0) << applied.errors;
  expectHarmless(applied.output);
  expectHarmless(applied.errors);
  expectHarmless(VirtualMouse(user.mouseFile).slotName(1));
  const RunResult deleted = user.run({"profiles", "delete", evil});
  EXPECT_EQ(deleted.output, "deleted ?[2Jevil????31m\n");
}

TEST(NerinctlVirtualMouse, KeepsItsHandsOffAFileThatIsNoMemory) {
  const TestHome user;
  user.prepare({"profiles", "list"});
  const auto before = user.library();
  const fs::path file = user.files / "letter";
  const fs::path folder = user.files / "folder";
  fs::create_directories(folder);
  for (const std::string& contents :
       {std::string("to keep"), std::string(500000, 'x'), std::string()}) {
    writeFile(file, contents);
    expectComplaint(user.run({"--virtual", file.string(), "status"}), 1,
                    "is not the memory of a virtual mouse");
    EXPECT_EQ(readFile(file), contents);
  }
  expectComplaint(user.run({"--virtual", folder.string(), "status"}), 1, "cannot be used");
  expectComplaint(user.run({"--virtual", "nowhere/mouse", "status"}), 1, "cannot be used");
  expectComplaint(user.run({"--virtual", "", "status"}), 1, "cannot be used");
  EXPECT_EQ(user.library(), before);
}

TEST(NerinctlVirtualMouse, IsUsedBySeveralPrograms) {
  const TestHome user;
  VirtualMouse mouse(user.mouseFile);
  user.prepare({"switch", "4"});
  mouse.refresh();
  EXPECT_EQ(mouse.activeSlot(), 3);
}

TEST(NerinctlTrace, ThatCannotBeWrittenStopsEverything) {
  const TestHome user;
  user.prepare({"profiles", "add", "Office"});
  user.prepare({"status"});
  const auto before = user.library();
  const std::string memory = user.mouseMemory();
  for (const std::string& file :
       {user.files.string(), std::string("nowhere/trace"), std::string()}) {
    expectComplaint(user.runWithMouse({"--trace", file, "apply", "Office", "--slot", "2"}), 1,
                    "the trace cannot be written");
  }
  EXPECT_EQ(user.library(), before);
  EXPECT_EQ(user.mouseMemory(), memory);
}

TEST(NerinctlTrace, DoesNotOverwriteTheMouse) {
  const TestHome user;
  expectComplaint(user.runWithMouse({"--trace", user.mouseFile.string(), "status"}), 2,
                  "overwrite the virtual mouse");
  EXPECT_EQ(user.json({"status"})["activeSlot"], 1);
}

TEST(NerinctlOutput, ThatIsClosedDoesNotEndUpInAFile) {
  const TestHome user;
  user.prepare({"slots"});
  const std::string before = user.mouseMemory();
  RunSettings settings;
  settings.hasOutput = false;
  expectComplaint(user.runWithMouse({"slots"}, settings), 1, "the answer could not be written");
  EXPECT_EQ(user.mouseMemory(), before);
}

class NerinctlDamagedFiles : public testing::Test {
 protected:
  void SetUp() override {
    user.addMacro("Reload", clickMacro("Reload"));
    ProfileValue office = profileNamed("Office");
    setMacro(office, 3, 1, 1);
    user.addProfile(office);
    user.prepare({"apply", "Office", "--slot", "1"});
  }

  TestHome user;
};

TEST_F(NerinctlDamagedFiles, MenuInfoIsRepairedWithItsMacros) {
  const fs::path file = user.supportFolder() / "MenuInfo.xml";
  const std::string whole = readFile(file);
  const std::string damaged = whole.substr(0, whole.size() / 2);
  writeFile(file, damaged);
  const std::string memory = user.mouseMemory();
  const RunResult result = user.run({"macros", "list"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, HasSubstr("Reload"));
  EXPECT_THAT(result.errors, HasSubstr("nerinctl: warning: "));
  EXPECT_THAT(result.errors, HasSubstr("was kept as"));
  EXPECT_EQ(readFile(file.string() + ".broken"), damaged);
  EXPECT_EQ(user.run({"macros", "list"}).errors, "");
  user.prepare({"apply", "Office", "--slot", "1"});
  EXPECT_EQ(user.mouseMemory(), memory);
}

TEST_F(NerinctlDamagedFiles, MenuInfoWithoutMacrosIsReplaced) {
  const fs::path file = user.supportFolder() / "MenuInfo.xml";
  for (const std::string& contents : {std::string(), std::string("\0\xFF", 2)}) {
    writeFile(file, contents);
    EXPECT_EQ(user.json({"macros", "list"}), json::array());
    EXPECT_EQ(user.json({"read", "--slot", "1"})["name"], "Office");
  }
}

TEST_F(NerinctlDamagedFiles, TooltipIsReplaced) {
  const json before = user.json({"read", "--slot", "1"});
  const fs::path file = user.supportFolder() / "Tooltip.xml";
  const std::string whole = readFile(file);
  for (const std::string& contents :
       {whole.substr(0, 500), std::string(), std::string("\0\xFF", 2)}) {
    writeFile(file, contents);
    EXPECT_EQ(user.json({"read", "--slot", "1"}), before);
    EXPECT_EQ(readFile(file), whole);
  }
}

TEST_F(NerinctlDamagedFiles, PreferencesAreSetAside) {
  const std::string damaged = "<plist><dict><key>Service";
  writeFile(user.preferences(), damaged);
  EXPECT_EQ(user.json({"status"})["name"], "Office");
  EXPECT_EQ(readFile(user.preferences()), damaged);
  user.prepare({"apply", "Office", "--slot", "2"});
  EXPECT_THAT(readFile(user.preferences()), HasSubstr("LinkApp"));
  EXPECT_EQ(readFile(user.preferences().string() + ".broken"), damaged);
}

TEST_F(NerinctlDamagedFiles, ProfilesOfTheLibraryStopNobody) {
  writeFile(user.profileFolder() / "cut.pro", std::string(100, 'x'));
  writeFile(user.profileFolder() / "empty.pro", "");
  fs::create_directories(user.profileFolder() / "folder.pro");
  const json list = user.json({"profiles", "list"});
  EXPECT_THAT(list, Not(IsEmpty()));
  EXPECT_EQ(user.json({"show", "Office"})["name"], "Office");
  expectHarmless(user.run({"profiles", "list"}).output);
}

}  // namespace
