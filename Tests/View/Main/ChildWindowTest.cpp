// The four windows that the main window opens.

#include <QApplication>
#include <QTest>
#include <QWindow>

#include <gmock/gmock.h>

#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Pair;

namespace {

struct Row {
  const char* opener;
  QSize size;
  int strip;
};

std::ostream& operator<<(std::ostream& out, const Row& row) {
  return out << row.opener;
}

class ChildWindow : public ViewTest, public testing::WithParamInterface<Row> {
 protected:
  void SetUp() override { start(); }
};

class ChildWindowRules : public ViewTest {
 protected:
  void SetUp() override { start(); }
  static _BTN_INFO primaryClick() { return button(1, {1}); }
  using ActionTest::button;
  using ViewTest::button;
};

}  // namespace

TEST_P(ChildWindow, HasItsSizeAndStripAndStandsOverTheMainWindow) {
  click(GetParam().opener);
  ASSERT_NE(child(), nullptr);
  EXPECT_EQ(child()->size(), GetParam().size);
  EXPECT_EQ(child()->isCanDrag(), GetParam().strip > 0);
  EXPECT_EQ(child()->dragHeight(), GetParam().strip);
  EXPECT_TRUE(child()->windowFlags() & Qt::FramelessWindowHint);
  EXPECT_EQ(child()->frameGeometry().center(), window().frameGeometry().center());
  EXPECT_EQ(view().isModalSeron(), 1);
  EXPECT_TRUE(window().isVisible());
}

