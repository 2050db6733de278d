// The catalogues of the support folder when they are damaged, older than the program, or cannot be
// written.

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>
#include <tuple>

#include <gmock/gmock.h>

#include "Action/NerinAction.h"
#include "Action/Texts/CatalogueUpdate.h"
#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/DurableFile.h"
#include "Tests/Support/ActionTest.h"

namespace {

namespace fs = std::filesystem;

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

class UserCatalogue : public ActionTest {
 protected:
  ~UserCatalogue() override { durable::setFaultInjector({}); }

  fs::path menus() const { return supportFolder() / "MenuInfo.xml"; }
  fs::path texts() const { return supportFolder() / "Tooltip.xml"; }

  void start() {
    endProgram();
    NerinAction::bringCataloguesUpToDate();
    NerinAction::initMenuList();
    NerinAction::refreshMenuList();
  }

  // A catalogue with the macros Copy and Paste, as the program writes it.
  std::string withTwoMacros() {
    start();
    NerinAction::addMacorByName("Copy")->keyInfoArr().push_back(
        std::make_shared<MacroKeyInfo>(8, 0, 20));
    NerinAction::addMacorByName("Paste");
    EXPECT_TRUE(NerinAction::saveMenuList());
    return textOfFile(menus());
  }

  static std::vector<std::string> macroNames() {
    std::vector<std::string> names;
    for (const auto& macro : NerinAction::macroStore->macroListArrs) {
      names.push_back(macro->nameStr().value_or(""));
    }
    return names;
  }

  static std::string leftClick() { return NerinAction::getSingleNameById(1).value_or(""); }
  static std::string tooltip(const std::string& key) {
    return TooltipManager::shareTooltipManager().getTooltip(key).value_or("");
  }

