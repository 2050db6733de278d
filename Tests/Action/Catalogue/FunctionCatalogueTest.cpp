#include <filesystem>
#include <map>

#include <gmock/gmock.h>
#include <pugixml.hpp>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/JsonFixture.h"

namespace {

namespace fs = std::filesystem;

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

class FunctionCatalogue : public ActionTest {
 protected:
  void begin(std::string_view menus, std::string_view texts = "") {
    writeText(supportFolder() / "MenuInfo.xml", menus);
    writeText(supportFolder() / "Tooltip.xml",
              "<T><Lan name=\"US\">" + std::string(texts) + "</Lan></T>");
    NerinAction::initMenuList();
  }

  static std::shared_ptr<MenuInfo> entry(const NerinAction::MenuRoot& root, std::size_t index) {
    return root ? std::dynamic_pointer_cast<MenuInfo>(root->children().at(index)->nodeData())
                : nullptr;
  }

  static std::vector<std::string> titles(const NerinAction::MenuRoot& root) {
    std::vector<std::string> titles;
    for (std::size_t index = 0; root && index < root->children().size(); ++index) {
      titles.push_back(entry(root, index)->titleStr());
    }
    return titles;
  }

  static _BTN_INFO mouseButton(std::uint32_t code, std::vector<std::uint32_t> keyBits) {
    return button(code, std::move(keyBits));
  }
};

TEST_F(FunctionCatalogue, TheShippedMenusAreThoseOfTheTable) {
  NerinAction::initMenuList();
  const std::map<std::string, NerinAction::MenuRoot> roots{
      {"KeyAssignMenu", NerinAction::functionMenus->keyAssignMenuNode},
      {"SingleMenu", NerinAction::functionMenus->singleMenuNode},
      {"MacroInsertMenu", NerinAction::functionMenus->macroInsertMenuNode},
      {"MacroRepeatMenu", NerinAction::functionMenus->repeatMenuNode},
      {"SensitivityMenu", NerinAction::functionMenus->sensitivityMenuNode},
      {"LevelMenu", NerinAction::functionMenus->levelMenuNode}};
  for (const auto& [name, items] : jsonFixture("menu-catalogue.json").at("sections").items()) {
    if (name == "MacroList") {
      continue;
    }
    SCOPED_TRACE(name);
    ASSERT_TRUE(roots.contains(name));
    const auto& root = roots.at(name);
    ASSERT_NE(root, nullptr);
    ASSERT_EQ(root->children().size(), items.size());
    EXPECT_EQ(root->nodeData(), nullptr);
    for (std::size_t index = 0; index < items.size(); ++index) {
      const auto& item = items.at(index);
      const auto info = entry(root, index);
      EXPECT_EQ(info->functionID(), item.at("functionID").get<int>());
      EXPECT_EQ(info->functionTableID(), item.at("functionTableID").get<int>());
      EXPECT_EQ(info->type(), item.at("type").get<int>());
      EXPECT_EQ(info->needSepretor(), item.at("NeedSepretor").get<int>() != 0);
      EXPECT_EQ(info->toolTipTag(), item.at("TooltipTag").get<std::string>());
      EXPECT_THAT((std::vector{info->KeyBit1(), info->KeyBit2(), info->KeyBit3(), info->KeyBit4()}),
                  testing::ElementsAreArray(item.at("KeyBit").get<std::vector<int>>()));
      EXPECT_TRUE(info->saveTag());
      EXPECT_TRUE(info->macroInfo()->keyInfoArr().empty());
    }
  }
  EXPECT_TRUE(fs::exists(supportFolder() / "MenuInfo.xml"));
}

TEST_F(FunctionCatalogue, TheFileOfTheSupportFolderCountsAndIsNotReplaced) {
  begin("<R><SingleMenu><Item title='mine'/></SingleMenu></R>");
  EXPECT_THAT(titles(NerinAction::functionMenus->singleMenuNode), ElementsAre("mine"));
}

TEST_F(FunctionCatalogue, WithoutAnyFileEverythingIsEmpty) {
  setResourceFolder(home());
  NerinAction::initMenuList();
  EXPECT_EQ(NerinAction::functionMenus->singleMenuNode, nullptr);
  EXPECT_EQ(NerinAction::getSingleById(1), nullptr);
  EXPECT_EQ(NerinAction::getSingleByBtnInfo(mouseButton(1, {1})), nullptr);
  EXPECT_EQ(NerinAction::getMacroMenuByFunid(1), nullptr);
  EXPECT_EQ(NerinAction::getMacroMenuNameById(1), std::nullopt);
  EXPECT_EQ(NerinAction::getMenuInfoByFunTableId(1, nullptr), nullptr);
  EXPECT_EQ(NerinAction::getMenuNameByFunTableId(1, nullptr), std::nullopt);
  EXPECT_EQ(NerinAction::getMenuNameByFunId(1, nullptr), std::nullopt);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, IsEmpty());
}

