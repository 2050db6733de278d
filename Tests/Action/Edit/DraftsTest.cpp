// Edits that were not applied, and Applies that did not end.

#include <gmock/gmock.h>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Kit/Core/DurableFile.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/FailingDisk.h"
#include "Tests/Support/SlotAsRead.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class Drafts : public ActionTest {
 protected:
  Drafts() { beginProgram(); }

  // Slot 2 (index 1) holds the library's "Work".
  static void putWork() {
    static_cast<void>(NerinAction::loadSlot(1));
    NerinAction::bindSlot(library().addProfileByName("Work", nullptr)->profileId());
    EXPECT_TRUE(NerinAction::applySlot().isDone());
    // The mouse does not store all of a record.
    EXPECT_TRUE(NerinAction::loadSlot(1).value);
    EXPECT_FALSE(library().saveToSys());
  }
  void restart() {
    endProgram();
    beginProgram();
  }
  void unplugAfter(std::uint32_t transfers) {
    mouse().setScenario({.kind = MouseScenario::Kind::UnpluggedAfter, .transfers = transfers});
  }
  void plugIn() {
    mouse().setScenario({});
    mouse().attach();
  }
  std::filesystem::path draftsFolder() const { return supportFolder() / "Drafts"; }
  std::string library1() const { return textOfFile(libraryFolder() / "Work.pro"); }
};

TEST_F(Drafts, AnEditComesBackWithItsSlot) {
  putWork();
  editState->edit().liftHeight = 7;
  library().setCurrActivePath("/usr/bin/game");
  EXPECT_TRUE(NerinAction::loadSlot(0).value);
  EXPECT_FALSE(editState->isEdited());
  EXPECT_TRUE(NerinAction::hasDraft(1));
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_TRUE(editState->isEdited());
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_EQ(library().currActivePath(), "/usr/bin/game");
  EXPECT_EQ(library().currProfile(), library().getProfileByName("Work"));
  EXPECT_NE(editState->base()->liftHeight, 7U) << "the slot itself holds the old profile";
  EXPECT_NE(library().currProfile()->profileData().liftHeight, 7U);
}

TEST_F(Drafts, AnEditSurvivesTheEndOfTheProgram) {
  putWork();
  editState->edit().liftHeight = 7;
  NerinAction::keepDraft();
  restart();
  EXPECT_TRUE(NerinAction::hasDraft(1));
  EXPECT_FALSE(NerinAction::hasDraft(0));
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_EQ(library().currFWProfileName(), "Work");
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(namesIn(draftsFolder()), IsEmpty());
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("Work"));
  EXPECT_EQ(library().profileArr().front()->profileData().liftHeight, 7U);
}

TEST_F(Drafts, ANewProfileStaysUnlinked) {
  putWork();
  EXPECT_TRUE(NerinAction::beginProfile("Fresh").isDone());
  NerinAction::keepDraft();
  restart();
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(library().currFWProfileName(), "Fresh");
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(namesOf(library().profileArr()), ElementsAre("Work", "Fresh"));
}

TEST_F(Drafts, AnotherProgramSeesThemComeAndGo) {
  putWork();
  EXPECT_FALSE(NerinAction::isAnyDraftOnDisk());
  editState->edit().liftHeight = 7;
  NerinAction::keepDraft();
  EXPECT_TRUE(NerinAction::isAnyDraftOnDisk());
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_FALSE(NerinAction::isAnyDraftOnDisk());
}

TEST_F(Drafts, WithoutAnEditNothingIsWritten) {
  putWork();
  NerinAction::keepDraft();
  EXPECT_TRUE(NerinAction::loadSlot(0).value);
  EXPECT_FALSE(NerinAction::hasDraft(1));
  EXPECT_THAT(namesIn(draftsFolder()), IsEmpty());
}

TEST_F(Drafts, OneThatIsGivenUpDoesNotComeBack) {
  putWork();
  editState->edit().liftHeight = 7;
  NerinAction::keepDraft();
  NerinAction::discardDraft(1);
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_NE(editState->selProfile().liftHeight, 7U);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_THAT(namesIn(draftsFolder()), IsEmpty());
}