  // Lets the program come with other catalogues than it does.
  void ship(const std::string& menuInfo, const std::string& tooltip) {
    fs::create_directories(home() / "resources");
    writeText(home() / "resources/MenuInfo.xml", menuInfo);
    writeText(home() / "resources/Tooltip.xml", tooltip);
    setResourceFolder(home() / "resources");
  }
};

TEST_F(UserCatalogue, ADamagedOneIsRepairedAndKeptBesideWhereverItWasCut) {
  const std::string whole = withTwoMacros();
  const std::size_t copyEnds = whole.find("</Item>") + 7;
  const std::size_t pasteEnds = whole.find("</Item>", copyEnds) + 7;
  for (const std::size_t size : {std::size_t{1}, copyEnds - 1, copyEnds, pasteEnds - 1, pasteEnds,
                                 whole.size() / 2, whole.size() - 4}) {
    const std::string cut = whole.substr(0, size);
    fs::remove(supportFolder() / "MenuInfo.xml.broken");
    writeText(menus(), cut);
    endProgram();
    NerinAction::initMenuList();
    std::vector<std::string> left;
    if (size >= copyEnds) {
      left.emplace_back("Copy");
    }
    if (size >= pasteEnds) {
      left.emplace_back("Paste");
    }
    EXPECT_EQ(macroNames(), left) << size;
    EXPECT_NE(leftClick(), "") << size;
    EXPECT_EQ(textOfFile(supportFolder() / "MenuInfo.xml.broken"), cut) << size;
    endProgram();
    NerinAction::initMenuList();
    EXPECT_EQ(macroNames(), left) << size << ", at the next start";
  }
}

TEST_F(UserCatalogue, MacrosBehindTheDamageAreSavedToo) {
  std::string bytes = withTwoMacros();
  bytes.insert(bytes.find("<LoopTime"), "<\x01<");
  writeText(menus(), bytes);
  start();
  EXPECT_THAT(macroNames(), ElementsAre("Paste"));
  EXPECT_EQ(NerinAction::getMacroByName("Paste")->macroId(), 2);
}

TEST_F(UserCatalogue, ADamagedTextFileIsReplacedAndKeptBeside) {
  start();
  const std::string whole = textOfFile(texts());
  writeText(texts(), whole.substr(0, 700));
  start();
  EXPECT_EQ(tooltip("Left Click"), "Left Click");
  EXPECT_EQ(textOfFile(texts()), whole);
  EXPECT_EQ(textOfFile(supportFolder() / "Tooltip.xml.broken"), whole.substr(0, 700));
}

TEST_F(UserCatalogue, ASecondDamageKeepsBoth) {
  start();
  writeText(texts(), "first");
  start();
  writeText(texts(), "second");
  start();
  EXPECT_EQ(textOfFile(supportFolder() / "Tooltip.xml.broken"), "first");
  EXPECT_EQ(textOfFile(supportFolder() / "Tooltip.xml.broken-2"), "second");
}

TEST_F(UserCatalogue, ADiskThatTakesNothingDoesNotStopTheProgram) {
  const std::string cut = withTwoMacros().substr(0, 800);
  for (const std::string& bytes : {cut, std::string()}) {
    for (const char* failing : {"create", "write", "rename"}) {
      writeText(menus(), bytes);
      writeText(texts(), "<T");
      durable::setFaultInjector(
          [&](const char* step) { return std::string_view(step) == failing ? ENOSPC : 0; });
      start();
      EXPECT_NE(leftClick(), "") << failing;
      EXPECT_EQ(tooltip("Left Click"), "Left Click") << failing;
      EXPECT_FALSE(NerinAction::saveMenuList());
      EXPECT_EQ(textOfFile(menus()), bytes) << failing;
      EXPECT_EQ(textOfFile(texts()), "<T") << failing;
      // With room again, a save in the same run puts everything in its place.
      durable::setFaultInjector({});
      NerinAction::addMacorByName("New");
      EXPECT_TRUE(NerinAction::saveMenuList());
      if (!bytes.empty()) {
        EXPECT_EQ(textOfFile(supportFolder() / "MenuInfo.xml.broken"), bytes);
      }
      endProgram();
      NerinAction::initMenuList();
      EXPECT_THAT(macroNames(), Contains("New"));
      fs::remove(supportFolder() / "MenuInfo.xml.broken");
    }
  }
}

TEST_F(UserCatalogue, ANewUserOnAFullDiskWorksFromWhatCameWithTheProgram) {
  durable::setFaultInjector(
      [](const char* step) { return std::string_view(step) == "write" ? ENOSPC : 0; });
  start();
  EXPECT_NE(leftClick(), "");
  EXPECT_EQ(tooltip("Left Click"), "Left Click");
  EXPECT_THAT(supportNames(), IsEmpty());
}

TEST_F(UserCatalogue, AFileThatCannotBeReadIsNotReplaced) {
  start();
  fs::remove(menus());
  fs::create_directories(menus());
  start();
  EXPECT_NE(leftClick(), "");
  EXPECT_FALSE(NerinAction::saveMenuList());
  EXPECT_TRUE(fs::is_directory(menus()));
}

TEST_F(UserCatalogue, AnOlderOneGetsWhatIsNewAndKeepsWhatIsTheUsers) {
  start();
  writeText(menus(), R"(<MenuInfo><!-- mine -->
    <MacroList><Item title="Copy" MacroID="4"><LoopTime>0</LoopTime></Item></MacroList>
    <SingleMenu><Item title="My Click" type="1" functionID="1" functionTableID="1" KeyBit1="1"
      KeyBit2="0" KeyBit3="0" KeyBit4="0"/></SingleMenu></MenuInfo>)");
  writeText(texts(), R"(<Tooltip><Lan name="US"><Item name="Left Click" text="My Click" viewID="0"
    btnID=""/></Lan></Tooltip>)");
  for (const char* file : {".MenuInfo.xml.shipped", ".Tooltip.xml.shipped"}) {
    fs::remove(supportFolder() / file);
  }
  setPreferredLanguage("de");
  start();
  EXPECT_THAT(macroNames(), ElementsAre("Copy"));
  EXPECT_EQ(NerinAction::getSingleNameById(1), "My Click");
  EXPECT_THAT(textOfFile(menus()), HasSubstr("<!-- mine -->"));
  EXPECT_EQ(NerinAction::functionMenus->singleMenuNode->children().size(), 9U);
  EXPECT_NE(NerinAction::functionMenus->sensitivityMenuNode, nullptr);
  EXPECT_EQ(TooltipManager::shareTooltipManager().infoList().size(), 15U);
  EXPECT_EQ(tooltip("Left Click"), "Linksklick");
  setPreferredLanguage("en");
  start();
  EXPECT_EQ(tooltip("Left Click"), "My Click");
  EXPECT_EQ(tooltip("Right Click"), "Right Click");
}

// As it was before four languages and a third of the texts were there.
TEST_F(UserCatalogue, AnOlderOneAnswersEveryTextInEveryLanguage) {
  start();
  const auto answers = [] {
    std::set<std::tuple<std::string, std::string, std::int32_t, std::string, std::string>> all;
    auto& manager = TooltipManager::shareTooltipManager();
    for (const auto& language : manager.infoList()) {
      manager.setLanByname(language->name);
      for (const TooltipData& text : language->tooltips) {
        all.emplace(language->name.value_or(""), text.name.value_or(""), text.viewId,
                    text.btnTag.value_or(""), text.text.value_or(""));
      }
    }
    return all;
  };
  const auto whole = answers();
  std::istringstream lines(textOfFile(texts()));
  std::string old;
  int items = 0;
  for (std::string line; std::getline(lines, line) && !line.ends_with("<Lan name=\"Czech\">");) {
    const bool isItem = line.find("<Item") != std::string::npos;
    if (!isItem || ++items % 3 != 0) {
      old += line + '\n';
    }
  }
  writeText(texts(), old + "</Tooltip>\n");
  fs::remove(supportFolder() / ".Tooltip.xml.shipped");
  start();
  EXPECT_GT(whole.size(), 15U * 250U);
  EXPECT_TRUE(answers() == whole);
}

constexpr const char* oldMenus = R"(<M><MacroList/><SingleMenu>
  <Item title="a" functionID="1"/><Item title="b" functionID="2"/><Item title="c" functionID="3"/>
  </SingleMenu></M>)";
