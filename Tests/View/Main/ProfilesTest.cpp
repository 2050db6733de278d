#include <gmock/gmock.h>

#include "Kit/Core/LXMenuData.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class MainViewProfiles : public ViewTest {
 protected:
  void applyNew() {
    click("profileNewBtn");
    click("applyBtn");
  }
};

TEST_F(MainViewProfiles, AProfileThatAnotherProgramAddedAppearsWithTheNextSave) {
  start();
  putProfile("Strange.pro", 77, "Strange");
  click("profileNewBtn");
  EXPECT_NE(library().getProfileByName("Strange"), nullptr);
  ASSERT_FALSE((*profileNode)->children().empty());
  EXPECT_EQ((*profileNode)->children().back()->nodeData()->titleStr(), "Strange");
  EXPECT_THAT(namesIn(libraryFolder()), testing::Contains("Strange.pro"));
}

}  // namespace

TEST_F(MainViewProfiles, NewUnbindsTheSlotUntilApply) {
  start();
  applyNew();
  click("profileNewBtn");
  EXPECT_EQ(library().fwProfileID()[0], ProfieController::notLinked);
  EXPECT_EQ(title(), "");
  EXPECT_EQ(shownName(), "NewPF_2");
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_EQ(library().getProfileCount(), 1U);
  click("applyBtn");
  EXPECT_EQ(library().getProfileCount(), 2U);
  EXPECT_EQ(title(), "NewPF_2");
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("NewPF_1.pro", "NewPF_2.pro"));
}

TEST_F(MainViewProfiles, FiftyAreTheMost) {
  start();
  for (int i = 0; i < 50; ++i) {
    library().addProfileByName("p" + std::to_string(i), nullptr);
  }
  click("profileNewBtn");
  EXPECT_THAT(m_shown, ElementsAre("Maximum number of profiles reached"));
  EXPECT_FALSE(editState->isNeedSave());
  library().setSelectByName("p1");
  click("profileSaveBtn");
  EXPECT_EQ(m_shown.size(), 2U);
  writeText(home() / "one more.pro", profileBytes(900, "One more"));
  m_chosen = home() / "one more.pro";
  click("profileImportBtn");
  ASSERT_EQ(m_shown.size(), 3U);
  EXPECT_EQ(m_shown[2], "Maximum number of profiles reached");
  EXPECT_EQ(library().getProfileCount(), 50U);
}

TEST_F(MainViewProfiles, DuplicateTakesAFreeNameAndKeepsTheEdit) {
  start();
  applyNew();
  editState->edit().poRate = 2;
  click("profileSaveBtn");
  EXPECT_EQ(title(), "");
  EXPECT_FALSE(library().currProfile());
  click("applyBtn");
  EXPECT_EQ(library().getProfileCount(), 2U);
  EXPECT_EQ(library().currProfile()->profileData().poRate, 2U);
  EXPECT_NE(library().currProfile()->name(), "NewPF_1");
}

TEST_F(MainViewProfiles, DuplicateAndExportNeedAProfile) {
  start();
  click("profileSaveBtn");
  click("profileExportBtn");
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoItem", false), Pair("WarningNoItem", false)));
  EXPECT_THAT(m_panels, IsEmpty());
}

TEST_F(MainViewProfiles, DeleteAsksNothing) {
  start();
  applyNew();
  click("profileDelBtn");
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_EQ(title(), "");
  EXPECT_EQ(library().fwProfileID()[0], ProfieController::notLinked);
  EXPECT_THAT(namesIn(libraryFolder()), IsEmpty());
}

TEST_F(MainViewProfiles, RenameToAnotherProfilesNameTakesAFreeOne) {
  start();
  applyNew();
  typeName("game");
  chooseSlot(2);
  applyNew();
  typeName("game");
  EXPECT_EQ(mouse().slotName(1), "NewPF_1");
  typeName("NewPF_1");
  EXPECT_EQ(library().getProfileCount(), 2U);
}

TEST_F(MainViewProfiles, ExportAppendsTheExtensionAndAsksBeforeItReplaces) {
  start();
  applyNew();
  m_chosen = home() / "Office";
  click("profileExportBtn");
  ASSERT_EQ(m_panels.size(), 1U);
  EXPECT_EQ(m_panels[0].name, "NewPF_1");
  EXPECT_EQ(m_panels[0].folder, home() / "Documents");
  const auto path = home() / "Office.pro";
  EXPECT_EQ(std::filesystem::file_size(path), 5264U);
  writeText(path, "precious");
  m_answer = false;
  click("profileExportBtn");
  EXPECT_EQ(textOfFile(path), "precious");
  m_answer = true;
  click("profileExportBtn");
  EXPECT_EQ(std::filesystem::file_size(path), 5264U);
  m_chosen.reset();
  click("profileExportBtn");
  EXPECT_EQ(m_shown.size(), 2U);
}

