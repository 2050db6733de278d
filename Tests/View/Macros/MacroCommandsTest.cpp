// Moving, deleting and inserting the commands of a macro.

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Tests/View/Macros/MacroViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class MacroCommands : public MacroViewTest {
 protected:
  // The codes of the commands.
  std::vector<int> codes() {
    std::vector<int> all;
    for (const auto& command : commands()) {
      all.push_back(command->keyCode());
    }
    return all;
  }
  std::vector<std::string> moves() { return usable({"keyUpBtn", "keyDownBtn", "delKeyBtn"}); }
};

}  // namespace

TEST_F(MacroCommands, MoveByOneAndStayWithinTheMacro) {
  struct Move {
    int from;
    bool isDown;
    std::vector<int> expected;
    int row;
    std::vector<std::string> usable;
  };
  const std::vector<std::string> all{"keyUpBtn", "keyDownBtn", "delKeyBtn"};
  const std::vector<std::string> first{"keyDownBtn", "delKeyBtn"};
  const std::vector<std::string> last{"keyUpBtn", "delKeyBtn"};
  for (const Move& move :
       {Move{1, false, {1, 0, 2, 3}, 0, first}, Move{2, false, {0, 2, 1, 3}, 1, all},
        Move{2, true, {0, 1, 3, 2}, 3, last}, Move{0, true, {1, 0, 2, 3}, 1, all},
        Move{0, false, {0, 1, 2, 3}, 0, first}, Move{3, true, {0, 1, 2, 3}, 3, last}}) {
    openOn(4, move.from);
    const auto moved = editor().selKeyInfo();
    move.isDown ? editor().downCom() : editor().upCom();
    EXPECT_EQ(codes(), move.expected) << move.from << move.isDown;
    EXPECT_EQ(row(), move.row);
    EXPECT_EQ(editor().selKeyInfo(), moved);
    EXPECT_EQ(moves(), move.usable);
  }
}

TEST_F(MacroCommands, NothingMovesWithoutASelectedCommand) {
  openOn(0, 0);
  editor().moveCom(true);
  EXPECT_THAT(moves(), IsEmpty());
  commands().push_back(std::make_shared<MacroKeyInfo>(7, 0, 0));
  commands().push_back(std::make_shared<MacroKeyInfo>(8, 0, 0));
  editor().moveCom(true);
  EXPECT_THAT(codes(), ElementsAre(7, 8));
}

TEST_F(MacroCommands, DeletingSelectsWhatMovedUpOrTheLast) {
  openOn(4, 1);
  press("delKeyBtn");
  EXPECT_THAT(codes(), ElementsAre(0, 2, 3));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(editor().selKeyInfo(), commands()[1]);
  select(2);
  press("delKeyBtn");
  EXPECT_THAT(codes(), ElementsAre(0, 2));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(editor().selKeyInfo(), commands()[1]);
  EXPECT_THAT(moves(), ElementsAre("keyUpBtn", "delKeyBtn"));
  press("delKeyBtn");
  press("delKeyBtn");
  EXPECT_THAT(codes(), IsEmpty());
  EXPECT_EQ(editor().selKeyInfo(), nullptr);
  EXPECT_THAT(moves(), IsEmpty());
  // No message was shown.
  EXPECT_THAT(m_shown, IsEmpty());
  editor().delCommand();
  EXPECT_THAT(codes(), IsEmpty());
}

TEST_F(MacroCommands, AllGoAfterAQuestion) {
  openOn(3, 1);
  m_answer = false;
  editor().delAllCommand();
  EXPECT_THAT(m_shown, ElementsAre("Are you sure you want to Clear Commands?"));
  EXPECT_THAT(codes(), ElementsAre(0, 1, 2));
  m_answer = true;
  editor().delAllCommand();
  EXPECT_THAT(codes(), IsEmpty());
  EXPECT_EQ(table().model()->rowCount(), 0);
  EXPECT_EQ(editor().selKeyInfo(), nullptr);
  EXPECT_THAT(usable({"keyUpBtn", "keyDownBtn", "delKeyBtn", "insertKeyBtn", "recordBtn"}),
              ElementsAre("recordBtn"));
}

TEST_F(MacroCommands, TheDelayOfTheRecordingPanelCanBeTakenOver) {
  openOn(3, 1);
  type(part<LXNumberTextField>("defDelayTxt"), "350");
  editor().insertAdjustTim();
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/0/350", "2/0/0"));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(table().model()->index(1, MacroCommandModel::Delay).data().toString(), "350 ms");
}

