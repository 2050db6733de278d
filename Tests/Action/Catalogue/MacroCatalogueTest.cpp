#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>
#include <pugixml.hpp>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MacroInfo.h"
#include "Kit/Core/DurableFile.h"
#include "Tests/Support/ActionTest.h"

namespace {

namespace fs = std::filesystem;

using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

class MacroCatalogue : public ActionTest {
 protected:
  fs::path file() const { return supportFolder() / "MenuInfo.xml"; }
  std::string text() const { return textOfFile(file()); }

  // Starts the program with this catalogue in the support folder.
  void begin(std::string_view xml) {
    writeText(file(), xml);
    NerinAction::initMenuList();
    NerinAction::refreshMenuList();
  }
  static std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& macro : NerinAction::macroStore->macroListArrs) {
      names.push_back(macro->nameStr().value_or("(none)"));
    }
    return names;
  }
};

TEST_F(MacroCatalogue, IsLoadedInFileOrder) {
  begin(R"(<Root><MacroList>
    <Item title="Two" MacroID="2"><LoopTime>9</LoopTime>
      <KeyItem keyCode="49" keyFlag="0" delay="300"/><Strange/>
      <KeyItem keyCode="-1" keyFlag="1" delay="0"/></Item>
    <Other title="x"/>
    <Item title="One" MacroID="1"/>
  </MacroList><MacroList><Item title="Second list" MacroID="3"/></MacroList></Root>)");
  EXPECT_THAT(names(), ElementsAre("Two", "One"));
  const MacroInfo& two = *NerinAction::macroStore->macroListArrs.front();
  EXPECT_EQ(two.macroId(), 2);
  EXPECT_EQ(two.loopTime(), 9);
  EXPECT_EQ(eventsOf(two), (Events{{49, 0, 300}, {-1, 1, 0}}));
  EXPECT_FALSE(two.isNoDisplay());
}

TEST_F(MacroCatalogue, AnItemWithoutEventsIsAnEmptyMacro) {
  begin(
      R"(<R><MacroList><Item title="M" MacroID="4"><LoopTime>7</LoopTime></Item></MacroList></R>)");
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(1));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->loopTime(), 7);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs.front()->keyInfoArr(), IsEmpty());
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->getMacroCount(), 0);
}

TEST_F(MacroCatalogue, WhatIsMissingOrMalformedReadsAsZero) {
  begin(R"(<R><MacroList><Item><LoopTime>x</LoopTime><KeyItem/>
    <KeyItem keyCode="zz" keyFlag="0x1" delay="99999999999"/></Item></MacroList></R>)");
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(1));
  const MacroInfo& macro = *NerinAction::macroStore->macroListArrs.front();
  EXPECT_EQ(macro.nameStr(), std::nullopt);
  EXPECT_EQ(macro.macroId(), 0);
  EXPECT_EQ(macro.loopTime(), 0);
  EXPECT_EQ(eventsOf(macro), (Events{{0, 0, 0}, {0, 0, 2147483647}}));
}

TEST_F(MacroCatalogue, DoubledNamesAndIdsAreKept) {
  begin(R"(<R><MacroList><Item title="M" MacroID="4"/><Item title="M" MacroID="4"/>
    </MacroList></R>)");
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(2));
  EXPECT_EQ(NerinAction::getMacroById(4), NerinAction::macroStore->macroListArrs.front());
  EXPECT_EQ(NerinAction::getMacroByName("M"), NerinAction::macroStore->macroListArrs.front());
}

TEST_F(MacroCatalogue, LookupsFindNothingBeforeItIsLoaded) {
  EXPECT_EQ(NerinAction::getMacroById(0), nullptr);
  EXPECT_EQ(NerinAction::getMacroByName(""), nullptr);
  EXPECT_EQ(NerinAction::getMacroNameById(1), std::nullopt);
  EXPECT_EQ(NerinAction::getNewMacorId(), 1);
  EXPECT_TRUE(NerinAction::checkMacroName("any"));
}

TEST_F(MacroCatalogue, LookupsFindHiddenMacrosToo) {
  addMacro(3, "hidden")->setIsNoDisplay(true);
  EXPECT_NE(NerinAction::getMacroByName("hidden"), nullptr);
  EXPECT_EQ(NerinAction::getMacroNameById(3), "hidden");
  EXPECT_EQ(NerinAction::getMacroByName("Hidden"), nullptr);
}