TEST_F(MainViewProfiles, ExportKeepsAnExtensionThatTheUserTyped) {
  start();
  applyNew();
  for (const char* name : {"typed.pro", "TYPED.PRO", "version 1.2.pro"}) {
    m_chosen = home() / name;
    click("profileExportBtn");
    EXPECT_EQ(std::filesystem::file_size(home() / name), 5264U);
    EXPECT_FALSE(std::filesystem::exists(home() / (name + std::string(".pro"))));
  }
  m_chosen = home() / "version 1.3";
  click("profileExportBtn");
  EXPECT_EQ(std::filesystem::file_size(home() / "version 1.3.pro"), 5264U);
}

TEST_F(MainViewProfiles, ImportAddsAndTellsOfABrokenFile) {
  start();
  applyNew();
  m_chosen = home() / "copy";
  click("profileExportBtn");
  m_chosen = home() / "copy.pro";
  click("profileImportBtn");
  EXPECT_EQ(library().getProfileCount(), 2U);
  EXPECT_THAT(m_shown, IsEmpty());
  m_chosen = home() / "missing.pro";
  click("profileImportBtn");
  EXPECT_THAT(m_shown, ElementsAre("Profile data destruction"));
  for (const std::string& bytes : {std::string(), profileBytes(9, "Cut").substr(0, 5263)}) {
    m_shown.clear();
    writeText(home() / "broken.pro", bytes);
    m_chosen = home() / "broken.pro";
    click("profileImportBtn");
    EXPECT_THAT(m_shown, ElementsAre("Profile data destruction"));
  }
  m_shown.clear();
  m_chosen = home();
  click("profileImportBtn");
  EXPECT_THAT(m_shown, ElementsAre("Profile data destruction"));
  m_chosen.reset();
  click("profileImportBtn");
  EXPECT_EQ(library().getProfileCount(), 2U);
}

TEST_F(MainViewProfiles, ChosenFromThePopUpABindsTheSlot) {
  start();
  applyNew();
  editState->edit().poRate = 1;
  click("profileNewBtn");
  click("applyBtn");
  click("currProfileBtn");
  LXMenulist* list = openList();
  ASSERT_NE(list, nullptr);
  EXPECT_EQ(list->count(), 2);
  EXPECT_EQ(list->menuWidth(), 188);
  emit list->itemClicked(list->item(0));
  EXPECT_FALSE(list->isShowMenu());
  EXPECT_EQ(title(), "NewPF_1");
  EXPECT_EQ(library().fwProfileID()[0], library().getProfileByName("NewPF_1")->profileId());
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(MainViewProfiles, TheListHasEveryProfileInOrderAndOnlyItsOwnEntriesCount) {
  putProfile("b.pro", 9, "Beta");
  putProfile("a.pro", 12, "Alpha");
  start();
  ASSERT_EQ((*profileNode)->children().size(), 2U);
  EXPECT_EQ((*profileNode)->children()[0]->nodeData()->titleStr(), "Beta");
  EXPECT_EQ((*profileNode)->children()[1]->nodeData()->titleStr(), "Alpha");
  click("currProfileBtn");
  LXMenulist* list = openList();
  ASSERT_NE(list, nullptr);
  const auto foreign = std::make_shared<LXTreeNode>(std::make_shared<LXMenuData>());
  view().onMenulistSelected(*list, foreign);
  LXMenulist other(*profileNode, 12);
  view().onMenulistSelected(other, (*profileNode)->children()[0]);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_EQ(title(), "");
}

TEST_F(MainViewProfiles, AnEmptyLibrarySaysHowToMakeAProfile) {
  start();
  click("currProfileBtn");
  ASSERT_NE(openList(), nullptr);
  EXPECT_EQ(openList()->note(), "No profiles yet. Make a new one.");
}

TEST_F(MainViewProfiles, ResetBringsTheListUpToDate) {
  start();
  applyNew();
  click("reDefBtn");
  ASSERT_EQ((*profileNode)->children().size(), 1U);
  EXPECT_EQ((*profileNode)->children()[0]->nodeData()->titleStr(), "Profile#1");
}
