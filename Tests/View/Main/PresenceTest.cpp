// The reports of the background service about the mouse.

#include <QApplication>
#include <thread>

#include <gmock/gmock.h>

#include "Kit/Core/LXPlatform.h"
#include "Tests/Support/ViewTest.h"
#include "View/Assign/KeyAssignView.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/PopDialogView.h"
#include "View/Windows/Termination.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

// Delivers reports on another thread, as the bus does.
class ThreadedCenter final : public LXNotificationCenter {
 public:
  void postNotificationName(const std::string&, const std::string&,
                            const std::optional<LXUserInfo>&) override {}
  void addObserver(const std::string& name, Observer observer) override {
    observers[name] = std::move(observer);
  }
  void removeObserver(const std::string& name) override { observers.erase(name); }

  void report(const LXUserInfo& userInfo) {
    std::thread([&] { observers.at("NerinDevStatus")("", userInfo); }).join();
  }
  std::map<std::string, Observer> observers;
};

class MainViewPresence : public ViewTest {
 protected:
  std::shared_ptr<ThreadedCenter> useThreads() {
    auto center = std::make_shared<ThreadedCenter>();
    LXPlatform platform = LXPlatform::current();
    platform.notificationCenter = center;
    LXPlatform::install(platform);
    return center;
  }

  // How often the program starts itself anew. The message is sent in any case.
  int relaunchesAtARemovalUnderAChild(bool hasService) {
    int relaunches = 0;
    LXPlatform platform = LXPlatform::current();
    platform.hasService = [hasService] { return hasService; };
    platform.relaunch = [&] { ++relaunches; };
    LXPlatform::install(platform);
    start();
    click("MacroSettingBtn");
    report(100);
    EXPECT_TRUE(termination::isTerminating());
    EXPECT_THAT(messages(), ElementsAre("121"));
    return relaunches;
  }
};

}  // namespace

