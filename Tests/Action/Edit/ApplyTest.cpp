#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Service/DaemonMessages.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/SlotAsRead.h"
#include "Tests/Support/WireVectors.h"

// Committing the edit: linked program, mouse, library, message.

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using testing::StartsWith;

class Apply : public ActionTest {
 protected:
  Apply() {
    beginProgram();
    EXPECT_TRUE(NerinAction::loadSlot(3).value);
    clearTrace();
  }

  static std::vector<std::string> names() { return namesOf(library().profileArr()); }
};

TEST_F(Apply, TransfersNameMacrosAndImageInThisOrderWithTheirPauses) {
  addMacro(5, "five", {{49, 0, 0}});
  addMacro(6, "six", {{36, 0, 300}});
  editState->edit().btnInfo[2] = macroButton(5);
  editState->edit().btnInfo[4] = macroButton(99);  // no such macro
  editState->edit().btnInfo[15] = macroButton(6);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(trace(),
              ElementsAre("SET 0306 1 " + hexOf(mouse().nameReport(3)), "SLEEP 30",
                          "SET 0300 0 c400000000000000", "SLEEP 30", "SET 0300 0 c40b3b0100000000",
                          "SLEEP 30", StartsWith("SET 0304 1 04003b"), "SLEEP 30",
                          "SET 0300 0 c40b3d0100000000", "SLEEP 30", "SET 0300 0 c40b4b0100000000",
                          "SLEEP 30", StartsWith("SET 0304 1 04004b"), "SLEEP 30",
                          "SET 0305 1 " + hexOf(mouse().imageReport(3)), "SLEEP 30",
                          "SET 0300 0 c400000000000000", "SLEEP 30"));
  EXPECT_THAT(mouse().faults(), IsEmpty());
  EXPECT_EQ(mouse().imageReport(3)[58 + 5 * 4], 0xFF);
}

TEST_F(Apply, WithMacrosOnAllButtonsTakes36Reports) {
  addMacro(5, "five", {{49, 0, 0}});
  for (_BTN_INFO& info : editState->edit().btnInfo) {
    info = macroButton(5);
  }
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(trace(), SizeIs(2 * 36));
  EXPECT_EQ(std::count(trace().begin(), trace().end(), "SLEEP 30"), 36);
}

TEST_F(Apply, EveryVectorIsAppliedByteForByte) {
  for (const WireVector& vector : wireVectors()) {
    endProgram();
    std::filesystem::remove_all(libraryFolder());
    beginProgram();
    const auto path = home() / "vector.pro";
    writeText(path, {reinterpret_cast<const char*>(vector.file.data()), vector.file.size()});
    library().setCurrFWProfileIndex(vector.slot);
    library().setFwProfileId(-1, vector.slot);
    library().setCurrFWProfileName(vector.name);
    editState->edit() = ProfileValue::initWithPath(path)->profileData();
    clearTrace();
    EXPECT_TRUE(NerinAction::applySlot().isDone());
    EXPECT_EQ(trace().front(), "SET 0306 1 " + vector.nameReport);
    EXPECT_EQ(trace().back(), "SLEEP 30");
    EXPECT_EQ(library().currProfile()->profileData().poRate, editState->selProfile().poRate);
  }
}

TEST_F(Apply, SavesTheLinkBeforeTheMouseAndTheLibraryAfterIt) {
  library().setCurrActivePath("/app");
  library().setCurrIsActive(true);
  bool isLinkSaved = true;
  bool isLibrarySaved = false;
  bool isTold = false;
  setOnPause([&] {
    isLinkSaved = isLinkSaved && NerinAction::daemonGetLinkAppPath(3) == "/app";
    isLibrarySaved = isLibrarySaved || !namesIn(libraryFolder()).empty();
    isTold = isTold || !posts().empty();
  });
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_TRUE(isLinkSaved);
  EXPECT_FALSE(isLibrarySaved);
  EXPECT_FALSE(isTold);
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Profile#4.pro"));
  ASSERT_THAT(posts(), SizeIs(1));
  EXPECT_EQ(posts().front().object, "101");
  EXPECT_EQ(posts().front().userInfo, std::nullopt);
}

