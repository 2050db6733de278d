// The fields, the slider and the list's ground.

#include <QAccessible>
#include <QApplication>
#include <QMouseEvent>
#include <QScrollBar>
#include <QShortcut>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/BGHUDScrollView.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Widgets : public ViewTest {};

}  // namespace

TEST_F(Widgets, TheTextOfAFieldFadesWhileItCannotBeUsed) {
  LXTextField field;
  field.setTextColor(white);
  EXPECT_EQ(field.palette().color(QPalette::Text), white);
  field.setEnabled(false);
  EXPECT_LT(field.palette().color(QPalette::Disabled, QPalette::Text).alpha(), white.alpha());
  EXPECT_EQ(field.palette().color(QPalette::Active, QPalette::Text), white);
}

TEST_F(Widgets, NumbersStayWithinTheirLimits) {
  LXNumberTextField field;
  int commits = 0;
  field.setAction([&](LXTextField&) { ++commits; });
  field.setMaxNum(8200);
  field.setMinNum(100);
  field.setValue(400);
  EXPECT_EQ(commits, 0);
  for (const auto& [typed, value] :
       {std::pair{"9000", 8200}, {"5", 100}, {"", 100}, {"99999999999999999999", 8200}}) {
    field.setText(QString::fromLatin1(typed));
    field.setModified(true);
    field.commit();
    EXPECT_EQ(field.text().toInt(), value) << typed;
  }
  EXPECT_EQ(commits, 4);
  field.commit();
  EXPECT_EQ(commits, 4);
}

TEST_F(Widgets, AHugeNegativeNumberIsTheSmallest) {
  LXNumberTextField field;
  field.setHasNegative(true);
  field.setMaxNum(50);
  field.setMinNum(-50);
  field.setText(QStringLiteral("-99999999999999999999"));
  EXPECT_EQ(field.value(), -50);
  field.setText(QStringLiteral("-"));
  EXPECT_EQ(field.value(), -50);
}

TEST_F(Widgets, ASliderFollowsThePointer) {
  LXProgressBar bar;
  bar.resize(112, 20);
  int changes = 0;
  bar.setChangeAction([&](LXProgressBar&) { ++changes; });
  bar.setMaxValue(10);
  const auto mouse = [&](QEvent::Type type, int x, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(type, QPointF(x, 10), QPointF(x, 10), button, button, {});
    QApplication::sendEvent(&bar, &event);
  };
  mouse(QEvent::MouseMove, 60);
  mouse(QEvent::MouseButtonPress, 60, Qt::RightButton);
  EXPECT_EQ(bar.value(), 0);
  mouse(QEvent::MouseButtonPress, 56);
  EXPECT_EQ(bar.value(), 5);
  mouse(QEvent::MouseMove, 500);
  EXPECT_EQ(bar.value(), 10);
  mouse(QEvent::MouseMove, 501);
  EXPECT_EQ(changes, 2);
  mouse(QEvent::MouseButtonRelease, -50);
  mouse(QEvent::MouseMove, -50);
  EXPECT_EQ(bar.value(), 10);
}

TEST_F(Widgets, ASliderTellsOfWhatAScreenReaderSetsButNotTheProgram) {
  LXProgressBar bar;
  std::vector<int> heard;
  bar.setChangeAction([&](LXProgressBar& sender) { heard.push_back(sender.value()); });
  bar.setMaxValue(30);
  bar.setValue(12);
  bar.setMinValue(14);
  bar.setMaxValue(13);
  bar.setMaxValue(30);
  bar.setMinValue(0);
  EXPECT_THAT(heard, testing::IsEmpty());
  auto* reader = QAccessible::queryAccessibleInterface(&bar)->valueInterface();
  reader->setCurrentValue(5);
  reader->setCurrentValue(5);
  QTest::keyClick(&bar, Qt::Key_Right);
  EXPECT_THAT(heard, testing::ElementsAre(5, 6));
}

TEST_F(Widgets, AScrollViewIsDark) {
  BGHUDScrollView scroll;
  scroll.resize(60, 80);
  auto* content = new QWidget;
  content->resize(40, 400);
  scroll.setWidget(content);
  scroll.show();
  EXPECT_LT(scroll.grab().toImage().pixelColor(5, 5).lightness(), 40);
  EXPECT_EQ(scroll.frameShape(), QFrame::NoFrame);
  EXPECT_FALSE(scroll.horizontalScrollBar()->isVisible());
}

TEST_F(Widgets, AFieldInWhichNothingWasTypedLeavesUndoToItsWindow) {
  QWidget window;
  auto* field = new LXTextField(&window);
  field->setText(QStringLiteral("Profile"));
  int undone = 0;
  QObject::connect(new QShortcut(QKeySequence::Undo, &window), &QShortcut::activated, &window,
                   [&] { ++undone; });
  window.show();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  field->setFocus();
  QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(undone, 1);
  QTest::keyClicks(field, QStringLiteral("x"));
  QTest::keyClick(field, Qt::Key_Z, Qt::ControlModifier);
  EXPECT_EQ(undone, 1);
  EXPECT_EQ(field->text(), QStringLiteral("Profile"));
}
