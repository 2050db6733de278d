// The widgets on their own.

#include <QAccessible>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScrollBar>
#include <QShortcut>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/BGHUDScrollView.h"
#include "Kit/Widgets/LXImageView.h"
#include "Kit/Widgets/LXNoTitleWindow.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

QPixmap filled(const QColor& color) {
  QPixmap pixmap(20, 20);
  pixmap.fill(color);
  return pixmap;
}

const QColor red(255, 0, 0);
const QColor green(0, 255, 0);
const QColor blue(0, 0, 255);
const QColor grey(128, 128, 128);
const QColor white(255, 255, 255);

// A button with one color per state.
class Button : public ViewTest {
 protected:
  Button() {
    m_button.resize(20, 20);
    m_button.setImages({LXImage(filled(red)), LXImage(filled(green)), LXImage(filled(blue)),
                        LXImage(filled(grey)), LXImage(filled(white))});
    m_button.setAction([this](LXButton&) { ++m_clicks; });
  }
  QColor shown() { return m_button.grab().toImage().pixelColor(2, 2); }
  void send(QEvent::Type type, Qt::MouseButton button = Qt::LeftButton) {
    QMouseEvent event(type, {5, 5}, m_button.mapToGlobal(QPointF(5, 5)), button, button, {});
    QApplication::sendEvent(&m_button, &event);
  }
  void hover(bool isIn) {
    QEnterEvent enter({1, 1}, {1, 1}, {1, 1});
    QEvent leave(QEvent::Leave);
    QApplication::sendEvent(&m_button, isIn ? static_cast<QEvent*>(&enter) : &leave);
  }

  LXButton m_button;
  int m_clicks = 0;
};

class Widgets : public ViewTest {};

}  // namespace

TEST_F(Button, ShowsThePictureOfItsState) {
  EXPECT_EQ(shown(), red);
  hover(true);
  EXPECT_EQ(shown(), green);
  send(QEvent::MouseButtonPress);
  EXPECT_EQ(shown(), blue);
  send(QEvent::MouseButtonRelease);
  EXPECT_EQ(shown(), green);
  EXPECT_EQ(m_clicks, 1);
  m_button.setIsEnable(false);
  EXPECT_EQ(shown(), grey);
  m_button.setIsEnable(true);
  hover(false);
  EXPECT_EQ(shown(), red);
}

TEST_F(Button, CanBeLitFromOutside) {
  m_button.setOverImagePro();
  EXPECT_EQ(shown(), green);
  m_button.setExitImagePro();
  EXPECT_EQ(shown(), red);
}

TEST_F(Button, AMissingStateShowsTheNormalPicture) {
  m_button.setImages({LXImage(filled(red)), {}, {}, {}, {}});
  hover(true);
  EXPECT_EQ(shown(), red);
  m_button.setIsEnable(false);
  EXPECT_EQ(shown(), red);
}

TEST_F(Button, ACheckBoxKeepsItsState) {
  m_button.setIsCheckBox(true);
  m_button.click();
  EXPECT_TRUE(m_button.Checked());
  EXPECT_EQ(shown(), white);
  m_button.click();
  EXPECT_FALSE(m_button.Checked());
  m_button.setChecked(true);
  EXPECT_EQ(m_clicks, 2);
}

TEST_F(Button, ShowsThatItIsSelectedWhileItCannotBeUsed) {
  m_button.setIsCheckBox(true);
  m_button.setIsEnable(false);
  EXPECT_EQ(shown(), grey);
  m_button.setChecked(true);
  EXPECT_GT(shown().lightness(), grey.lightness());
  EXPECT_LT(shown().lightness(), white.lightness());
}

TEST_F(Widgets, TheTextOfAFieldFadesWhileItCannotBeUsed) {
  LXTextField field;
  field.setTextColor(white);
  EXPECT_EQ(field.palette().color(QPalette::Text), white);
  field.setEnabled(false);
  EXPECT_LT(field.palette().color(QPalette::Disabled, QPalette::Text).alpha(), white.alpha());
  EXPECT_EQ(field.palette().color(QPalette::Active, QPalette::Text), white);
}