TEST_P(ChildWindow, TheMainWindowTakesNoInputUntilEscapeClosesIt) {
  click(GetParam().opener);
  ASSERT_NE(child(), nullptr);
  clearTrace();
  for (const char* name : {"profileNewBtn", "profile3Btn", "battleModeBtn", "goRightBtn",
                           "linkProChk", "closeBtn", "helpBtn", "menuBtn"}) {
    clickThroughWindow(button(name));
  }
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(button("linkProChk").Checked());
  EXPECT_FALSE(button("goRightBtn").isChecked());
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_THAT(m_opened, IsEmpty());
  EXPECT_THAT(trace(), IsEmpty());
  QTest::keyClick(child(), Qt::Key_Escape);
  process();
  EXPECT_EQ(child(), nullptr);
  EXPECT_EQ(view().isModalSeron(), 0);
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_EQ(QApplication::activeWindow(), &window());
  clickThroughWindow(button("profileNewBtn"));
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_P(ChildWindow, StaysInFrontOfTheMainWindowAndTakesTheKeyboardBack) {
  click(GetParam().opener);
  ASSERT_NE(child(), nullptr);
  // Of the kinds of windows, window managers keep this one in front.
  EXPECT_EQ(child()->windowHandle()->type(), Qt::Dialog);
  EXPECT_EQ(child()->windowHandle()->transientParent(), window().windowHandle());
  // What a window manager does when the blocked window is clicked.
  window().activateWindow();
  process();
  EXPECT_EQ(QApplication::activeWindow(), child());
}

TEST_P(ChildWindow, CanBeOpenedAgain) {
  for (int i = 0; i < 3; ++i) {
    click(GetParam().opener);
    ASSERT_NE(child(), nullptr);
    child()->close();
    process();
    ASSERT_EQ(view().isModalSeron(), 0);
  }
}

TEST_P(ChildWindow, RemovalWhileItIsOpenAsksForARelaunchAndQuits) {
  click(GetParam().opener);
  mouse().detach();
  clearTrace();
  report(100);
  EXPECT_THAT(messages(), ElementsAre("121"));
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(trace(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(Every, ChildWindow,
                         testing::Values(Row{"MacroSettingBtn", {1048, 633}, 70},
                                         Row{"lightOptionBtn", {678, 493}, 60},
                                         Row{"preformanceBtn", {545, 493}, 45},
                                         Row{"rightBtn", {548, 359}, 0}),
                         [](const auto& test) { return std::string(test.param.opener); });

TEST_F(ChildWindowRules, OnlyOneIsOpenAtATime) {
  click("MacroSettingBtn");
  for (const char* name : {"lightOptionBtn", "preformanceBtn", "rightBtn", "MacroSettingBtn"}) {
    click(name);
  }
  EXPECT_EQ(view().isModalSeron(), 1);
  EXPECT_EQ(view().selBtnIndex(), -1);
}

TEST_F(ChildWindowRules, ForeignWindowsDoNotCount) {
  LXNoTitleWindow foreign({10, 10});
  view().windowWillClose(foreign);
  EXPECT_EQ(view().isModalSeron(), 0);
  click("MacroSettingBtn");
  view().windowWillClose(foreign);
  EXPECT_EQ(view().isModalSeron(), 1);
}

TEST_F(ChildWindowRules, AnEditInTheChildRaisesApplyWhenItCloses) {
  click("lightOptionBtn");
  editState->edit().lightColorArr[1].cG ^= 1U;
  EXPECT_FALSE(button("applyBtn").isEnabled());
  child()->close();
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_TRUE(button("applyBtn").isEnabled());
  EXPECT_TRUE(button("okBtn").isEnabled());
}

TEST_F(ChildWindowRules, AChildThatSaysSoRaisesApplyToo) {
  click("lightOptionBtn");
  editState->raiseNeedSave();
  child()->close();
  EXPECT_TRUE(button("applyBtn").isEnabled());
}

TEST_F(ChildWindowRules, TheKeyAssignmentLeavesTheButtonAloneUnlessItWasChanged) {
  const _Nerin_PROFILE before = editState->selProfile();
  click("rightBtn");
  EXPECT_EQ(view().selBtnIndex(), 1);
  child()->close();
  EXPECT_EQ(std::memcmp(&before, &editState->selProfile(), sizeof before), 0);
}

TEST_F(ChildWindowRules, APrimaryClickIsToldByThreeFields) {
  for (auto& info : editState->edit().btnInfo) {
    info = button(2);
  }
  click("rightBtn");
  child()->close();
  process();
  ASSERT_EQ(view().selBtnIndex(), 1);
  editState->edit().btnInfo[1] = primaryClick();
  EXPECT_FALSE(view().checkOnlyLeft(1));
  EXPECT_TRUE(view().checkOnlyLeft(0));
  editState->edit().btnInfo[9] = primaryClick();
  EXPECT_TRUE(view().checkOnlyLeft(1));
  EXPECT_TRUE(view().checkOnlyLeft(9));
  editState->edit().btnInfo[9].KeyBit[0] = 2;
  EXPECT_FALSE(view().checkOnlyLeft(1));
  editState->edit().btnInfo[9] = primaryClick();
  editState->edit().btnInfo[9].FuncID = 2;
  EXPECT_FALSE(view().checkOnlyLeft(1));
  editState->edit().btnInfo[9] = primaryClick();
  editState->edit().btnInfo[9].FuncTableId = 2;
  EXPECT_FALSE(view().checkOnlyLeft(1));
  EXPECT_FALSE(view().checkOnlyLeft(-1));
  EXPECT_FALSE(view().checkOnlyLeft(16));
}

TEST_F(ChildWindowRules, WithoutAButtonChosenEveryButtonMayGo) {
  EXPECT_FALSE(view().IsCurrSelectedBtn());
  EXPECT_TRUE(view().checkOnlyLeft(0));
  EXPECT_FALSE(view().checkOnlyLeft(16));
}

TEST_F(ChildWindowRules, TheLastPrimaryClickIsKeptWhateverTheAnswer) {
  for (const bool answer : {true, false}) {
    m_answer = answer;
    click("leftClickBtn");
    EXPECT_EQ(child(), nullptr);
    EXPECT_EQ(view().isModalSeron(), 0);
  }
  EXPECT_THAT(m_asked, ElementsAre(Pair("WarningNeedLeft", true), Pair("WarningNeedLeft", true)));
}
