#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MacroIds.h"
#include "Action/Record/EditState.h"
#include "Tests/Support/ActionTest.h"

// The ids by which buttons name their macros.

namespace {

using testing::ElementsAre;

class MacroIds : public ActionTest {
 protected:
  MacroIds() { beginProgram(); }

  static std::vector<int> ids() {
    std::vector<int> ids;
    for (const auto& macro : NerinAction::macroStore->macroListArrs) {
      ids.push_back(macro->macroId());
    }
    return ids;
  }
  static std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& macro : NerinAction::macroStore->macroListArrs) {
      names.push_back(macro->nameStr().value_or(""));
    }
    return names;
  }
};

}  // namespace

TEST_F(MacroIds, AnIdIsOwnIfItFindsTheMacro) {
  const auto alpha = addMacro(5, "Alpha");
  const auto beta = addMacro(5, "Beta");
  const auto gamma = addMacro(0, "Gamma");
  EXPECT_TRUE(NerinAction::hasOwnId(*alpha));
  EXPECT_FALSE(NerinAction::hasOwnId(*beta));
  EXPECT_FALSE(NerinAction::hasOwnId(*gamma));
}

TEST_F(MacroIds, ImportedMacrosAndSecondOnesOfAnIdGetTheirOwn) {
  addMacro(5, "Alpha");
  addMacro(0, "Beta");
  addMacro(0, "Gamma");
  addMacro(5, "Delta");
  EXPECT_TRUE(NerinAction::giveOwnIds());
  EXPECT_THAT(ids(), ElementsAre(5, 6, 7, 8));
  EXPECT_FALSE(NerinAction::giveOwnIds());
}

TEST_F(MacroIds, AMacroThatAButtonNamesByNoIdKeepsIt) {
  editState->edit().btnInfo[3] = macroButton(0);
  const auto beta = addMacro(0, "Beta");
  const auto gamma = addMacro(0, "Gamma");
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_FALSE(NerinAction::giveOwnId(*beta));
  EXPECT_TRUE(NerinAction::giveOwnId(*gamma));
  EXPECT_EQ(NerinAction::getMacroById(0), beta);
  EXPECT_EQ(NerinAction::getMacroById(gamma->macroId()), gamma);
}

TEST_F(MacroIds, AButtonWithoutAMacroMeansNoneThatIsImportedLater) {
  editState->edit().btnInfo[3] = macroButton(0);
  addMacro(0, "Beta");
  EXPECT_TRUE(NerinAction::giveOwnIds());
  EXPECT_EQ(NerinAction::getMacroById(0), nullptr);
}

TEST_F(MacroIds, ANewIdIsSavedWithoutASecondMacro) {
  addMacro(0, "Beta");
  addMacro(0, "Gamma");
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_TRUE(NerinAction::giveOwnIds());
  EXPECT_TRUE(NerinAction::saveMenuList());
  EXPECT_THAT(names(), ElementsAre("Beta", "Gamma"));
  endProgram();
  beginProgram();
  EXPECT_THAT(names(), ElementsAre("Beta", "Gamma"));
  EXPECT_THAT(ids(), ElementsAre(1, 2));
}
