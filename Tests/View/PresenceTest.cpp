#include <gmock/gmock.h>

#include "Tests/View/ViewTest.h"
#include "View/NestedLoop.h"
#include "View/PlainChildView.h"
#include "View/Termination.h"

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

class MainViewPresence : public ViewTest {};

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
  EXPECT_TRUE(isNeedSave);
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

TEST_F(MainViewPresence, ChildWindowsHaveTheirSizesAndStrips) {
  struct Child {
    const char* opener;
    QSize size;
    int strip;
  };
  start();
  for (const Child& one :
       {Child{"MacroSettingBtn", {1048, 633}, 70}, Child{"lightOptionBtn", {678, 493}, 60},
        Child{"preformanceBtn", {545, 493}, 45}, Child{"rightBtn", {548, 359}, 0}}) {
    click(one.opener);
    ASSERT_NE(child(), nullptr) << one.opener;
    EXPECT_EQ(child()->size(), one.size) << one.opener;
    EXPECT_EQ(child()->dragHeight(), one.strip) << one.opener;
    child()->close();
    process();
  }
  EXPECT_FALSE(isNeedSave);
}

TEST_F(MainViewPresence, WhatAChildEditedCanBeApplied) {
  start();
  click("preformanceBtn");
  selProfile.poRate = (selProfile.poRate + 1) % 4;
  child()->close();
  EXPECT_TRUE(isNeedSave);
  EXPECT_TRUE(button("applyBtn").isEnabled());
}

TEST_F(MainViewPresence, AReassignedButtonShowsItsNewCaption) {
  start();
  click("rightBtn");
  auto* assign = qobject_cast<PlainChildView*>(child()->contentView());
  ASSERT_NE(assign, nullptr);
  EXPECT_EQ(assign->btnIndex(), 1);
  assign->setTmpBtnInfo(selProfile.btnInfo[2]);
  child()->close();
  EXPECT_EQ(button("rightBtn").title(), button("WhellBtn").title());
  EXPECT_TRUE(isNeedSave);
}

TEST_F(MainViewPresence, RemovalUnderAChildAsksForARelaunchAndQuits) {
  start();
  click("MacroSettingBtn");
  mouse().detach();
  report(100);
  EXPECT_THAT(messages(), Contains("121"));
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(termination::isTerminating());
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
  EXPECT_FALSE(isNeedSave);
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

TEST_F(MainViewPresence, AReportWithoutNumbersIsIgnored) {
  start();
  view().devReportPro({});
  view().devReportPro({{"type", 1}});
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 0);
}