TEST_F(MacroCatalogue, StepsAreCountedWithTheirDelays) {
  const auto macro = addMacro(1, "m", {{1, 0, 0}, {1, 1, 50}, {2, 0, 0}});
  EXPECT_EQ(macro->getMacroCount(), 6);
  macro->keyInfoArr().clear();
  EXPECT_EQ(macro->getMacroCount(), 0);
  macro->keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(120, 3, -1));
  EXPECT_EQ(macro->getMacroCount(), 1);
}

TEST_F(MacroCatalogue, ACombinationCountsTwoStepsForEachOfItsKeys) {
  begin(R"(<R><MacroList/><MacroInsertMenu>
    <Item functionID="0A" KeyBit1="1E" KeyBit2="1F" KeyBit3="FF" KeyBit4="FF"/>
    <Item functionID="0B" KeyBit1="FF"/>
    <Item functionID="0C" KeyBit1="1E" KeyBit2="FF"/>
    <Item functionID="0D" KeyBit1="1E" KeyBit2="1E" KeyBit3="1E" KeyBit4="FF"/>
    <Item functionID="0E" KeyBit1="1E"/></MacroInsertMenu></R>)");
  const auto stepsOf = [](int id) {
    return MacroInfo::getComMacroCount(MacroKeyInfo(id, MacroKeyInfo::Function, 500));
  };
  EXPECT_EQ(stepsOf(10), 4);
  EXPECT_EQ(stepsOf(11), 0);
  EXPECT_EQ(stepsOf(12), 2);
  EXPECT_EQ(stepsOf(13), 6);
  EXPECT_EQ(stepsOf(14), 8) << "a missing key reads as the key A";
  EXPECT_EQ(stepsOf(99), 0);
  EXPECT_EQ(addMacro(1, "m", {{10, 2, 500}, {1, 0, 0}})->getMacroCount(), 5);
}

TEST_F(MacroCatalogue, ANewIdIsTheLargestPlusOneHiddenOnesIncluded) {
  addMacro(1, "a");
  addMacro(2, "b");
  addMacro(7, "hidden")->setIsNoDisplay(true);
  NerinAction::refreshMenuList();
  const auto macro = NerinAction::addMacorByName("c");
  ASSERT_NE(macro, nullptr);
  EXPECT_EQ(macro->macroId(), 8);
  EXPECT_EQ(macro->loopTime(), 0);
  EXPECT_FALSE(macro->isNoDisplay());
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.back(), macro);
}

TEST_F(MacroCatalogue, HiddenMacrosAreDroppedBySavingAndTheirIdsGivenAgain) {
  begin("<R><MacroList/></R>");
  addMacro(1, "a");
  addMacro(2, "b");
  addMacro(7, "hidden")->setIsNoDisplay(true);
  EXPECT_TRUE(NerinAction::saveMenuList());
  endProgram();
  beginProgram();
  EXPECT_THAT(names(), ElementsAre("a", "b"));
  EXPECT_EQ(NerinAction::addMacorByName("c")->macroId(), 3);
}

TEST_F(MacroCatalogue, TheLargestIdOfAllIsNotOverrun) {
  addMacro(2147483647, "a");
  const auto macro = NerinAction::addMacorByName("b");
  ASSERT_NE(macro, nullptr);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs,
            (std::vector{NerinAction::macroStore->macroListArrs[0], macro}));
}

TEST_F(MacroCatalogue, HiddenMacrosDoNotBlockAName) {
  addMacro(1, "NewMacro_1");
  addMacro(2, "NewMacro_2")->setIsNoDisplay(true);
  NerinAction::refreshMenuList();
  EXPECT_FALSE(NerinAction::checkMacroName("NewMacro_1"));
  EXPECT_TRUE(NerinAction::checkMacroName("NewMacro_2"));
  EXPECT_TRUE(NerinAction::checkMacroName("newmacro_1"));
  EXPECT_EQ(NerinAction::getNewMacroName(), "NewMacro_2");
}