TEST_F(FunctionCatalogue, AMissingSectionIsAnEmptyMenu) {
  begin("<R><LevelMenu><Item title='1'/></LevelMenu></R>");
  EXPECT_EQ(NerinAction::getSingleById(0), nullptr);
  EXPECT_THAT(titles(NerinAction::functionMenus->levelMenuNode), ElementsAre("1"));
}

TEST_F(FunctionCatalogue, OnlyTheFirstSectionOfANameCounts) {
  begin(
      "<Any><SingleMenu><Item title='a'/></SingleMenu><SingleMenu><Item title='b'/>"
      "</SingleMenu></Any>");
  EXPECT_THAT(titles(NerinAction::functionMenus->singleMenuNode), ElementsAre("a"));
}

TEST_F(FunctionCatalogue, LoadingIsOneLevelDeep) {
  begin(
      "<R><SingleMenu><Item title='a'><Item title='nested'/></Item><Else title='x'/>"
      "<Item title='b'/></SingleMenu></R>");
  EXPECT_THAT(titles(NerinAction::functionMenus->singleMenuNode), ElementsAre("a", "b"));
}

TEST_F(FunctionCatalogue, IdsAndKeysAreHexadecimalAndTheRestDecimal) {
  begin(
      "<R><SingleMenu><Item title='a' type='10' functionID='10' functionTableID='F' "
      "NeedSepretor='1' KeyBit1='FF' KeyBit2='0a' KeyBit3='0x1F' KeyBit4=' 15 '/>"
      "</SingleMenu></R>");
  const auto info = entry(NerinAction::functionMenus->singleMenuNode, 0);
  EXPECT_EQ(info->type(), 10);
  EXPECT_EQ(info->functionID(), 16);
  EXPECT_EQ(info->functionTableID(), 15);
  EXPECT_TRUE(info->needSepretor());
  EXPECT_EQ(info->KeyBit1(), 255);
  EXPECT_EQ(info->KeyBit2(), 10);
  EXPECT_EQ(info->KeyBit3(), 31);
  EXPECT_EQ(info->KeyBit4(), 21);
}

TEST_F(FunctionCatalogue, NumbersThatAreNoneReadAsZero) {
  begin(
      "<R><SingleMenu><Item functionID='xyz' functionTableID='' KeyBit1='-1' "
      "KeyBit2='123456789A' type='one'/></SingleMenu></R>");
  const auto info = entry(NerinAction::functionMenus->singleMenuNode, 0);
  EXPECT_EQ(info->titleStr(), "");
  EXPECT_EQ(info->functionID(), 0);
  EXPECT_EQ(info->functionTableID(), 0);
  EXPECT_EQ(info->KeyBit1(), 0);
  EXPECT_EQ(info->KeyBit2(), 0);
  EXPECT_EQ(info->KeyBit3(), 0);
  EXPECT_EQ(info->type(), 0);
  EXPECT_EQ(info->toolTipTag(), "");
}