constexpr const char* newMenus = R"(<M><MacroList/><SingleMenu>
  <Item title="A" functionID="1"/><Item title="B" functionID="2"/><Item title="between"
  functionID="9"/><Item title="C" functionID="3"/></SingleMenu></M>)";

TEST_F(UserCatalogue, WhatTheUserChangedOrRemovedStaysAndTheRestIsRenewed) {
  ship(oldMenus, R"(<T><Lan name="US"><Item name="a" text="old"/></Lan></T>)");
  start();
  std::string mine = textOfFile(menus());
  mine.replace(mine.find(R"(title="b")"), 9, R"(title="mine")");
  mine.erase(mine.find(R"(<Item title="c" functionID="3"/>)"), 32);
  writeText(menus(), mine);
  ship(newMenus, R"(<T><Lan name="US"><Item name="a" text="new"/></Lan><Lan name="German"/></T>)");
  start();
  std::vector<std::string> titles;
  for (const auto& child : NerinAction::functionMenus->singleMenuNode->children()) {
    titles.push_back(child->nodeData()->titleStr());
  }
  EXPECT_THAT(titles, ElementsAre("A", "mine", "between"));
  EXPECT_EQ(tooltip("a"), "new");
  EXPECT_EQ(TooltipManager::shareTooltipManager().infoList().size(), 2U);
  const std::string after = textOfFile(menus());
  start();
  EXPECT_EQ(textOfFile(menus()), after);
}

TEST_F(UserCatalogue, AnUpdateThatCannotBeWrittenHoldsForTheRun) {
  ship(oldMenus, "<T/>");
  start();
  const std::string before = textOfFile(menus());
  ship(newMenus, "<T/>");
  durable::setFaultInjector(
      [](const char* step) { return std::string_view(step) == "rename" ? EROFS : 0; });
  start();
  EXPECT_EQ(NerinAction::getSingleNameById(9), "between");
  EXPECT_EQ(textOfFile(menus()), before);
  durable::setFaultInjector({});
  start();
  EXPECT_THAT(textOfFile(menus()), HasSubstr("between"));
}

TEST_F(UserCatalogue, OneThatIsUpToDateIsNotTouched) {
  const std::string whole = withTwoMacros();
  start();
  EXPECT_EQ(textOfFile(menus()), whole);
  EXPECT_THAT(supportNames(), Not(Contains(HasSubstr("broken"))));
}

}  // namespace