TEST_F(MacroCatalogue, ANewNameIsFreeInTheMenuAsItWasLastRebuilt) {
  EXPECT_EQ(NerinAction::getNewMacroName(), "NewMacro_1");
  addMacro(1, "NewMacro_1");
  EXPECT_EQ(NerinAction::getNewMacroName(), "NewMacro_1");
  NerinAction::refreshMenuList();
  EXPECT_EQ(NerinAction::getNewMacroName(), "NewMacro_2");
}

TEST_F(MacroCatalogue, AHundredShownMacrosAreTheMost) {
  for (int id = 1; id <= 99; ++id) {
    addMacro(id, std::to_string(id));
  }
  addMacro(200, "hidden")->setIsNoDisplay(true);
  NerinAction::refreshMenuList();
  EXPECT_NE(NerinAction::addMacorByName("the hundredth"), nullptr);
  NerinAction::refreshMenuList();
  EXPECT_EQ(NerinAction::addMacorByName("one too many"), nullptr);
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(101));
}

TEST_F(MacroCatalogue, BeforeTheFirstMenuNothingCounts) {
  for (int id = 1; id <= 100; ++id) {
    addMacro(id, std::to_string(id));
  }
  EXPECT_NE(NerinAction::addMacorByName("101"), nullptr);
}

TEST_F(MacroCatalogue, TheMenuShowsWhatIsNotHidden) {
  addMacro(1, "a");
  addMacro(2, "b")->setIsNoDisplay(true);
  addMacro(3, "c");
  const LXTreeNode* handedOver = nullptr;
  NerinAction::macroStore->macroMenuRebuilt = [&](const auto& root) { handedOver = root.get(); };
  NerinAction::refreshMenuList();
  const auto root = NerinAction::macroStore->macroNode;
  EXPECT_EQ(handedOver, root.get());
  ASSERT_THAT(root->children(), SizeIs(2));
  const auto entry = std::dynamic_pointer_cast<MenuInfo>(root->children()[1]->nodeData());
  ASSERT_NE(entry, nullptr);
  EXPECT_EQ(entry->titleStr(), "c");
  EXPECT_EQ(entry->type(), 1);
  EXPECT_EQ(entry->macroInfo(), NerinAction::macroStore->macroListArrs[2]);
  NerinAction::macroStore->macroListArrs.pop_back();
  NerinAction::refreshMenuList();
  EXPECT_EQ(NerinAction::macroStore->macroNode, root);
  EXPECT_THAT(root->children(), SizeIs(1));
}

TEST_F(MacroCatalogue, AMacroIsWrittenAsAnElement) {
  const auto macro = addMacro(4, "A & \"B\"", {{49, 0, 300}, {-1, 2, 0}});
  macro->setLoopTime(9);
  pugi::xml_document document;
  const auto parent = document.append_child("MacroList");
  NerinAction::addElementByNode(*macro, parent);
  const auto named = NerinAction::addElementByNode(*macro, parent, "Copy");
  EXPECT_STREQ(parent.first_child().name(), "Item");
  EXPECT_STREQ(named.name(), "Copy");
  EXPECT_STREQ(named.attribute("title").value(), "A & \"B\"");
  EXPECT_STREQ(named.attribute("MacroID").value(), "4");
  EXPECT_STREQ(named.first_child().name(), "LoopTime");
  EXPECT_STREQ(named.child("LoopTime").text().get(), "9");
  EXPECT_STREQ(named.last_child().attribute("keyCode").value(), "-1");
  EXPECT_STREQ(named.last_child().attribute("keyFlag").value(), "2");
  EXPECT_STREQ(named.last_child().attribute("delay").value(), "0");
  EXPECT_EQ(std::distance(named.begin(), named.end()), 3);
}

TEST_F(MacroCatalogue, WhatWasSavedIsLoaded) {
  begin("<R><MacroList><Item title='gone' MacroID='1'/></MacroList></R>");
  NerinAction::macroStore->macroListArrs.clear();
  const auto macro = addMacro(4, "Sp\xC3\xA4ter <&> \"x\" 'y'", {{49, 0, 300}, {49, 1, 0}});
  macro->setLoopTime(9);
  addMacro(9, "");
  EXPECT_TRUE(NerinAction::saveMenuList());
  endProgram();
  beginProgram();
  EXPECT_THAT(names(), ElementsAre("Sp\xC3\xA4ter <&> \"x\" 'y'", ""));
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.front()->loopTime(), 9);
  EXPECT_EQ(eventsOf(*NerinAction::macroStore->macroListArrs.front()),
            (Events{{49, 0, 300}, {49, 1, 0}}));
}

