// The editor's library: creating, copying, deleting and renaming macros.

#include <gmock/gmock.h>

#include "Kit/Core/LXPlatform.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Tests/View/Macros/MacroViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

namespace {

class MacroLibrary : public MacroViewTest {
 protected:
  void rename(const char* text) {
    auto& field = part<LXTextField>("macroNameTxt");
    field.selectAll();
    field.insert(QString::fromUtf8(text));
    emit field.textEdited(field.text());
  }
};

}  // namespace

TEST_F(MacroLibrary, IsOfferedAsItIsWheneverTheListOpens) {
  open();
  EXPECT_THAT(offered(), IsEmpty());
  addMacro(5, "Five", {{0, 0, 10}});
  addMacro(6, "Hidden")->setIsNoDisplay(true);
  addMacro(7, "Seven");
  EXPECT_THAT(offered(), ElementsAre("Five", "Seven"));
  chooseIn("macroNameBtn", "Five");
  EXPECT_EQ(editor().currMacroInfo(), NerinAction::getMacroById(5));
  EXPECT_EQ(control("macroNameBtn").title(), "Five");
  EXPECT_EQ(name(), "Five");
  EXPECT_EQ(table().model()->rowCount(), 1);
  chooseIn("macroNameBtn", "Seven");
  EXPECT_EQ(table().model()->rowCount(), 0);
  editor().setSelMacroByNode(nullptr);
  EXPECT_EQ(editor().currMacroInfo(), nullptr);
  EXPECT_EQ(control("macroNameBtn").title(), "");
  EXPECT_EQ(name(), "");
}

TEST_F(MacroLibrary, OpeningMakesTheMenuOfWhatIsThere) {
  const auto five = addMacro(5, "Five");
  const auto twin = addMacro(6, "Five");
  const auto hidden = addMacro(7, "Hidden");
  hidden->setIsNoDisplay(true);
  NerinAction::macroStore->macroNode = nullptr;
  EXPECT_EQ(MacroView::getNodeByData(five.get()), nullptr);
  open();
  ASSERT_NE(NerinAction::macroStore->macroNode, nullptr);
  const auto& nodes = NerinAction::macroStore->macroNode->children();
  ASSERT_THAT(nodes, SizeIs(2));
  EXPECT_EQ(MacroView::getNodeByData(five.get()), nodes[0]);
  EXPECT_EQ(MacroView::getNodeByData(twin.get()), nodes[1]);
  EXPECT_EQ(MacroView::getNodeByData(hidden.get()), nullptr);
  EXPECT_EQ(MacroView::getNodeByData(nullptr), nullptr);
}

TEST_F(MacroLibrary, AMacroWithoutANameHasAnEmptyOne) {
  open();
  addMacro(5, "")->setNameStr(std::nullopt);
  NerinAction::refreshMenuList();
  editor().setSelMacroByNode(NerinAction::macroStore->macroNode->children().front());
  EXPECT_NE(editor().currMacroInfo(), nullptr);
  EXPECT_EQ(name(), "");
  m_chosen = file("nameless");
  press("exportMacroBtn");
  EXPECT_EQ(m_panels.back().name, "");
  EXPECT_TRUE(std::filesystem::exists(file("nameless.mac")));
}

TEST_F(MacroLibrary, ANameThatTheMouseGaveIsShownToNobody) {
  addMacro(6, "dmr_fw_macro_tag_6");
  addMacro(7, "Seven");
  open();
  EXPECT_THAT(offered(), ElementsAre("Macro Key", "Seven"));
  press("macroNameBtn");
  choose(*openList(), "Macro Key");
  EXPECT_EQ(editor().currMacroInfo(), NerinAction::getMacroById(6));
  EXPECT_EQ(control("macroNameBtn").title(), "Macro Key");
  EXPECT_EQ(name(), "Macro Key");
  // Nor when the open list is filled again.
  press("macroNameBtn");
  NerinAction::refreshMenuList();
  EXPECT_THAT(titlesOf(*openList()), ElementsAre("Macro Key", "Seven"));
  openList()->hideMenulist();
  // The macro still has the generated name.
  EXPECT_THAT(names(), ElementsAre("dmr_fw_macro_tag_6", "Seven"));
}

TEST_F(MacroLibrary, ANewMacroTakesTheFirstNameThatNoShownOneHas) {
  addMacro(5, "NewMacro_1");
  addMacro(9, "NewMacro_2")->setIsNoDisplay(true);
  addMacro(6, "NewMacro_3");
  open();
  press("newMacroBtn");
  EXPECT_EQ(name(), "NewMacro_2");
  EXPECT_EQ(editor().currMacroInfo()->macroId(), 10);
  EXPECT_THAT(editor().currMacroInfo()->keyInfoArr(), IsEmpty());
  press("newMacroBtn");
  EXPECT_EQ(name(), "NewMacro_4");
  EXPECT_EQ(editor().currMacroInfo()->macroId(), 11);
  EXPECT_EQ(NerinAction::macroStore->macroListArrs.back(), editor().currMacroInfo());
}

TEST_F(MacroLibrary, ACopyIsTheSameButForItsNameAndNumber) {
  const auto original = addMacro(5, "Five", {{1, 0, 10}, {121, 3, 20}, {2, 2, 0}});
  original->setLoopTime(7);
  open();
  chooseIn("macroNameBtn", "Five");
  press("copyMacroBtn");
  const auto copy = editor().currMacroInfo();
  ASSERT_NE(copy, original);
  EXPECT_EQ(copy->nameStr(), "NewMacro_1");
  EXPECT_EQ(copy->macroId(), 6);
  EXPECT_EQ(copy->loopTime(), 7);
  EXPECT_FALSE(copy->isNoDisplay());
  EXPECT_EQ(eventsOf(*copy), eventsOf(*original));
  copy->keyInfoArr()[0]->setDelay(99);
  EXPECT_EQ(original->keyInfoArr()[0]->delay(), 10);
  EXPECT_THAT(offered(), ElementsAre("Five", "NewMacro_1"));
}

