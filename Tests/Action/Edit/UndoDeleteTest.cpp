#include <gmock/gmock.h>

#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Tests/Support/ActionTest.h"

// A profile that was deleted comes back.

namespace {

using testing::ElementsAre;

class UndoDelete : public ActionTest {
 protected:
  UndoDelete() {
    putProfile("a.pro", 1, "a", 1);
    putProfile("b.pro", 2, "b", 2);
    library().setCurrFWProfileIndex(4);
    library().fwProfileID()[4] = 2;
    library().setSelectById(2);
  }
  static std::vector<std::string> names() { return namesOf(library().profileArr()); }
};

TEST_F(UndoDelete, IsPossibleOnceAfterADelete) {
  EXPECT_FALSE(NerinAction::canUndoDelete());
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  EXPECT_TRUE(NerinAction::canUndoDelete());
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_FALSE(NerinAction::canUndoDelete());
  EXPECT_THAT(names(), ElementsAre("a", "b"));
}

TEST_F(UndoDelete, IsNotPossibleAfterADeleteOfNothing) {
  library().setCurrProfile(nullptr);
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  EXPECT_FALSE(NerinAction::canUndoDelete());
}

TEST_F(UndoDelete, BringsBackTheFileTheLinksAndTheSelection) {
  library().fwProfileID()[7] = 2;
  const std::string before = textOfFile(libraryFolder() / "b.pro");
  const auto profile = library().currProfile();
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("a.pro"));
  EXPECT_EQ(library().fwProfileID()[7], ProfieController::notLinked);
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_EQ(textOfFile(libraryFolder() / "b.pro"), before);
  EXPECT_EQ(library().currProfile(), profile);
  EXPECT_EQ(library().getProfileByFWProIndex(4), profile);
  EXPECT_EQ(library().getProfileByFWProIndex(7), profile);
}

TEST_F(UndoDelete, LeavesASlotAloneThatHasAnotherProfileNow) {
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  NerinAction::bindSlot(1);
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_EQ(library().currProfile(), library().getProfileByName("a"));
  EXPECT_EQ(library().fwProfileID()[4], 1U);
}

TEST_F(UndoDelete, SelectsNothingOnAnotherSlot) {
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  library().setCurrFWProfileIndex(1);
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_EQ(library().fwProfileID()[4], 2U);
}

TEST_F(UndoDelete, FindsANameAndAnIdWhereTheyAreTaken) {
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  library().addProfileByName("b", nullptr);
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_THAT(names(), ElementsAre("a", "b", "b_1"));
  EXPECT_THAT(idsOf(library().profileArr()), ElementsAre(1, 2, 3));
  EXPECT_EQ(library().fwProfileID()[4], 3U);
}

TEST_F(UndoDelete, WaitsForRoomInTheLibrary) {
  EXPECT_TRUE(NerinAction::deleteSelectedProfile().isDone());
  while (library().getProfileCount() < limits::profiles) {
    library().addProfile();
  }
  EXPECT_FALSE(NerinAction::canUndoDelete());
  EXPECT_TRUE(NerinAction::undoDelete().isDone());
  EXPECT_EQ(library().getProfileCount(), limits::profiles);
  library().delProByName("a");
  EXPECT_TRUE(NerinAction::canUndoDelete());
}

}  // namespace
