// The application menu, the shortcuts, help and the web page.

#include <QApplication>
#include <QTest>

#include <gmock/gmock.h>

#include "Action/Service/DaemonMessages.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Menu : public ViewTest {
 protected:
  void SetUp() override {
    start();
    QApplication::setActiveWindow(&window());
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window()));
  }
  static std::string help() {
    return std::string(NERIN_RESOURCES) + "/Help/UserInterfaceSetupGuide_en.html";
  }
};

}  // namespace

TEST_F(Menu, TheOsdItemSaysWhatItDoesNextAndTellsTheService) {
  view().applicationMenu().popup({0, 0});
  EXPECT_EQ(menuItem("osdMenu").text(), QStringLiteral("Disable the OSD"));
  EXPECT_EQ(menuItem("osdMenu").data().toInt(), 2);
  view().applicationMenu().close();
  menuItem("osdMenu").trigger();
  EXPECT_FALSE(library().isOSD());
  EXPECT_EQ(menuItem("osdMenu").text(), QStringLiteral("Enable the OSD"));
  EXPECT_EQ(menuItem("osdMenu").data().toInt(), 1);
  EXPECT_THAT(messages(), ElementsAre("110"));
  EXPECT_EQ(posts().back().userInfo, (LXUserInfo{{"value1", false}}));
  menuItem("osdMenu").trigger();
  EXPECT_TRUE(library().isOSD());
  EXPECT_EQ(menuItem("osdMenu").data().toInt(), 2);
  EXPECT_EQ(posts().back().userInfo, (LXUserInfo{{"value1", true}}));
}

TEST_F(Menu, TheOsdItemIsBroughtUpToDateWhenTheMenuOpens) {
  EXPECT_TRUE(library().setIsOSD(false));
  view().applicationMenu().popup({0, 0});
  EXPECT_EQ(menuItem("osdMenu").text(), QStringLiteral("Enable the OSD"));
  view().applicationMenu().close();
}

TEST_F(Menu, TheSwitchForProgramsIsOnUntilItIsTakenAway) {
  view().applicationMenu().popup({0, 0});
  EXPECT_EQ(menuItem("switchMenu").text(), QStringLiteral("Switch slots for programs"));
  EXPECT_TRUE(menuItem("switchMenu").isChecked());
  view().applicationMenu().close();
  menuItem("switchMenu").trigger();
  EXPECT_FALSE(library().switchesSlots());
  EXPECT_FALSE(NerinAction::daemonGetSwitchSlots());
  EXPECT_FALSE(menuItem("switchMenu").isChecked());
  menuItem("switchMenu").trigger();
  EXPECT_TRUE(NerinAction::daemonGetSwitchSlots());
}

TEST_F(Menu, TheSwitchForProgramsIsBroughtUpToDateWhenTheMenuOpens) {
  EXPECT_TRUE(library().setSwitchesSlots(false));
  view().applicationMenu().popup({0, 0});
  EXPECT_FALSE(menuItem("switchMenu").isChecked());
  view().applicationMenu().close();
}

TEST_F(Menu, ASwitchThatCannotBeKeptStaysAsItWas) {
  std::filesystem::remove(preferenceFile());
  std::filesystem::create_directories(preferenceFile() / "in the way");
  menuItem("switchMenu").trigger();
  EXPECT_TRUE(menuItem("switchMenu").isChecked());
  EXPECT_EQ(status(), "The settings could not be saved");
}

TEST_F(Menu, HelpAndWebPageAreOpened) {
  menuItem("helpMenu").trigger();
  menuItem("webMenu").trigger();
  EXPECT_THAT(m_opened, ElementsAre(help(), "https://nerin.example/register"));
  EXPECT_TRUE(std::filesystem::exists(help()));
}

TEST_F(Menu, F1IsTheHelpAboutTheMainWindow) {
  QTest::keyClick(&window(), Qt::Key_F1);
  EXPECT_THAT(m_opened, ElementsAre("file://" + help() + "#main"));
}

TEST_F(Menu, QuitEndsTheProgramWithoutAQuestion) {
  editState->raiseNeedSave();
  menuItem("quitMenu").trigger();
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(Menu, AboutIsAskedFor) {
  int asked = 0;
  QObject::connect(&view(), &MainView::aboutRequested, &view(), [&] { ++asked; });
  menuItem("aboutMenu").trigger();
  EXPECT_EQ(asked, 1);
}

TEST_F(Menu, ControlSIsApply) {
  QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_THAT(messages(), IsEmpty());
  click("profileNewBtn");
  QTest::keyClick(&window(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(mouse().slotName(0), "NewPF_1");
  EXPECT_THAT(messages(), ElementsAre("101"));
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(Menu, ControlSTakesTheNameThatIsBeingTyped) {
  click("profileNewBtn");
  nameField().setFocus(Qt::MouseFocusReason);
  nameField().selectAll();
  QTest::keyClicks(&nameField(), QStringLiteral("Office"));
  QTest::keyClick(&nameField(), Qt::Key_S, Qt::ControlModifier);
  EXPECT_EQ(mouse().slotName(0), "Office");
  EXPECT_EQ(library().getProfileCount(), 1U);
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(Menu, EscapeDoesNotCloseTheMainWindow) {
  QTest::keyClick(&window(), Qt::Key_Escape);
  EXPECT_TRUE(window().isVisible());
  EXPECT_FALSE(termination::isTerminating());
}

TEST_F(Menu, ShortcutsRestWhileAChildIsOpen) {
  click("profileNewBtn");
  click("MacroSettingBtn");
  ASSERT_NE(child(), nullptr);
  QTest::keyClick(window().windowHandle(), Qt::Key_S, Qt::ControlModifier);
  QTest::keyClick(window().windowHandle(), Qt::Key_F1);
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_THAT(messages(), IsEmpty());
  // The help is about the window in front.
  EXPECT_THAT(m_opened, ElementsAre("file://" + help() + "#macros"));
}

TEST_F(Menu, TheLogGoesIntoAFileOfTheProgram) {
  EXPECT_TRUE(std::filesystem::exists(home() / "Library" / "Logs" / "com.corvex.NerinOption.log"));
}