TEST_F(MacroLibrary, ACopyOfAHiddenMacroIsHidden) {
  openOn(1, 0);
  editor().currMacroInfo()->setIsNoDisplay(true);
  press("copyMacroBtn");
  ASSERT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(2));
  EXPECT_TRUE(NerinAction::macroStore->macroListArrs[1]->isNoDisplay());
  // A hidden macro is in no list, so it cannot be the current one.
  EXPECT_EQ(editor().currMacroInfo(), nullptr);
  EXPECT_EQ(table().model()->rowCount(), 0);
}

TEST_F(MacroLibrary, TheLimitCountsWhatIsShown) {
  for (int id = 1; id <= 99; ++id) {
    addMacro(id, "Macro " + std::to_string(id));
  }
  addMacro(100, "Hidden")->setIsNoDisplay(true);
  open();
  press("newMacroBtn");
  EXPECT_THAT(m_shown, IsEmpty());
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(101));
  for (const char* button : {"newMacroBtn", "copyMacroBtn"}) {
    m_shown.clear();
    press(button);
    EXPECT_THAT(m_shown, ElementsAre("Maximum number of macros reached")) << button;
    EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(101));
    EXPECT_EQ(name(), "NewMacro_1");
  }
  press("delMacroBtn");
  press("newMacroBtn");
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(101));
}

TEST_F(MacroLibrary, TheFollowingOneIsFoundByItself) {
  addMacro(1, "Same");
  addMacro(2, "Hidden")->setIsNoDisplay(true);
  const auto twin = addMacro(3, "Same", {{0, 0, 0}});
  addMacro(4, "Same");
  open();
  editor().setSelMacroByNode(NerinAction::macroStore->macroNode->children()[0]);
  press("delMacroBtn");
  EXPECT_EQ(editor().currMacroInfo(), twin);
  EXPECT_EQ(table().model()->rowCount(), 1);
  EXPECT_THAT(names(), ElementsAre("Hidden", "Same", "Same"));
  press("delMacroBtn");
  EXPECT_EQ(editor().currMacroInfo()->macroId(), 4);
  press("delMacroBtn");
  EXPECT_EQ(editor().currMacroInfo(), nullptr);
  EXPECT_THAT(names(), ElementsAre("Hidden"));
  EXPECT_THAT(m_shown, SizeIs(3));
}

TEST_F(MacroLibrary, AListThatWasOnlyLookedAtChangesNothing) {
  open();
  for (int i = 0; i < 3; ++i) {
    editor().newMacro();
  }
  const auto first = NerinAction::macroStore->macroListArrs[0];
  editor().setSelMacroByNode(MacroView::getNodeByData(first.get()));
  offered();
  editor().delMacro();
  EXPECT_THAT(names(), ElementsAre("NewMacro_2", "NewMacro_3"));
  EXPECT_EQ(editor().currMacroInfo(), NerinAction::macroStore->macroListArrs[0]);
}

TEST_F(MacroLibrary, TheKeyboardGoesToTheTableWithTheLastMacro) {
  openOn(0, 0);
  control("delMacroBtn").setFocus(Qt::TabFocusReason);
  hitKey(control("delMacroBtn"), Qt::Key_Space);
  EXPECT_THAT(names(), IsEmpty());
  EXPECT_TRUE(table().hasFocus());
}

TEST_F(MacroLibrary, AQuestionMayTakeTheEditorWithIt) {
  LXPlatform platform = LXPlatform::current();
  platform.chooseInfoMessage = [&](const std::string&) {
    destroyHost();
    return true;
  };
  LXPlatform::install(platform);
  for (void (MacroView::*const deed)() : {&MacroView::delMacro, &MacroView::delAllCommand}) {
    MacroView& view = openOn(2, 0);
    const std::size_t before = names().size();
    (view.*deed)();
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(names().size(), before);
  }
}

TEST_F(MacroLibrary, EveryEditOfTheNameIsTheMacrosName) {
  const auto macro = addMacro(1, "One");
  addMacro(2, "Two");
  open();
  chooseIn("macroNameBtn", "One");
  auto& field = part<LXTextField>("macroNameTxt");
  field.setFocus();
  field.end(false);
  // Typed letter by letter; a name may already be in use.
  for (const char* expected : {"On", "O", ""}) {
    hitKey(field, Qt::Key_Backspace);
    EXPECT_EQ(macro->nameStr(), expected);
    EXPECT_EQ(control("macroNameBtn").title(), expected);
  }
  rename("Two");
  EXPECT_EQ(macro->nameStr(), "Two");
  EXPECT_THAT(offered(), ElementsAre("Two", "Two"));
  EXPECT_THAT(m_shown, IsEmpty());
  rename("\xC3\x84\xE6\x97\xA5 <&>");
  EXPECT_EQ(macro->nameStr(), "\xC3\x84\xE6\x97\xA5 <&>");
  // The buttons still use the same macro.
  press("copyMacroBtn");
  EXPECT_THAT(NerinAction::macroStore->macroListArrs, SizeIs(3));
  chooseIn("macroNameBtn", "\xC3\x84\xE6\x97\xA5 <&>");
  rename("Last");
  press("delMacroBtn");
  EXPECT_THAT(names(), ElementsAre("Two", "NewMacro_1"));
  EXPECT_EQ(name(), "Two");
}