TEST_F(MainViewPresence, AStartWithoutAMouseMayBeDeclined) {
  mouse().detach();
  m_answer = false;
  start();
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(MainViewPresence, AStartGoesOnWhenTheMouseComes) {
  mouse().detach();
  m_duringQuestion = [this] {
    mouse().attach();
    view().devReportPro({{"type", 101}, {"value", 0}});
  };
  start();
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_EQ(shownName(), mouse().slotName(0));
}

TEST_F(MainViewPresence, TheMousesOwnSlotChangeIsShownWithoutAQuestion) {
  start();
  click("profileNewBtn");
  mouse().pressSlotButton(4);
  report(1, 4);
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(button("profile5Btn").isChecked());
  EXPECT_EQ(library().currFWProfileIndex(), 4);
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(MainViewPresence, ASlotThatTheMouseDoesNotHaveIsIgnored) {
  start();
  clearTrace();
  report(1, 10);
  report(1, -1);
  report(2, 3);
  report(7, 3);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(button("profile1Btn").isChecked());
}

TEST_F(MainViewPresence, AChildWindowRefusesAnySlotChange) {
  start();
  click("MacroSettingBtn");
  EXPECT_EQ(view().isModalSeron(), 1);
  ASSERT_NE(child(), nullptr);
  EXPECT_EQ(child()->size(), QSize(1048, 633));
  report(1, 4);
  chooseSlot(3);
  EXPECT_TRUE(button("profile1Btn").isChecked());
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  click("lightOptionBtn");
  EXPECT_EQ(view().isModalSeron(), 1);
  child()->close();
  EXPECT_EQ(view().isModalSeron(), 0);
  process();
  EXPECT_EQ(child(), nullptr);
  chooseSlot(3);
  EXPECT_EQ(library().currFWProfileIndex(), 2);
}

TEST_F(MainViewPresence, AReassignedButtonShowsItsNewCaption) {
  start();
  click("rightBtn");
  auto* assign = qobject_cast<KeyAssignView*>(child()->contentView());
  ASSERT_NE(assign, nullptr);
  EXPECT_EQ(assign->btnIndex(), 1);
  assign->setTmpBtnInfo(editState->selProfile().btnInfo[2]);
  assign->fillSettingData();
  assign->findChild<LXButton*>("okBtn")->click();
  EXPECT_EQ(button("rightBtn").title(), button("WhellBtn").title());
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(MainViewPresence, RemovalDeclinedQuits) {
  start();
  m_answer = false;
  report(100);
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(messages(), IsEmpty());
}

TEST_F(MainViewPresence, RemovalAcceptedWithoutTheMouseQuits) {
  start();
  mouse().detach();
  report(100);
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(MainViewPresence, TheMouseThatComesBackIsReadAnew) {
  start();
  click("profileNewBtn");
  m_duringQuestion = [this] {
    view().devReportPro({{"type", 100}, {"value", 0}});
    view().devReportPro({{"type", 101}, {"value", 0}});
  };
  clearTrace();
  report(100);
  EXPECT_EQ(m_asked.size(), 1U);
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_FALSE(view().isOutPlus());
  EXPECT_TRUE(editState->isNeedSave()) << "the edit is back";
  EXPECT_EQ(library().currFWProfileName(), "NewPF_1");
  EXPECT_FALSE(trace().empty());
  EXPECT_FALSE(hasSent("c407"));
}

TEST_F(MainViewPresence, AReportUnderADialogIsHandledAfterIt) {
  start();
  {
    const NestedLoop dialog;
    report(1, 6);
    EXPECT_EQ(library().currFWProfileIndex(), 0);
  }
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 6);
}

TEST_F(MainViewPresence, ARemovalUnderAPanelIsAskedAboutAfterIt) {
  start();
  m_answer = false;
  m_duringPanel = [this] {
    report(100);
    EXPECT_TRUE(view().isOutPlus());
    EXPECT_THAT(m_asked, IsEmpty());
  };
  click("linkProBtn");
  process();
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(MainViewPresence, AReportWithoutNumbersIsIgnored) {
  start();
  view().devReportPro({});
  view().devReportPro({{"type", 1}});
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}

TEST_F(MainViewPresence, ReportsOfAnotherThreadAreHandledOnTheMainOne) {
  const auto center = useThreads();
  start();
  EXPECT_TRUE(center->observers.contains("NerinDevStatus"));
  mouse().pressSlotButton(6);
  center->report({{"type", 1}, {"value", 6}});
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 6);
  center->report({{"type", 101}, {"value", 0}});
  EXPECT_TRUE(view().isDevOnTag());
  m_answer = false;
  center->report({{"type", 100}, {"value", 0}});
  EXPECT_FALSE(view().isDevOnTag());
  EXPECT_TRUE(view().isOutPlus());
  EXPECT_THAT(m_asked, IsEmpty());
  process();
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
}

TEST_F(MainViewPresence, AWindowThatGoesObservesNoMore) {
  const auto center = useThreads();
  start();
  center->report({{"type", 1}, {"value", 6}});
  destroyWindow();
  EXPECT_THAT(center->observers, IsEmpty());
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}

TEST_F(MainViewPresence, AStartDoesNotTakeThePresenceForReported) {
  start();
  EXPECT_FALSE(view().isDevOnTag());
  EXPECT_FALSE(view().isOutPlus());
  EXPECT_THAT(m_asked, IsEmpty());
}

TEST_F(MainViewPresence, AReportedPresenceNeedsNoValue) {
  start();
  view().devReportPro({{"type", 101}});
  EXPECT_TRUE(view().isDevOnTag());
  view().devReportPro({{"value", 3}});
  view().devReportPro({{"type", 102}, {"value", 3}});
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 0);
  EXPECT_TRUE(view().isDevOnTag());
}

TEST_F(MainViewPresence, OnlyPresenceCountsWhileARemovalIsHandled) {
  start();
  m_duringQuestion = [this] {
    view().devReportPro({{"type", 1}, {"value", 6}});
    view().devReportPro({{"type", 100}, {"value", 0}});
    EXPECT_FALSE(view().isDevOnTag());
    view().devReportPro({{"type", 101}, {"value", 0}});
    EXPECT_TRUE(view().isDevOnTag());
  };
  report(100);
  process();
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}

TEST_F(MainViewPresence, ARemovalAtTheStartAsksOnce) {
  mouse().detach();
  m_duringQuestion = [this] {
    view().devReportPro({{"type", 100}, {"value", 0}});
    LocalNotifications::shared().post(QStringLiteral("Notify_OutPlusEnd"));
    process();
    mouse().attach();
    view().devReportPro({{"type", 101}, {"value", 0}});
  };
  start();
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_FALSE(view().isOutPlus());
}

TEST_F(MainViewPresence, AChildThatEndedByRemovalLooksForTheMouse) {
  start();
  clearTrace();
  LocalNotifications::shared().post(QStringLiteral("Notify_OutPlusEnd"));
  EXPECT_THAT(m_asked, IsEmpty());
  mouse().detach();
  view().devReportPro({{"type", 101}});
  m_answer = false;
  LocalNotifications::shared().post(QStringLiteral("Notify_OutPlusEnd"));
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNoDevice", true)));
  EXPECT_FALSE(view().isDevOnTag());
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(MainViewPresence, TipsAreNoneOfItsBusiness) {
  start();
  clearTrace();
  mouse().detach();
  for (const char* name : {"LXNotifyShowTipNameStr", "LXNotifyHideTipNameStr", "Notify_OutPlus",
                           "Notify_CloseWindow_Event"}) {
    LocalNotifications::shared().post(QString::fromLatin1(name));
  }
  process();
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(MainViewPresence, ASlotChangeAfterARefusedOneAsksAgain) {
  start();
  click("profileNewBtn");
  click("MacroSettingBtn");
  report(1, 4);
  EXPECT_TRUE(button("profile1Btn").isChecked());
  child()->close();
  process();
  m_answer = false;
  chooseSlot(3);
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNeedSave", true)));
}

TEST_F(MainViewPresence, TheMousesOwnChangeIsMirroredAsEveryOther) {
  start();
  clearTrace();
  mouse().pressSlotButton(4);
  report(1, 4);
  EXPECT_TRUE(hasSent("c40704"));
  EXPECT_THAT(messages(), ElementsAre("111"));
  clearTrace();
  report(1, 4);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_THAT(messages(), testing::SizeIs(1));
}

TEST_F(MainViewPresence, ARemovalUnderAChildLeavesTheRelaunchToTheService) {
  EXPECT_EQ(relaunchesAtARemovalUnderAChild(true), 0);
}

TEST_F(MainViewPresence, ARemovalUnderAChildWithoutTheServiceRelaunchesByItself) {
  EXPECT_EQ(relaunchesAtARemovalUnderAChild(false), 1);
}

TEST_F(MainViewPresence, ARemovalUnderAListOfAChildEndsTheProgram) {
  start();
  click("rightBtn");
  ASSERT_NE(child(), nullptr);
  child()->contentView()->findChild<LXButton*>(QStringLiteral("comSelBtn"))->click();
  ASSERT_NE(openList(), nullptr);
  report(100);
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(messages(), ElementsAre("121"));
}
