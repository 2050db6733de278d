#include <QApplication>
#include <QKeyEvent>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXSetpPanelObj.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Delegate : public LXSetpPanelDelegate {
 public:
  bool shouldSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override {
    calls.push_back("should " + std::to_string(newIndex) + " " + std::to_string(oldIndex));
    m_currentWhenAsked = sender.currentSetp();
    return allows;
  }
  void onSelectIndex(int newIndex, int oldIndex, LXSetpPanelObj& sender) override {
    calls.push_back("on " + std::to_string(newIndex) + " " + std::to_string(oldIndex));
    m_currentWhenTold = sender.currentSetp();
  }
  bool allows = true;
  std::vector<std::string> calls;
  int m_currentWhenAsked = -1;
  int m_currentWhenTold = -1;
};

class StepPanel : public testing::Test {
 protected:
  StepPanel() {
    for (LXButton* item : {&m_first, &m_second, &m_third}) {
      item->setGeometry(0, 0, 20, 20);
    }
    m_panel.addItem(&m_first, &m_firstBox);
    m_panel.addItem(&m_second, &m_secondBox);
    m_panel.addItem(&m_third);
    m_panel.setSetpDelegate(&m_delegate);
  }
  static void pressKey(LXButton& on, int key) {
    QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier);
    QApplication::sendEvent(&on, &press);
  }
  std::vector<bool> checked() const {
    return {m_first.isChecked(), m_second.isChecked(), m_third.isChecked()};
  }

  QWidget m_parent;
  LXButton m_first{&m_parent};
  LXButton m_second{&m_parent};
  LXButton m_third{&m_parent};
  QWidget m_firstBox;
  QWidget m_secondBox;
  LXSetpPanelObj m_panel;
  Delegate m_delegate;
};

}  // namespace

TEST_F(StepPanel, BeginsWithNothingSelected) {
  EXPECT_EQ(m_panel.currentSetp(), 0);
  EXPECT_THAT(checked(), ElementsAre(false, false, false));
  EXPECT_FALSE(m_firstBox.isVisible());
}

TEST_F(StepPanel, AsksBeforeAndTellsAfterAChange) {
  m_panel.selectindex(2);
  EXPECT_THAT(m_delegate.calls, ElementsAre("should 2 0", "on 2 0"));
  EXPECT_EQ(m_delegate.m_currentWhenAsked, 0);
  EXPECT_EQ(m_delegate.m_currentWhenTold, 2);
  EXPECT_THAT(checked(), ElementsAre(false, true, false));
  m_third.click();
  EXPECT_EQ(m_panel.currentSetp(), 3);
  EXPECT_THAT(m_delegate.calls, ElementsAre("should 2 0", "on 2 0", "should 3 2", "on 3 2"));
}

TEST_F(StepPanel, ShowsOnlyTheViewOfTheSelectedItem) {
  m_panel.selectindex(1);
  EXPECT_TRUE(m_firstBox.isVisible());
  EXPECT_FALSE(m_secondBox.isVisible());
  m_panel.selectindex(2);
  EXPECT_FALSE(m_firstBox.isVisible());
  EXPECT_TRUE(m_secondBox.isVisible());
  m_panel.selectindex(3);
  EXPECT_FALSE(m_secondBox.isVisible());
}

TEST_F(StepPanel, SelectingTheSelectedItemAgainDoesNothing) {
  m_panel.selectindex(2);
  m_delegate.calls.clear();
  m_panel.selectindex(2);
  m_second.click();
  EXPECT_THAT(m_delegate.calls, IsEmpty());
  EXPECT_THAT(checked(), ElementsAre(false, true, false));
}

TEST_F(StepPanel, AnIndexOutsideTheItemsDoesNothing) {
  m_panel.selectindex(2);
  m_delegate.calls.clear();
  for (const int index : {0, -1, 4, 1000}) {
    m_panel.selectindex(index);
  }
  EXPECT_THAT(m_delegate.calls, IsEmpty());
  EXPECT_EQ(m_panel.currentSetp(), 2);
}

TEST_F(StepPanel, ARefusedClickShowsTheOldItem) {
  m_panel.selectindex(2);
  m_delegate.calls.clear();
  m_delegate.allows = false;
  m_first.click();
  EXPECT_THAT(m_delegate.calls, ElementsAre("should 1 2"));
  EXPECT_EQ(m_panel.currentSetp(), 2);
  EXPECT_THAT(checked(), ElementsAre(false, true, false));
  EXPECT_TRUE(m_secondBox.isVisible());
  EXPECT_FALSE(m_firstBox.isVisible());
}

TEST_F(StepPanel, ResetReturnsToNoneAndCallsNobody) {
  m_panel.selectindex(2);
  m_delegate.calls.clear();
  m_panel.resetSetp();
  EXPECT_EQ(m_panel.currentSetp(), 0);
  EXPECT_THAT(checked(), ElementsAre(false, false, false));
  EXPECT_THAT(m_delegate.calls, IsEmpty());
  m_panel.selectindex(2);
  EXPECT_THAT(m_delegate.calls, ElementsAre("should 2 0", "on 2 0"));
}

TEST_F(StepPanel, WithoutADelegateEveryChangeIsAllowed) {
  m_panel.setSetpDelegate(nullptr);
  m_first.click();
  EXPECT_EQ(m_panel.currentSetp(), 1);
}

TEST_F(StepPanel, TheArrowsMoveAndStopAtTheEnds) {
  m_panel.selectindex(1);
  pressKey(m_first, Qt::Key_Right);
  EXPECT_EQ(m_panel.currentSetp(), 2);
  pressKey(m_second, Qt::Key_Down);
  EXPECT_EQ(m_panel.currentSetp(), 3);
  pressKey(m_third, Qt::Key_Right);
  EXPECT_EQ(m_panel.currentSetp(), 3);
  pressKey(m_third, Qt::Key_Left);
  pressKey(m_second, Qt::Key_Up);
  pressKey(m_first, Qt::Key_Left);
  EXPECT_EQ(m_panel.currentSetp(), 1);
  m_delegate.allows = false;
  pressKey(m_first, Qt::Key_Right);
  EXPECT_EQ(m_panel.currentSetp(), 1);
}

TEST_F(StepPanel, TheArrowsStopAtAnItemWithoutAButton) {
  m_panel.addItem(nullptr);
  m_panel.selectindex(3);
  pressKey(m_third, Qt::Key_Right);
  EXPECT_EQ(m_panel.currentSetp(), 3);
  m_panel.selectindex(4);
  pressKey(m_third, Qt::Key_Left);
  EXPECT_EQ(m_panel.currentSetp(), 2);
}

TEST_F(StepPanel, TabStopsOnceInTheGroup) {
  EXPECT_EQ(m_first.focusPolicy(), Qt::StrongFocus);
  EXPECT_EQ(m_second.focusPolicy(), Qt::ClickFocus);
  m_panel.selectindex(2);
  EXPECT_EQ(m_first.focusPolicy(), Qt::ClickFocus);
  EXPECT_EQ(m_second.focusPolicy(), Qt::StrongFocus);
  EXPECT_EQ(m_third.focusPolicy(), Qt::ClickFocus);
}
