// The frameless window: dragging, closing, blocking and fitting the screen.

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXButton.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class FramelessWindow : public ViewTest {};

}  // namespace

TEST_F(FramelessWindow, APressThroughAccessibilityStopsAtABlockedWindow) {
  start();
  auto* accessible = QAccessible::queryAccessibleInterface(&button("linkProChk"));
  ASSERT_NE(accessible, nullptr);
  auto* actions = accessible->actionInterface();
  ASSERT_NE(actions, nullptr);
  EXPECT_THAT(actions->actionNames(),
              testing::Contains(QAccessibleActionInterface::toggleAction()));
  click("MacroSettingBtn");
  actions->doAction(QAccessibleActionInterface::toggleAction());
  process();
  EXPECT_FALSE(button("linkProChk").Checked());
  child()->close();
  process();
  actions->doAction(QAccessibleActionInterface::toggleAction());
  process();
  EXPECT_TRUE(button("linkProChk").Checked());
  EXPECT_TRUE(library().currIsActive());
}

TEST_F(FramelessWindow, OnlyTheStripAtTheTopDragsAWindow) {
  LXNoTitleWindow window({200, 100});
  EXPECT_TRUE(window.windowFlags() & Qt::FramelessWindowHint);
  EXPECT_EQ(window.size(), QSize(200, 100));
  window.setDragHeight(30);
  EXPECT_FALSE(window.isInDragStrip({10, 10}));
  window.setIsCanDrag(true);
  EXPECT_TRUE(window.isInDragStrip({0, 0}));
  EXPECT_TRUE(window.isInDragStrip({199, 29}));
  EXPECT_FALSE(window.isInDragStrip({10, 30}));
  EXPECT_FALSE(window.isInDragStrip({-1, 10}));
  window.setDragHeight(0);
  EXPECT_FALSE(window.isInDragStrip({10, 0}));
}

TEST_F(FramelessWindow, TheRightButtonInTheStripAsksForTheMenu) {
  LXNoTitleWindow window({200, 100});
  window.setContentView(new QWidget);
  window.setIsCanDrag(true);
  window.setDragHeight(30);
  window.show();
  std::vector<QPoint> asked;
  QObject::connect(&window, &LXNoTitleWindow::menuRequested, &window,
                   [&](const QPoint& position) { asked.push_back(position); });
  QTest::mouseClick(window.windowHandle(), Qt::RightButton, {}, {20, 60});
  EXPECT_THAT(asked, IsEmpty());
  QTest::mouseClick(window.windowHandle(), Qt::RightButton, {}, {20, 10});
  EXPECT_THAT(asked, ElementsAre(window.mapToGlobal(QPoint(20, 10))));
}

TEST_F(FramelessWindow, AWindowTellsItsDelegateThatItCloses) {
  class Delegate : public LXWindowDelegate {
   public:
    void windowWillClose(LXNoTitleWindow& window) override {
      wasVisible = window.isVisible();
      ++closes;
    }
    bool wasVisible = false;
    int closes = 0;
  };
  Delegate delegate;
  LXNoTitleWindow window({200, 100});
  window.setWindowDelegate(&delegate);
  window.show();
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_EQ(delegate.closes, 0);
  window.setClosesOnEscape(true);
  QTest::keyClick(&window, Qt::Key_Escape);
  EXPECT_EQ(delegate.closes, 1);
  EXPECT_TRUE(delegate.wasVisible);
  EXPECT_FALSE(window.isVisible());
}

TEST_F(FramelessWindow, AWindowThatIsHigherThanTheScreenScrollsToWhatHasTheKeyboard) {
  LXNoTitleWindow window({300, 720});
  auto* content = new QWidget;
  auto* top = new LXButton(content);
  top->setGeometry(10, 10, 80, 24);
  auto* bottom = new LXButton(content);
  bottom->setGeometry(10, 690, 80, 24);
  window.setContentView(content);
  window.fitInto(680);
  EXPECT_EQ(window.height(), 680);
  EXPECT_GT(window.width(), 300);
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  EXPECT_FALSE(window.rect().contains(bottom->mapTo(&window, QPoint(40, 20))));
  top->setFocus(Qt::TabFocusReason);
  QTest::keyClick(top, Qt::Key_Tab);
  EXPECT_TRUE(bottom->hasFocus());
  EXPECT_TRUE(window.rect().contains(bottom->mapTo(&window, QPoint(40, 20))));
  top->showFocus();
  EXPECT_TRUE(window.rect().contains(top->mapTo(&window, QPoint(40, 2))));
}

TEST_F(FramelessWindow, AWindowThatFitsDoesNotScroll) {
  LXNoTitleWindow window({300, 200});
  auto* content = new QWidget;
  window.setContentView(content);
  window.fitInto(680);
  EXPECT_EQ(window.size(), QSize(300, 200));
  EXPECT_EQ(content->parentWidget(), &window);
}
