#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "Tests/CommandLine/TestHome.h"

// Macros on the command line.

namespace {

using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

TEST(NerinctlMacros, ImportUnderTheFilesName) {
  const TestHome user;
  EXPECT_EQ(user.json({"macros", "list"}), json::array());
  EXPECT_TRUE(user.lines({"macros", "list"}).empty());
  user.addMacro("Reload", clickMacro("Another name"));
  EXPECT_EQ(user.json({"macros", "list"}),
            json::array({{{"id", 1}, {"name", "Reload"}, {"events", 4}}}));
  EXPECT_THAT(user.lines({"macros", "list"}), ElementsAre("1  Reload  4 events"));
  EXPECT_EQ(user.json({"status"})["macros"], 1);
}

TEST(NerinctlMacros, ShowTheirEvents) {
  const TestHome user;
  MacroInfo macro = clickMacro("Reload");
  macro.setLoopTime(3);
  user.addMacro("Reload", macro);
  EXPECT_THAT(user.lines({"macros", "show", "Reload"}),
              ElementsAre("press R              50 ms", "release R", "press left button    20 ms",
                          "release left button"));
  const json shown = user.json({"macros", "show", "Reload"});
  EXPECT_EQ(shown["name"], "Reload");
  EXPECT_EQ(shown["loopTime"], 3);
  EXPECT_EQ(shown["steps"], 10);
  EXPECT_EQ(
      shown["events"][2],
      json({{"event", "press left button"}, {"keyCode", 120}, {"keyFlag", 3}, {"delay", 20}}));
}

TEST(NerinctlMacros, AreExportedRenamedAndDeleted) {
  const TestHome user;
  user.addMacro("Reload", clickMacro("Reload"));
  const json before = user.json({"macros", "show", "Reload"});
  EXPECT_THAT(user.lines({"macros", "export", "Reload", "Fire.mac"}),
              ElementsAre("exported Reload"));
  EXPECT_EQ(user.json({"macros", "export", "Reload", "Fire.mac"}),
            json({{"name", "Reload"}, {"file", "Fire.mac"}}));
  EXPECT_EQ(readFile(user.files / "Fire.mac").substr(0, 6), "bplist");
  user.prepare({"macros", "import", "Fire.mac"});
  json after = user.json({"macros", "show", "Fire"});
  EXPECT_EQ(after["id"], 2);
  EXPECT_EQ(after["events"], before["events"]);

  EXPECT_THAT(user.lines({"macros", "rename", "Fire", "M\xC3\xBCnchen"}),
              ElementsAre("renamed to M\xC3\xBCnchen"));
  EXPECT_EQ(user.json({"macros", "show", "M\xC3\xBCnchen"})["id"], 2);
  EXPECT_THAT(user.lines({"macros", "delete", "Reload"}), ElementsAre("deleted Reload"));
  EXPECT_EQ(user.json({"macros", "list"}),
            json::array({{{"id", 2}, {"name", "M\xC3\xBCnchen"}, {"events", 4}}}));
}

TEST(NerinctlMacros, LeaveTheRestOfTheirFileToTheLetter) {
  const TestHome user;
  user.prepare({"macros", "list"});
  const auto file = user.supportFolder() / "MenuInfo.xml";
  const std::string before = readFile(file);
  user.addMacro("Reload", clickMacro("Reload"));
  const std::string with = readFile(file);
  EXPECT_THAT(with, HasSubstr("Reload"));
  // Everything after the section of the macros.
  const auto rest = [](const std::string& text) {
    return text.substr(text.find("<KeyAssignMenu"));
  };
  EXPECT_EQ(rest(with), rest(before));
}

TEST(NerinctlMacros, AnswerFourForOneThatIsNotThere) {
  const TestHome user;
  user.addMacro("Reload", clickMacro("Reload"));
  const auto before = user.library();
  for (const Words& command : std::vector<Words>{{"macros", "show", "Fire"},
                                                 {"macros", "show", ""},
                                                 {"macros", "export", "Fire", "fire.mac"},
                                                 {"macros", "rename", "Fire", "Jump"},
                                                 {"macros", "delete", "Fire"}}) {
    expectComplaint(user.run(command), 4, "no such macro");
  }
  EXPECT_EQ(user.library(), before);
  EXPECT_FALSE(std::filesystem::exists(user.files / "fire.mac"));
}

TEST(NerinctlMacros, RefuseATakenOrImpossibleName) {
  const TestHome user;
  user.addMacro("Reload", clickMacro("Reload"));
  const auto before = user.library();
  expectComplaint(user.run({"macros", "import", "Reload.mac"}), 1, "already exists");
  for (const std::string& name : {std::string(), std::string("a\x1B[2J"), std::string("\xFF")}) {
    expectComplaint(user.run({"macros", "rename", "Reload", name}), 2);
  }
  EXPECT_EQ(user.library(), before);
}

TEST(NerinctlMacros, StopAtAHundred) {
  const TestHome user;
  user.prepare({"macros", "list"});
  const auto file = user.supportFolder() / "MenuInfo.xml";
  std::string text = readFile(file);
  std::string items = "<MacroList>";
  for (int id = 1; id <= 100; ++id) {
    items += "<Item title=\"M" + std::to_string(id) + "\" MacroID=\"" + std::to_string(id) + "\"/>";
  }
  const std::size_t section = text.find("<MacroList");
  ASSERT_NE(section, std::string::npos);
  const bool isEmpty = text.compare(text.find('>', section) - 1, 1, "/") == 0;
  text.replace(section, text.find('>', section) + 1 - section,
               items + (isEmpty ? "</MacroList>" : ""));
  writeFile(file, text);
  EXPECT_EQ(user.json({"macros", "list"}).size(), 100U);
  writeFile(user.files / "Reload.mac", "");
  MacroInfo macro = clickMacro("Reload");
  writeFile(user.files / "Reload.mac", keyedarchive::archive(macro));
  expectComplaint(user.run({"macros", "import", "Reload.mac"}), 1,
                  "Maximum number of macros reached");
  EXPECT_EQ(readFile(file), text);
}

}  // namespace