TEST_F(Drafts, TheMacrosOfADraftComeBackUnderTheirNames) {
  putWork();
  const auto macro = addMacro(1, "burst", {{49, 0, 0}});
  macro->setIsEdited(true);
  editState->edit().btnInfo[3] = macroButton(1);
  NerinAction::keepDraft();
  restart();
  addMacro(1, "another", {{36, 0, 0}});
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  const auto restored = NerinAction::getMacroByName("burst");
  ASSERT_NE(restored, nullptr);
  EXPECT_EQ(eventsOf(*restored), (Events{{49, 0, 0}}));
  EXPECT_EQ(editState->selProfile().btnInfo[3].MacroID,
            static_cast<std::uint32_t>(restored->macroId()));
  EXPECT_NE(restored->macroId(), 1);
}

TEST_F(Drafts, AFullDiskKeepsTheDraftInMemory) {
  putWork();
  editState->edit().liftHeight = 7;
  durable::setFaultInjector([](const char*) { return ENOSPC; });
  NerinAction::keepDraft();
  durable::setFaultInjector({});
  EXPECT_TRUE(NerinAction::loadSlot(0).value);
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
}

TEST_F(Drafts, AnUnreadableDraftIsNone) {
  putWork();
  std::filesystem::create_directories(draftsFolder());
  for (const char* text : {"", "<SlotDraft", "<SlotDraft slot='2'/>", "<Other slot='2'/>"}) {
    writeText(draftsFolder() / "slot-2.xml", text);
    writeText(draftsFolder() / "applying-2.xml", text);
    restart();
    EXPECT_FALSE(NerinAction::hasDraft(1)) << text;
    EXPECT_TRUE(NerinAction::loadSlot(1).value);
    EXPECT_FALSE(editState->isEdited()) << text;
  }
}

// Wherever an Apply is cut off, the profile that the slot held is safe, and the edit comes back.
TEST_F(Drafts, AnInterruptedApplyTouchesNoProfileAndCanBeFinished) {
  putWork();
  addMacro(1, "burst", {{49, 0, 0}});
  library().addProfileByName("Play", nullptr)->setProRate(3);
  EXPECT_FALSE(library().saveToSys());
  const std::string work = library1();
  int cases = 0;
  for (std::uint32_t transfers = 0; transfers < 6; ++transfers, ++cases) {
    restart();
    EXPECT_TRUE(NerinAction::loadSlot(1).value) << transfers;
    NerinAction::discardDraft(1);
    NerinAction::bindSlot(library().getProfileByName("Play")->profileId());
    editState->edit().liftHeight = 7;
    addMacro(1, "burst", {{49, 0, 0}});
    editState->edit().btnInfo[3] = macroButton(1);
    unplugAfter(transfers);
    EXPECT_FALSE(NerinAction::applySlot().isDone()) << transfers;
    // The library has the edit, in the profile that was applied.
    const std::string play = textOfFile(libraryFolder() / "Play.pro");
    plugIn();
    restart();
    EXPECT_TRUE(NerinAction::loadSlot(1).value);
    EXPECT_FALSE(library().saveToSys());
    EXPECT_TRUE(library1() == work) << transfers;
    EXPECT_TRUE(textOfFile(libraryFolder() / "Play.pro") == play) << transfers;
    EXPECT_EQ(editState->selProfile().liftHeight, 7U) << transfers;
    EXPECT_EQ(library().currFWProfileName(), "Play") << transfers;
    EXPECT_TRUE(editState->isNeedSave());
    // The mouse was gone before the first report of the first case.
    EXPECT_EQ(NerinAction::isApplyUnfinished(1), transfers > 0) << transfers;
    // Back to the start.
    library().setCurrFWProfileName("Work");
    NerinAction::bindSlot(library().getProfileByName("Work")->profileId());
    EXPECT_TRUE(NerinAction::applySlot().isDone());
    EXPECT_FALSE(NerinAction::isApplyUnfinished(1));
    EXPECT_THAT(namesIn(draftsFolder()), IsEmpty());
  }
  EXPECT_EQ(cases, 6);
}