TEST_F(MacroCommands, ADelayStandsWithTheCommandItFollows) {
  struct Delay {
    const char* title;
    int selected;
    std::vector<std::string> expected;
  };
  const char* before = "Delay before the Selected Line";
  const char* after = "Delay after the Selected Line";
  for (const Delay& delay : {Delay{before, 2, {"0/0/0", "1/0/25", "2/0/0"}},
                             Delay{before, 1, {"0/0/25", "1/0/0", "2/0/0"}},
                             Delay{before, 0, {"0/0/25", "1/0/0", "2/0/0"}},
                             Delay{after, 2, {"0/0/0", "1/0/0", "2/0/25"}},
                             Delay{after, 0, {"0/0/25", "1/0/0", "2/0/0"}}}) {
    openOn(3, delay.selected);
    press("insertKeyBtn");
    chooseIn("insertBtn", delay.title);
    type(part<LXNumberTextField>("insertDefDelayTxt"), "25");
    press("insertIntBtn");
    EXPECT_EQ(rows(), delay.expected) << delay.title << delay.selected;
    EXPECT_EQ(row(), delay.selected);
    EXPECT_EQ(editor().selKeyInfo(), commands()[static_cast<std::size_t>(delay.selected)]);
    EXPECT_EQ(macroDelays->defDelayTime, 25);
    EXPECT_EQ(macroDelays->delayTime, 50);
  }
}

TEST_F(MacroCommands, WithoutASelectedCommandNoDelayIsPutIn) {
  openOn(0, 0);
  editor().insertDelayPro();
  editor().insertAdjustTim();
  EXPECT_THAT(rows(), IsEmpty());
}

TEST_F(MacroCommands, AFunctionIsPutInWhereTheSelectedCommandIs) {
  openOn(2, 1);
  editor().insertCom();
  EXPECT_THAT(rows(), ElementsAre("0/0/0", "1/2/0", "1/0/0"));
  EXPECT_EQ(row(), 1);
  EXPECT_EQ(editor().selKeyInfo(), commands()[1]);
  const auto entry =
      NerinAction::getMenuInfoByFunId(3, NerinAction::functionMenus->macroInsertMenuNode);
  ASSERT_NE(entry, nullptr);
  table().setCurrentIndex({});
  editor().insertComPro(*entry);
  EXPECT_THAT(rows(), ElementsAre("3/2/0", "0/0/0", "1/2/0", "1/0/0"));
  EXPECT_EQ(row(), 0);
  EXPECT_EQ(table().model()->index(0, MacroCommandModel::Command).data().toString(),
            "Delay before the Selected Line");
  // It counts as the last recorded command, so the same command again is a repeat.
  editor().AddNewKey(3, MacroKeyInfo::Function);
  EXPECT_EQ(commands().size(), 4U);
}

TEST_F(MacroCommands, AFunctionCanBeTheFirstCommand) {
  openOn(0, 0);
  editor().insertCom();
  EXPECT_THAT(rows(), ElementsAre("1/2/0"));
  EXPECT_EQ(row(), 0);
  NerinAction::functionMenus->macroInsertMenuNode = nullptr;
  editor().insertCom();
  EXPECT_THAT(rows(), ElementsAre("1/2/0"));
}

TEST_F(MacroCommands, PlacesThatAreNoneAreNotSelected) {
  openOn(3, 1);
  for (const int place : {-1, 3, 1000}) {
    editor().selectComByIndex(place);
    EXPECT_EQ(row(), 1) << place;
  }
  editor().selectNewCom(std::make_shared<MacroKeyInfo>(0, 0, 0));
  editor().selectNewCom(nullptr);
  EXPECT_EQ(row(), 1);
  editor().selectLastCom();
  EXPECT_EQ(row(), 2);
  editor().selectNewCom(commands()[0]);
  EXPECT_EQ(row(), 0);
}

TEST_F(MacroCommands, EditsAreMadeInTheMacroItself) {
  openOn(2, 0);
  const auto macro = NerinAction::getMacroByName("NewMacro_1");
  ASSERT_NE(macro, nullptr);
  EXPECT_EQ(&macro->keyInfoArr(), &commands());
  press("delKeyBtn");
  EXPECT_EQ(macro->keyInfoArr().size(), 1U);
}
