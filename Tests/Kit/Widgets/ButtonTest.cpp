// The button: its states, its actions and what it shows.

#include <QApplication>
#include <QMouseEvent>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXButton.h"
#include "Tests/Kit/Widgets/PlainPictures.h"
#include "Tests/Support/ViewTest.h"

using testing::ElementsAre;

namespace {

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