TEST_F(Drafts, AnUnfinishedApplyThatIsGivenUpStillProtectsTheLibrary) {
  putWork();
  library().addProfileByName("Play", nullptr);
  NerinAction::bindSlot(library().getProfileByName("Play")->profileId());
  editState->edit().liftHeight = 7;
  unplugAfter(2);
  EXPECT_FALSE(NerinAction::applySlot().isDone());
  const std::string play = textOfFile(libraryFolder() / "Play.pro");
  plugIn();
  NerinAction::discardDraft(1);
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_FALSE(editState->isEdited());
  EXPECT_EQ(mouse().slotName(1), "Play") << "the mouse has the new name over the old image";
  EXPECT_EQ(library().currProfile(), nullptr);
  EXPECT_FALSE(library().saveToSys());
  EXPECT_TRUE(textOfFile(libraryFolder() / "Play.pro") == play);
  editState->edit().liftHeight = 9;
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(mouse().slotName(1), "Play_1");
  EXPECT_FALSE(NerinAction::isApplyUnfinished(1));
}

TEST_F(Drafts, TheIntentLiesOnDiskFromTheFirstReportToTheLast) {
  putWork();
  editState->edit().liftHeight = 7;
  std::vector<bool> stood;
  setOnPause([&] { stood.push_back(NerinAction::isApplyUnfinished(1)); });
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_THAT(stood, testing::Each(true));
  EXPECT_FALSE(NerinAction::isApplyUnfinished(1));
}

TEST_F(Drafts, AFailedRenameChangesNothing) {
  putWork();
  const std::string before = library1();
  unplugAfter(0);
  EXPECT_FALSE(NerinAction::renameSlot("Desk").isDone());
  EXPECT_EQ(library().currFWProfileName(), "Work");
  EXPECT_TRUE(library1() == before);
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Work.pro"));
}

TEST_F(Drafts, ARenameIsNotTakenBackByTheDraft) {
  putWork();
  editState->edit().liftHeight = 7;
  NerinAction::keepDraft();
  EXPECT_TRUE(NerinAction::renameSlot("Desk").isDone());
  restart();
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(editState->selProfile().liftHeight, 7U);
  EXPECT_EQ(library().currFWProfileName(), "Desk");
}

TEST_F(Drafts, ANameThatTheMouseCannotHoldIsSpelledInItsLetters) {
  putWork();
  const auto bureau = library().addProfileByName("B\xC3\xBCro", nullptr);
  NerinAction::bindSlot(bureau->profileId());
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  EXPECT_EQ(mouse().slotName(1), "Buro");
  EXPECT_EQ(bureau->name(), "Buro");
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(library().currProfile(), bureau);
  EXPECT_TRUE(NerinAction::renameSlot(std::string(80, 'x')).isDone());
  EXPECT_EQ(mouse().slotName(1), std::string(65, 'x'));
  EXPECT_EQ(library().currFWProfileName(), std::string(65, 'x'));
}

TEST_F(Drafts, ANumberedNameStillFitsTheMouse) {
  putWork();
  library().addProfileByName(std::string(65, 'x'), nullptr);
  EXPECT_TRUE(NerinAction::renameSlot(std::string(65, 'x')).isDone());
  EXPECT_EQ(library().currFWProfileName(), std::string(63, 'x') + "_1");
  EXPECT_EQ(mouse().slotName(1), std::string(63, 'x') + "_1");
}

TEST_F(Drafts, AMacroThatTheUserChangedSurvivesTheReadOfASlot) {
  putWork();
  const auto macro = addMacro(1, "burst", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  macro->keyInfoArr().front()->setKeyCode(36);
  macro->setIsEdited(true);
  EXPECT_TRUE(NerinAction::loadSlot(1).value);
  EXPECT_EQ(eventsOf(*macro), (Events{{36, 0, 0}}));
}

}  // namespace