TEST_F(Button, TheRightButtonHasAnActionOfItsOwn) {
  send(QEvent::MouseButtonPress, Qt::RightButton);
  send(QEvent::MouseButtonRelease, Qt::RightButton);
  EXPECT_EQ(m_clicks, 0);
  int rightClicks = 0;
  m_button.setRightAction([&](LXButton&) { ++rightClicks; });
  send(QEvent::MouseButtonPress, Qt::RightButton);
  EXPECT_EQ(rightClicks, 0);
  send(QEvent::MouseButtonRelease, Qt::RightButton);
  EXPECT_EQ(rightClicks, 1);
  send(QEvent::MouseButtonPress, Qt::RightButton);
  hover(false);
  send(QEvent::MouseButtonRelease, Qt::RightButton);
  EXPECT_EQ(rightClicks, 1);
  EXPECT_EQ(m_clicks, 0);
}

TEST_F(Button, SpaceAndReturnPressIt) {
  QTest::keyClick(&m_button, Qt::Key_Space);
  QTest::keyClick(&m_button, Qt::Key_Return);
  QTest::keyClick(&m_button, Qt::Key_Enter);
  EXPECT_EQ(m_clicks, 3);
  m_button.setIsEnable(false);
  QTest::keyClick(&m_button, Qt::Key_Return);
  EXPECT_EQ(m_clicks, 3);
}

TEST_F(Button, AnAmpersandInItsCaptionIsNoShortcut) {
  m_button.setTitle(QStringLiteral("Save && load"));
  EXPECT_EQ(m_button.title(), QStringLiteral("Save && load"));
  m_button.setTitle(QStringLiteral("&Save"));
  EXPECT_TRUE(m_button.shortcut().isEmpty());
}

TEST_F(Button, ShowsWhereTheKeyboardIs) {
  QWidget window;
  m_button.setParent(&window);
  m_button.setImages({});
  window.show();
  QApplication::setActiveWindow(&window);
  m_button.setFocus(Qt::MouseFocusReason);
  const QImage withoutRing = m_button.grab().toImage();
  m_button.clearFocus();
  m_button.setFocus(Qt::TabFocusReason);
  EXPECT_NE(m_button.grab().toImage(), withoutRing);
  m_button.clearFocus();
  EXPECT_EQ(m_button.grab().toImage(), withoutRing);
  m_button.setParent(nullptr);
}

TEST_F(Button, KeepsItsTwoTagsApart) {
  m_button.setTag(7);
  m_button.setBtnTag(230);
  EXPECT_EQ(m_button.tag(), 7);
  EXPECT_EQ(m_button.btnTag(), 230);
}