constexpr const char* elaborate = R"(<?xml version="1.0" encoding="UTF-8"?>
<!-- before -->
<!DOCTYPE MenuInfo>
<?tool keep me?>
<MenuInfo version="7" note="a &amp; b &lt; c &quot;d&quot;">
  <!-- in front of the list -->
  <MacroList color="red">
    <Item title="old" MacroID="1">
      <LoopTime>1</LoopTime>
    </Item>
  </MacroList>
  <Foreign deep="1">
    <Level2>text &amp; more<![CDATA[ <raw> ]]></Level2>
    <!-- inside -->
    <Empty />
  </Foreign>
  <MacroList second="yes">
    <Item title="kept" MacroID="5" />
  </MacroList>
  <SingleMenu>
    <Item title="Späße" functionID="1" unknown="x" />
  </SingleMenu>
</MenuInfo>
<!-- after -->
)";

TEST_F(MacroCatalogue, SavingKeepsEverythingElseToTheLetter) {
  begin(elaborate);
  NerinAction::macroStore->macroListArrs.front()->setNameStr("new");
  EXPECT_TRUE(NerinAction::saveMenuList());
  std::string expected = elaborate;
  expected.replace(expected.find("old"), 3, "new");
  EXPECT_EQ(text(), expected);
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_EQ(text(), expected) << "saving again changes nothing";
}

TEST_F(MacroCatalogue, SavingKeepsTheShippedCatalogue) {
  beginProgram();
  const std::string shipped = text();
  EXPECT_THAT(shipped, HasSubstr("<MacroList />"));
  const auto contentOf = [](const std::string& xml) {
    pugi::xml_document document;
    EXPECT_TRUE(document.load_string(xml.c_str(), pugi::parse_full));
    document.document_element().child("MacroList").remove_children();
    std::ostringstream stream;
    document.save(stream);
    return stream.str();
  };
  addMacro(1, "m", {{1, 0, 0}});
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_THAT(text(), HasSubstr("title=\"m\""));
  EXPECT_EQ(contentOf(text()), contentOf(shipped));
}

TEST_F(MacroCatalogue, SavingKeepsValuesThatXmlHasToEscape) {
  begin(
      "<R a='tab&#9;line&#10;end' b=\"it's &quot;so&quot;\"><MacroList/>"
      "<T>&lt;tag&gt; &amp;amp; &#x41;</T></R>");
  addMacro(1, "line\nfeed\ttab");
  EXPECT_TRUE(NerinAction::saveMenuList());
  pugi::xml_document document;
  ASSERT_TRUE(document.load_string(text().c_str(), pugi::parse_full));
  const auto root = document.document_element();
  EXPECT_STREQ(root.attribute("a").value(), "tab\tline\nend");
  EXPECT_STREQ(root.attribute("b").value(), "it's \"so\"");
  EXPECT_STREQ(root.child("T").text().get(), "<tag> &amp; A");
  EXPECT_STREQ(root.child("MacroList").child("Item").attribute("title").value(), "line\nfeed\ttab");
}

TEST_F(MacroCatalogue, AFileWithEntitiesOfItsOwnIsLeftAsItIs) {
  begin("<!DOCTYPE R [ <!ENTITY maker \"me\"> ]>\n<R by=\"&maker;\"><MacroList/></R>");
  EXPECT_FALSE(NerinAction::saveMenuList());
  EXPECT_THAT(text(), AllOf(HasSubstr("<!ENTITY maker \"me\">"), HasSubstr("by=\"&maker;\"")));
}

TEST_F(MacroCatalogue, WithoutTheSectionNothingIsWritten) {
  begin("<R><Other/></R>");
  addMacro(1, "m");
  EXPECT_FALSE(NerinAction::saveMenuList());
  EXPECT_EQ(text(), "<R><Other/></R>");
}