TEST_F(FunctionCatalogue, ASeparatorIsWantedByAnyNumberButZero) {
  begin(
      "<R><SingleMenu><Item NeedSepretor='1'/><Item NeedSepretor='0'/><Item/>"
      "<Item NeedSepretor='2'/></SingleMenu></R>");
  EXPECT_TRUE(entry(NerinAction::functionMenus->singleMenuNode, 0)->needSepretor());
  EXPECT_FALSE(entry(NerinAction::functionMenus->singleMenuNode, 1)->needSepretor());
  EXPECT_FALSE(entry(NerinAction::functionMenus->singleMenuNode, 2)->needSepretor());
  EXPECT_TRUE(entry(NerinAction::functionMenus->singleMenuNode, 3)->needSepretor());
}

TEST_F(FunctionCatalogue, TitlesComeFromTheTextsWhereThereAreSome) {
  begin(
      "<R><SingleMenu><Item title='file 1' TooltipTag='known'/>"
      "<Item title='file 2' TooltipTag='empty'/><Item title='file 3' TooltipTag='unknown'/>"
      "<Item title='file 4'/></SingleMenu></R>",
      "<Item name='known' text='A text.'/><Item name='empty' text=''/>"
      "<Item name='' text='nobody'/>");
  EXPECT_THAT(titles(NerinAction::functionMenus->singleMenuNode),
              ElementsAre("A text", "file 2", "file 3", "file 4"));
}

TEST_F(FunctionCatalogue, EveryMenuButTheLevelsIsLocalised) {
  std::string menus = "<R>";
  for (const char* name : {"MacroInsertMenu", "KeyAssignMenu", "SingleMenu", "MacroRepeatMenu",
                           "SensitivityMenu", "LevelMenu"}) {
    menus += std::string("<") + name + "><Item title='file' TooltipTag='known'/></" + name + ">";
  }
  begin(menus + "</R>", "<Item name='known' text='text'/>");
  EXPECT_THAT(titles(NerinAction::functionMenus->macroInsertMenuNode), ElementsAre("text"));
  EXPECT_THAT(titles(NerinAction::functionMenus->keyAssignMenuNode), ElementsAre("text"));
  EXPECT_THAT(titles(NerinAction::functionMenus->singleMenuNode), ElementsAre("text"));
  EXPECT_THAT(titles(NerinAction::functionMenus->repeatMenuNode), ElementsAre("text"));
  EXPECT_THAT(titles(NerinAction::functionMenus->sensitivityMenuNode), ElementsAre("text"));
  EXPECT_THAT(titles(NerinAction::functionMenus->levelMenuNode), ElementsAre("file"));
}

TEST_F(FunctionCatalogue, DoubledIdsResolveToTheFirst) {
  begin(
      "<R><SingleMenu><Item title='a' functionID='5' functionTableID='7'/>"
      "<Item title='b' functionID='5' functionTableID='7'/></SingleMenu></R>");
  EXPECT_EQ(NerinAction::getSingleById(5)->titleStr(), "a");
  EXPECT_EQ(NerinAction::getSingleNameById(5), "a");
  EXPECT_EQ(NerinAction::getMenuInfoByFunTableId(7, NerinAction::functionMenus->singleMenuNode)
                ->titleStr(),
            "a");
  EXPECT_EQ(NerinAction::getMenuNameByFunTableId(7, NerinAction::functionMenus->singleMenuNode),
            "a");
  EXPECT_EQ(NerinAction::getSingleById(6), nullptr);
  EXPECT_EQ(NerinAction::getSingleNameById(6), std::nullopt);
}

