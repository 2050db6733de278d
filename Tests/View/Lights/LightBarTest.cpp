// The color bar, and what counts as one change of a color.

#include <QApplication>
#include <QKeyEvent>

#include <gmock/gmock.h>

#include "Tests/View/Lights/PickerTest.h"

using testing::ElementsAre;

namespace {

class LightBar : public PickerTest {};

}  // namespace

TEST_F(LightBar, TheBarIsAPictureOfItsColors) {
  openZone();
  const QImage picture(QStringLiteral(NERIN_RESOURCES "/ColorBar.png"));
  ASSERT_EQ(picture.size(), QSize(40, 266));
  EXPECT_EQ(bar().minimum(), 0);
  EXPECT_EQ(bar().maximum(), 265);
  EXPECT_EQ(bar().tag(), 242);
  // A position is a row of the picture, counted from the top.
  for (const int position : {0, 1, 40, 100, 132, 200, 264, 265}) {
    bar().setValue(position);
    light().progessBarAction(bar());
    const QColor expected = picture.pixelColor(20, position);
    EXPECT_EQ(stored(), expected) << position;
    EXPECT_EQ(
        light().colorPanel().selColor(),
        (LightColor{expected.red() / 255.0, expected.green() / 255.0, expected.blue() / 255.0}));
  }
  const QColor before = stored();
  LXProgressBar other;
  other.setMaxValue(1000);
  other.setTag(241);
  other.setValue(10);
  light().progessBarAction(other);
  // There is no color outside the picture.
  other.setTag(242);
  other.setValue(266);
  light().progessBarAction(other);
  EXPECT_EQ(stored(), before);
}

TEST_F(LightBar, TheBarGivesWhatItShowsUnderThePointer) {
  openZone();
  const QImage window = light().bgImage().pixmap().toImage();
  for (const double at : {0.1, 0.25, 0.4, 0.6, 0.75, 0.9}) {
    clickIn(bar(), at, 0.5);
    const QColor shown = window.pixelColor(placeIn(bar(), at, 0.5));
    EXPECT_NEAR(stored().red(), shown.red(), 40) << at;
    EXPECT_NEAR(stored().green(), shown.green(), 40) << at;
    EXPECT_NEAR(stored().blue(), shown.blue(), 40) << at;
  }
}

TEST_F(LightBar, TheBarAnswersAlsoWhereItsKnobStands) {
  openZone();
  // The knob of a dark color stands at its hue.
  light().colorPanel().setSelColor(LightTest::stored(0, 0, 60));
  const QPoint knob = bar().mapTo(&host(), bar().indicateRect().center());
  const int place = bar().value();
  QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, knob);
  EXPECT_EQ(bar().value(), place);
  const _LightColorInfo& bright = color(0);
  EXPECT_EQ(std::max({bright.cR, bright.cG, bright.cB}), 255U);
  // So do the keys that cannot move it any further.
  light().colorPanel().setSelColor(LightTest::stored(90, 90, 90));
  ASSERT_EQ(bar().value(), 0);
  hitKey(bar(), Qt::Key_Home);
  expectColor(color(0), 0, 0, 0);
  light().colorPanel().setSelColor(LightTest::stored(200, 200, 200));
  ASSERT_EQ(bar().value(), bar().maximum());
  hitKey(bar(), Qt::Key_End);
  expectColor(color(0), 255, 255, 255);
}

TEST_F(LightBar, TheKnobOfTheBarFollowsTheColorAndTheLight) {
  openZone();
  const QImage picture(QStringLiteral(NERIN_RESOURCES "/ColorBar.png"));
  for (const int place : {0, 13, 60, 150, 235, 265}) {
    light().colorPanel().setSelColor(LightColor::of(picture.pixelColor(20, place)));
    EXPECT_EQ(bar().value(), place);
  }
  // A color beside the bar has the place of its hue, as dark or pale as it is.
  clickIn(field(), 0.5, 0.5);
  clickIn(brightness(), 0.4, 0.5);
  expectNear(picture.pixelColor(20, bar().value()), QColor(0, 255, 255), 6);
  clickIn(brightness(), 0, 0.5);
  EXPECT_EQ(bar().value(), 0);
  light().colorPanel().setSelColor({0, 1, 0});
  press("reProfileLightBtn");
  light().colorPanel().setSelColor({0, 0, 1});
  press("midLightBtn");
  expectNear(picture.pixelColor(20, bar().value()), QColor(0, 255, 0), 6);
  press("reProfileLightTagBtn");
  expectNear(picture.pixelColor(20, bar().value()), QColor(0, 0, 255), 6);
}

TEST_F(LightBar, ADragIsOneChangeFromTheColorAtItsPress) {
  openZone();
  QWindow* window = host().windowHandle();
  for (QWidget* widget : {static_cast<QWidget*>(&field()), static_cast<QWidget*>(&brightness()),
                          static_cast<QWidget*>(&bar())}) {
    const LightColor before = light().afterColor();
    QTest::mousePress(window, Qt::LeftButton, {}, placeIn(*widget, 0.3, 0.4));
    for (const double at : {0.4, 0.6, 0.8}) {
      QTest::mouseMove(window, placeIn(*widget, at, 0.3));
      EXPECT_NE(light().afterColor(), before);
      EXPECT_EQ(light().beforeColor(), before);
      EXPECT_EQ(part<LXColorView>("beforeColorView").color(), before.shown());
    }
    QTest::mouseRelease(window, Qt::LeftButton, {}, placeIn(*widget, 0.8, 0.3));
    EXPECT_EQ(light().beforeColor(), before);
    EXPECT_EQ(light().historyColorDir().at("bColor0"), before);
  }
  const LightColor last = light().afterColor();
  clickIn(field(), 0.1, 0.1);
  EXPECT_EQ(light().beforeColor(), last);
}

TEST_F(LightBar, AHeldKeyIsOneChangeFromTheColorAtItsPress) {
  openZone();
  for (QWidget* widget : {static_cast<QWidget*>(&field()), static_cast<QWidget*>(&brightness()),
                          static_cast<QWidget*>(&part<LXNumberTextField>("greenTxt"))}) {
    clickIn(brightness(), 0.5, 0.5);
    const LightColor before = light().afterColor();
    widget->setFocus();
    for (int i = 0; i < 4; ++i) {
      QKeyEvent held(QEvent::KeyPress, Qt::Key_Up, Qt::NoModifier, QString(), i > 0);
      QCoreApplication::sendEvent(widget, &held);
      EXPECT_NE(light().afterColor(), before);
      EXPECT_EQ(light().beforeColor(), before) << i;
    }
    QTest::keyRelease(widget, Qt::Key_Up);
    const LightColor last = light().afterColor();
    hitKey(*widget, Qt::Key_Down);
    EXPECT_EQ(light().beforeColor(), last);
  }
}