TEST_F(Apply, WritesTheEditedProfile) {
  editState->edit().liftHeight = 9;
  editState->currFWProfile().liftHeight = 1;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(mouse().imageReport(3)[5], 0x29);
  EXPECT_EQ(differenceOf(editState->currFWProfile(), editState->selProfile()), "");
}

TEST_F(Apply, OnASlotWithoutALinkCreatesAndLinksAProfile) {
  editState->edit().liftHeight = 9;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  ASSERT_THAT(names(), ElementsAre("Profile#4"));
  EXPECT_EQ(library().fwProfileID()[3], library().profileArr().front()->profileId());
  EXPECT_EQ(library().profileArr().front()->profileData().liftHeight, 9U);
  // A second Apply uses the same profile.
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(names(), ElementsAre("Profile#4"));
}

TEST_F(Apply, ANewProfileGetsItsLinkWithTheNextApply) {
  library().setCurrActivePath("/app");
  library().setCurrIsActive(true);
  library().setCurrProfile(nullptr);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  const auto profile = library().profileArr().front();
  EXPECT_FALSE(profile->isActiveApp());
  EXPECT_EQ(profile->activeAppPath(), std::nullopt);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_TRUE(profile->isActiveApp());
  EXPECT_EQ(profile->activeAppPath(), "/app");
}

TEST_F(Apply, OnALinkedSlotWithoutASelectionStoresNothing) {
  library().addProfileByName("Other", nullptr);
  library().setFwProfileId(1, 3);
  library().setCurrProfile(nullptr);
  editState->edit().liftHeight = 9;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(names(), ElementsAre("Other"));
  EXPECT_NE(library().profileArr().front()->profileData().liftHeight, 9U);
  EXPECT_EQ(mouse().imageReport(3)[5], 0x29);
}

TEST_F(Apply, UnderAForeignNameSpellsItInTheLettersOfTheMouse) {
  library().setCurrFWProfileName("Sp\xC3\xA4ter");
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(mouse().slotName(3), "Spater");
  EXPECT_THAT(names(), ElementsAre("Spater"));
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
  EXPECT_NE(library().fwProfileID()[3], ProfieController::notLinked);
}

TEST_F(Apply, UnderAForeignNameLeavesTheOldNamesProfileAlone) {
  const auto old = library().addProfileByName("Profile#4", nullptr);
  library().setCurrFWProfileName("Sp\xC3\xA4ter");
  editState->edit().liftHeight = 9;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
  EXPECT_NE(library().currProfile(), old);
  EXPECT_NE(old->profileData().liftHeight, 9U);
}

TEST_F(Apply, UnderALongNameCutsItInTheLibraryToo) {
  library().setCurrFWProfileName(std::string(70, 'n'));
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
  EXPECT_NE(library().fwProfileID()[3], ProfieController::notLinked);
  EXPECT_THAT(names(), ElementsAre(std::string(65, 'n')));
}

TEST_F(Apply, UnderAnEmptyNameTakesTheNextFreeOne) {
  library().setCurrFWProfileName("");
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_TRUE(NerinAction::loadSlot(3).value);
  EXPECT_THAT(names(), ElementsAre("NewPF_1"));
}

TEST_F(Apply, ThatCannotSaveTheLibrarySaysSoAndWritesTheMouse) {
  library();
  std::filesystem::remove_all(supportFolder());
  writeText(supportFolder(), "in the way");
  editState->edit().liftHeight = 9;
  EXPECT_FALSE(NerinAction::applySlot().isDone());
  EXPECT_EQ(mouse().imageReport(3)[5], 0x29);
  EXPECT_THAT(posts(), SizeIs(1));
}

}  // namespace
