#include <chrono>

#include <gmock/gmock.h>

#include "Action/NerinAction.h"
#include "Kit/Core/FileLock.h"
#include "Tests/Support/ActionTest.h"

// What another program did to the macros since they were read.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MacroMerge : public ActionTest {
 protected:
  MacroMerge() {
    beginProgram();
    addMacro(1, "a", {{1, 0, 0}});
    addMacro(2, "b", {{2, 0, 0}});
    save();
  }

  static void save() { EXPECT_TRUE(NerinAction::saveMenuList()); }
  static std::vector<std::string> names() {
    std::vector<std::string> names;
    for (const auto& macro : NerinAction::macroStore->macroListArrs) {
      names.push_back(macro->nameStr().value_or(""));
    }
    return names;
  }
  // Another program changes the file, which this one does not see.
  static void elsewhere(const std::function<void()>& change) {
    auto here = *NerinAction::macroStore;
    NerinAction::initMenuList();
    change();
    save();
    *NerinAction::macroStore = here;
  }
  static void remove(const std::string& name) {
    std::erase(NerinAction::macroStore->macroListArrs, NerinAction::getMacroByName(name));
  }
  static std::vector<std::string> stored() {
    std::vector<std::string> all;
    elsewhere([&] { all = names(); });
    return all;
  }
};

TEST_F(MacroMerge, AMacroThatWasAddedElsewhereStays) {
  elsewhere([] { addMacro(3, "c", {{3, 0, 0}}); });
  save();
  EXPECT_THAT(names(), ElementsAre("a", "b", "c"));
  EXPECT_THAT(stored(), ElementsAre("a", "b", "c"));
}

TEST_F(MacroMerge, MacrosThatBothAddedGetDifferentNamesAndIds) {
  elsewhere([] { addMacro(3, "c", {{3, 0, 0}}); });
  addMacro(3, "c", {{4, 0, 0}});
  save();
  EXPECT_THAT(stored(), ElementsAre("a", "b", "c", "c_1"));
  EXPECT_EQ(NerinAction::getMacroByName("c")->macroId(), 3);
  EXPECT_EQ(NerinAction::getMacroByName("c_1")->macroId(), 4);
}

TEST_F(MacroMerge, AMacroThatWasDeletedElsewhereGoes) {
  elsewhere([] { remove("a"); });
  save();
  EXPECT_THAT(names(), ElementsAre("b"));
}

TEST_F(MacroMerge, AMacroThatWasDeletedElsewhereAndChangedHereStays) {
  elsewhere([] { remove("a"); });
  NerinAction::getMacroByName("a")->setLoopTime(7);
  save();
  EXPECT_THAT(stored(), ElementsAre("a", "b"));
}

TEST_F(MacroMerge, AMacroThatWasChangedElsewhereIsTakenOver) {
  const auto macro = NerinAction::getMacroByName("a");
  elsewhere([] {
    *NerinAction::macroStore->macroListArrs.at(0) = *addMacro(1, "z", {{9, 0, 0}});
    NerinAction::macroStore->macroListArrs.pop_back();
  });
  save();
  EXPECT_THAT(names(), ElementsAre("z", "b"));
  EXPECT_EQ(NerinAction::getMacroByName("z"), macro);
  EXPECT_EQ(eventsOf(*macro), (Events{{9, 0, 0}}));
}

TEST_F(MacroMerge, OfAMacroThatBothChangedBothAreKept) {
  elsewhere([] { NerinAction::getMacroByName("a")->setLoopTime(3); });
  NerinAction::getMacroByName("a")->setLoopTime(7);
  save();
  EXPECT_THAT(stored(), ElementsAre("a", "b", "a_1"));
  EXPECT_EQ(NerinAction::getMacroByName("a")->loopTime(), 7);
  EXPECT_EQ(NerinAction::getMacroByName("a_1")->loopTime(), 3);
}

TEST_F(MacroMerge, AMacroThatWasDeletedHereDoesNotComeBack) {
  elsewhere([] { addMacro(3, "c"); });
  remove("a");
  save();
  EXPECT_THAT(stored(), ElementsAre("b", "c"));
}

TEST_F(MacroMerge, ASectionThatWasMadeAnewDeletesNothing) {
  elsewhere([] { NerinAction::macroStore->macroListArrs.clear(); });
  save();
  EXPECT_THAT(stored(), ElementsAre("a", "b"));
}

TEST_F(MacroMerge, IsDoneUnderTheLockOfTheLibrary) {
  {
    const auto other = FileLock::acquire(supportFolder() / ".lock", std::chrono::milliseconds(0));
    EXPECT_FALSE(NerinAction::saveMenuList());
  }
  save();
}

}  // namespace