TEST_F(MacroCatalogue, WithoutTheFileNothingIsWritten) {
  begin("<R><MacroList/></R>");
  fs::remove(file());
  EXPECT_FALSE(NerinAction::saveMenuList());
  EXPECT_FALSE(fs::exists(file()));
}

TEST_F(MacroCatalogue, ABrokenFileIsNotReplacedWhereNothingCanRepairIt) {
  setResourceFolder(home());
  for (const char* broken :
       {"", "no xml", "<R><MacroList></R>", "<R><MacroList/></R", "\xFF\xFE"}) {
    begin(broken);
    EXPECT_THAT(NerinAction::macroStore->macroListArrs, IsEmpty());
    addMacro(1, "m");
    EXPECT_FALSE(NerinAction::saveMenuList()) << broken;
    EXPECT_EQ(text(), broken);
  }
}

TEST_F(MacroCatalogue, AFailedWriteLeavesTheFile) {
  begin("<R><MacroList/></R>");
  addMacro(1, "m");
  durable::setFaultInjector([](const char*) { return ENOSPC; });
  EXPECT_FALSE(NerinAction::saveMenuList());
  durable::setFaultInjector({});
  EXPECT_EQ(text(), "<R><MacroList/></R>");
  EXPECT_THAT(supportNames(), ElementsAre("MenuInfo.xml"));
}

TEST_F(MacroCatalogue, SavingStartsFromTheFileAsItIsNow) {
  begin("<R><MacroList/></R>");
  writeText(file(), "<R><MacroList/><Added/></R>");
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_THAT(text(), HasSubstr("<Added"));
}

std::string utf16(const std::u16string& characters) {
  std::string bytes = "\xFF\xFE";
  for (const char16_t unit : characters) {
    bytes += static_cast<char>(unit & 0xFFU);
    bytes += static_cast<char>(unit >> 8U);
  }
  return bytes;
}

TEST_F(MacroCatalogue, AFileInUtf16StaysInUtf16) {
  begin(
      utf16(u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>\n<R a=\"\u00E4\u65E5\"><MacroList>"
            u"<Item title=\"\u00E4\" MacroID=\"3\"/></MacroList></R>"));
  EXPECT_THAT(names(), ElementsAre("\xC3\xA4"));
  addMacro(4, "\xE6\x97\xA5");
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_THAT(text(), StartsWith(utf16(u"<?xml version=\"1.0\" encoding=\"UTF-16\"?>")));
  EXPECT_THAT(text(), HasSubstr(utf16(u"\u00E4\u65E5").substr(2)));
  endProgram();
  beginProgram();
  EXPECT_THAT(names(), ElementsAre("\xC3\xA4", "\xE6\x97\xA5"));
}

TEST_F(MacroCatalogue, AFileInLatin1CanTakeAnyName) {
  begin("<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>\n<R a=\"\xE4\"><MacroList/></R>");
  addMacro(4, "\xE6\x97\xA5 \xC3\xA4");
  EXPECT_TRUE(NerinAction::saveMenuList());
  endProgram();
  beginProgram();
  EXPECT_THAT(names(), ElementsAre("\xE6\x97\xA5 \xC3\xA4"));
  pugi::xml_document document;
  ASSERT_TRUE(document.load_file(file().c_str()));
  EXPECT_STREQ(document.document_element().attribute("a").value(), "\xC3\xA4");
}

TEST_F(MacroCatalogue, NamesWithBytesThatXmlCannotCarryDoNotBreakTheFile) {
  begin("<R><MacroList/></R>");
  addMacro(1, std::string("nul\0 bell\x07 \xFF", 13));
  addMacro(2, "whole");
  EXPECT_TRUE(NerinAction::saveMenuList());
  endProgram();
  beginProgram();
  ASSERT_THAT(names(), SizeIs(2));
  EXPECT_EQ(names().back(), "whole");
}

TEST_F(MacroCatalogue, LoadingAgainReplacesTheList) {
  begin("<R><MacroList><Item title='a' MacroID='1'/></MacroList></R>");
  NerinAction::initMenuList();
  EXPECT_THAT(names(), ElementsAre("a"));
  EXPECT_THAT(text(), Not(IsEmpty()));
}

}  // namespace