TEST_F(FunctionCatalogue, AButtonIsFoundByItsCodeAndAllFourKeys) {
  begin(
      "<R><SingleMenu><Item title='a' functionTableID='1' KeyBit1='1' KeyBit2='2' KeyBit3='3' "
      "KeyBit4='4'/><Item title='b' functionTableID='1' KeyBit1='9'/></SingleMenu></R>");
  EXPECT_EQ(NerinAction::getSingleByBtnInfo(mouseButton(1, {1, 2, 3, 4}))->titleStr(), "a");
  EXPECT_EQ(NerinAction::getSingleByBtnInfo(mouseButton(1, {9}))->titleStr(), "b");
  for (const auto& keys : std::vector<std::vector<std::uint32_t>>{
           {0, 2, 3, 4}, {1, 0, 3, 4}, {1, 2, 0, 4}, {1, 2, 3, 0}, {1, 2, 3, 0x104}}) {
    EXPECT_EQ(NerinAction::getSingleByBtnInfo(mouseButton(1, keys)), nullptr);
  }
  EXPECT_EQ(NerinAction::getSingleByBtnInfo(mouseButton(2, {9})), nullptr);
}

TEST_F(FunctionCatalogue, ACombinationIsFoundByItsId) {
  begin(
      "<R><MacroInsertMenu><Item title='Copy' functionID='1F' KeyBit1='8'/></MacroInsertMenu></R>");
  EXPECT_EQ(NerinAction::getMacroMenuByFunid(31)->KeyBit1(), 8);
  EXPECT_EQ(NerinAction::getMacroMenuNameById(31), "Copy");
  EXPECT_EQ(NerinAction::getMacroMenuByFunid(1), nullptr);
}

TEST_F(FunctionCatalogue, TheUsedKeysEndAtTheFirstUnusedOne) {
  begin(
      "<R><MacroInsertMenu><Item KeyBit1='8' KeyBit2='FF' KeyBit3='9' KeyBit4='FF'/>"
      "</MacroInsertMenu></R>");
  EXPECT_THAT(entry(NerinAction::functionMenus->macroInsertMenuNode, 0)->usedKeys(),
              ElementsAre(8));
}

TEST_F(FunctionCatalogue, ASectionLoadedAgainReplacesItsMenu) {
  begin("<R><SingleMenu><Item title='a'/></SingleMenu></R>");
  const auto before = NerinAction::functionMenus->singleMenuNode;
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string("<SingleMenu><Item title='b'/></SingleMenu>"));
  NerinAction::initSingleMenulist(document.document_element());
  EXPECT_NE(NerinAction::functionMenus->singleMenuNode, before);
  EXPECT_THAT(titles(NerinAction::functionMenus->singleMenuNode), ElementsAre("b"));
}

TEST_F(FunctionCatalogue, ANodeIsAppendedAndGivenBack) {
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string("<Item title='a' functionID='3'/>"));
  LXTreeNode root;
  const auto node = NerinAction::addNodeByEle(document.document_element(), root);
  ASSERT_THAT(root.children(), SizeIs(1));
  EXPECT_EQ(root.children().front(), node);
  EXPECT_EQ(node->parent(), &root);
}

TEST_F(FunctionCatalogue, BrokenFilesGiveWayToTheShippedOne) {
  for (const char* text : {"", "x", "<R><SingleMenu>"}) {
    begin(text);
    EXPECT_NE(NerinAction::getSingleById(1), nullptr) << text;
    endProgram();
  }
}

TEST_F(FunctionCatalogue, ForeignFilesAreEmptyCatalogues) {
  for (const char* text : {"<SingleMenu><Item/></SingleMenu>", "<a><b/></a><c/>"}) {
    begin(text);
    EXPECT_EQ(NerinAction::functionMenus->singleMenuNode, nullptr) << text;
    endProgram();
  }
}

TEST_F(FunctionCatalogue, ADeepFileDoesNoHarm) {
  std::string deep;
  for (int n = 0; n < 20000; ++n) {
    deep += "<a>";
  }
  begin("<R>" + deep);
  EXPECT_NE(NerinAction::getSingleById(1), nullptr);
}

}  // namespace