TEST_F(Widgets, APressThroughAccessibilityStopsAtABlockedWindow) {
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

TEST_F(Widgets, OnlyTheStripAtTheTopDragsAWindow) {
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

TEST_F(Widgets, TheRightButtonInTheStripAsksForTheMenu) {
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

TEST_F(Widgets, AWindowTellsItsDelegateThatItCloses) {
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

TEST_F(Widgets, ImageViewsDrawWhatTheyWereGiven) {
  LXImageView image;
  image.resize(40, 40);
  image.setImage(LXImage(filled(red)), {10, 10});
  EXPECT_EQ(image.grab().toImage().pixelColor(15, 15), red);
  EXPECT_NE(image.grab().toImage().pixelColor(5, 5), red);
  LXImageBgView ground;
  ground.resize(60, 80);
  ground.setImage(LXImage(filled(green)));
  EXPECT_EQ(ground.grab().toImage().pixelColor(55, 75), green);
  LXColorView color;
  color.resize(10, 10);
  color.setColor(blue);
  EXPECT_EQ(color.grab().toImage().pixelColor(5, 5), blue);
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

TEST_F(Widgets, APictureIsBroughtWhenItIsFirstDrawn) {
  int loads = 0;
  const LXImage image([&](qreal /*ratio*/) {
    ++loads;
    return LXImage::Loaded{filled(red), {20, 20}};
  });
  const LXImage part = image.slice({5, 5, 10, 10});
  EXPECT_FALSE(image.isLoaded());
  EXPECT_EQ(loads, 0);
  EXPECT_EQ(part.pixmap().toImage().pixelColor(0, 0), red);
  EXPECT_TRUE(image.isLoaded());
  EXPECT_EQ(image.size(), QSize(20, 20));
  EXPECT_EQ(loads, 1);
  EXPECT_TRUE(image.slice({}).isNull());
  EXPECT_TRUE(LXImage().slice({0, 0, 1, 1}).isNull());
}

namespace {

// A picture of 20 by 20 in which no two neighboring pixels are alike, at any scale.
LXImage::Loaded speckled(qreal ratio) {
  QImage image(qCeil(20 * ratio), qCeil(20 * ratio), QImage::Format_RGB32);
  for (int y = 0; y < image.height(); ++y) {
    for (int x = 0; x < image.width(); ++x) {
      image.setPixel(x, y, qRgb(x * 5, y * 5, (x + y) % 2 * 255));
    }
  }
  image.setDevicePixelRatio(ratio);
  return {QPixmap::fromImage(image), {20, 20}};
}

// Stands for a screen of that scale.
QImage paper(qreal ratio) {
  QImage image(qCeil(40 * ratio), qCeil(40 * ratio), QImage::Format_RGB32);
  image.fill(Qt::black);
  image.setDevicePixelRatio(ratio);
  return image;
}

}  // namespace

TEST_F(Widgets, APictureIsDrawnPixelByPixelAtAnyScale) {
  for (const qreal ratio : {1.0, 1.25, 1.5, 1.75, 2.0, 3.0}) {
    const LXImage image(speckled);
    EXPECT_EQ(image.slice({3, 5, 7, 9}).size(), QSize(7, 9));
    QImage screen = paper(ratio);
    {
      QPainter painter(&screen);
      // A fractional place, as of a control at 125 %.
      image.draw(painter, {7, 9});
    }
    const QPoint corner = QPointF(7 * ratio, 9 * ratio).toPoint();
    const QImage expected = speckled(ratio).pixmap.toImage();
    EXPECT_EQ(image.size(), QSize(20, 20));
    EXPECT_TRUE(screen.copy(QRect(corner, expected.size())) == expected) << ratio;
  }
}

TEST_F(Widgets, SlicesLieOnTheirPictureAtAnyScale) {
  for (const qreal ratio : {1.25, 1.5, 1.75}) {
    const LXImage image(speckled);
    QImage whole = paper(ratio);
    {
      QPainter painter(&whole);
      painter.translate(7, 9);
      image.draw(painter, {0, 0});
    }
    QImage parts = whole;
    {
      QPainter painter(&parts);
      const LXImage copy(speckled);
      painter.translate(7, 9);
      for (const QRect& rect : {QRect(3, 5, 7, 9), QRect(1, 1, 2, 3), QRect(11, 13, 9, 7)}) {
        painter.save();
        painter.translate(rect.topLeft());
        copy.slice(rect).draw(painter, {0, 0});
        painter.restore();
      }
      image.drawPart(painter, {10, 2, 5, 5});
    }
    EXPECT_TRUE(parts == whole) << ratio;
  }
}

TEST_F(Widgets, APictureIsBroughtAgainForAScreenOfAnotherScale) {
  std::vector<qreal> ratios;
  const LXImage image([&](qreal ratio) {
    ratios.push_back(ratio);
    return speckled(ratio);
  });
  for (const qreal ratio : {1.0, 1.0, 1.5, 1.5, 1.0}) {
    QImage screen = paper(ratio);
    QPainter painter(&screen);
    image.slice({2, 2, 8, 8}).draw(painter, {0, 0});
  }
  EXPECT_EQ(ratios, (std::vector<qreal>{1.0, 1.5, 1.0}));
}

TEST_F(Widgets, AWindowThatIsHigherThanTheScreenScrollsToWhatHasTheKeyboard) {
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

TEST_F(Widgets, AWindowThatFitsDoesNotScroll) {
  LXNoTitleWindow window({300, 200});
  auto* content = new QWidget;
  window.setContentView(content);
  window.fitInto(680);
  EXPECT_EQ(window.size(), QSize(300, 200));
  EXPECT_EQ(content->parentWidget(), &window);
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
