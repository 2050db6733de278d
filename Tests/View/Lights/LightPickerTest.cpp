// Picking a color of a light in the field and the brightness.

#include <QApplication>
#include <QKeyEvent>

#include <gmock/gmock.h>

#include "Tests/View/Lights/PickerTest.h"

using testing::ElementsAre;

namespace {

class LightPicker : public PickerTest {};

}  // namespace

TEST_F(LightPicker, TheFieldIsAllHuesInAllSaturations) {
  openZone();
  clickIn(brightness(), 1, 0.5);
  struct Place {
    double x;
    double y;
  };
  for (const Place& place : {Place{0, 0}, {0.25, 0}, {0.5, 0.5}, {0.75, 0.25}, {0.9, 1}}) {
    clickIn(field(), place.x, place.y);
    EXPECT_NEAR(field().hue(), place.x, 0.01);
    EXPECT_NEAR(field().saturation(), 1 - place.y, 0.01);
    EXPECT_EQ(brightness().brightness(), 1);
    expectNear(stored(), QColor::fromHsvF(static_cast<float>(field().hue()),
                                          static_cast<float>(field().saturation()), 1));
    EXPECT_EQ(part<LXColorView>("afterColorView").color().rgb(), stored().rgb());
  }
}

TEST_F(LightPicker, TheNumbersAreThoseThatAreStored) {
  openZone();
  for (const double place : {0.01, 0.25, 0.5, 0.75, 0.99}) {
    clickIn(field(), place, 1 - place);
    clickIn(brightness(), place, 0.5);
    const QColor held = stored();
    EXPECT_THAT(numbers(), ElementsAre(std::to_string(held.red()), std::to_string(held.green()),
                                       std::to_string(held.blue()),
                                       held.name().mid(1).toUpper().toStdString()));
    EXPECT_EQ(part<LXColorView>("afterColorView").color().rgb(), held.rgb());
  }
  part<ColorPanel>("colorPanel").setSelColor({0.5, 0.5, 0.5});
  expectColor(color(0), 127, 127, 127);
  EXPECT_EQ(numbers().front(), "127");
}

TEST_F(LightPicker, HuesAreTheOnesOfTheirSectors) {
  for (int degrees = 0; degrees <= 360; degrees += 15) {
    PickedColor picked{degrees / 360.0, 0.75, 0.5};
    const QColor expected = QColor::fromHsvF(static_cast<float>(degrees % 360) / 360, 0.75F, 0.5F);
    expectNear(picked.color().shown(), expected);
    PickedColor back;
    back.setColor(picked.color());
    EXPECT_NEAR(back.hue, degrees % 360 / 360.0, 1e-9);
    EXPECT_NEAR(back.saturation, 0.75, 1e-9);
    EXPECT_NEAR(back.brightness, 0.5, 1e-9);
  }
}

TEST_F(LightPicker, OnlyTheLeftButtonPicks) {
  openZone();
  const QColor before = stored();
  for (const QWidget* widget :
       {static_cast<QWidget*>(&field()), static_cast<QWidget*>(&brightness())}) {
    for (const Qt::MouseButton button : {Qt::RightButton, Qt::MiddleButton, Qt::BackButton}) {
      QTest::mouseClick(host().windowHandle(), button, {}, placeIn(*widget, 0.7, 0.3));
      EXPECT_EQ(stored(), before);
    }
  }
}

TEST_F(LightPicker, TheFieldFollowsThePointerAndHasEdges) {
  openZone();
  QWindow* window = host().windowHandle();
  QTest::mousePress(window, Qt::LeftButton, {}, placeIn(field(), 0.5, 0.5));
  QTest::mouseMove(window, placeIn(field(), 0.8, 0.2));
  EXPECT_NEAR(field().hue(), 0.8, 0.01);
  EXPECT_NEAR(field().saturation(), 0.8, 0.01);
  QTest::mouseMove(window, placeIn(field(), 1.1, -0.3));
  EXPECT_EQ(field().hue(), 1);
  EXPECT_EQ(field().saturation(), 1);
  QTest::mouseMove(window, placeIn(field(), -0.1, 1.3));
  EXPECT_EQ(field().hue(), 0);
  EXPECT_EQ(field().saturation(), 0);
  QTest::mouseRelease(window, Qt::LeftButton, {}, placeIn(field(), 0, 1));
  const QColor picked = stored();
  QTest::mouseMove(window, placeIn(field(), 0.5, 0.5));
  EXPECT_EQ(stored(), picked);
}

TEST_F(LightPicker, ArrowKeysMoveByOneHundredth) {
  openZone();
  clickIn(field(), 0.5, 0.5);
  struct Step {
    Qt::Key key;
    double hue;
    double saturation;
  };
  for (const Step& step : {Step{Qt::Key_Left, -0.01, 0},
                           {Qt::Key_Right, 0.01, 0},
                           {Qt::Key_Up, 0, 0.01},
                           {Qt::Key_Down, 0, -0.01}}) {
    const double hue = field().hue();
    const double saturation = field().saturation();
    hitKey(field(), step.key);
    EXPECT_NEAR(field().hue(), hue + step.hue, 1e-9) << step.key;
    EXPECT_NEAR(field().saturation(), saturation + step.saturation, 1e-9) << step.key;
  }
  clickIn(brightness(), 0.5, 0.5);
  for (const Step& step : {Step{Qt::Key_Left, -0.01, 0},
                           {Qt::Key_Right, 0.01, 0},
                           {Qt::Key_Up, 0.01, 0},
                           {Qt::Key_Down, -0.01, 0}}) {
    const double before = brightness().brightness();
    hitKey(brightness(), step.key);
    EXPECT_NEAR(brightness().brightness(), before + step.hue, 1e-9) << step.key;
  }
}

TEST_F(LightPicker, TheBrightnessKeepsTheHue) {
  openZone();
  clickIn(brightness(), 1, 0.5);
  clickIn(field(), 0.6, 0.25);
  const double hue = field().hue();
  const double saturation = field().saturation();
  for (const double value : {0.75, 0.3, 0.0, 1.0}) {
    clickIn(brightness(), value, 0.5);
    EXPECT_NEAR(brightness().brightness(), value, 0.01);
    EXPECT_EQ(field().hue(), hue);
    EXPECT_EQ(field().saturation(), saturation);
    expectNear(stored(), QColor::fromHsvF(static_cast<float>(hue), static_cast<float>(saturation),
                                          static_cast<float>(brightness().brightness())));
  }
  // Gray or black from another control does not lose it either.
  light().colorPanel().setSelColor({0.5, 0.5, 0.5});
  EXPECT_EQ(field().hue(), hue);
  EXPECT_EQ(field().saturation(), 0);
  light().colorPanel().setSelColor({0, 0, 0});
  EXPECT_EQ(field().hue(), hue);
  EXPECT_EQ(brightness().brightness(), 0);
  QTest::mousePress(host().windowHandle(), Qt::LeftButton, {}, placeIn(brightness(), 0.2, 0.5));
  QTest::mouseMove(host().windowHandle(), placeIn(brightness(), 1.5, 0.5));
  EXPECT_EQ(brightness().brightness(), 1);
  QTest::mouseRelease(host().windowHandle(), Qt::LeftButton, {}, placeIn(brightness(), 1, 0.5));
}

TEST_F(LightPicker, AHueThatIsPickedOnBlackIsSeen) {
  openZone();
  light().colorPanel().setSelColor({0, 0, 0});
  clickIn(field(), 1.0 / 3, 0);
  EXPECT_EQ(brightness().brightness(), 1);
  expectNear(stored(), QColor(0, 255, 0));
}

TEST_F(LightPicker, BeginsWhereTheZoneIs) {
  openZone();
  EXPECT_THAT(numbers(), ElementsAre("10", "20", "30", "0A141E"));
  EXPECT_NEAR(brightness().brightness(), 30 / 255.0, 0.001);
  EXPECT_NEAR(field().saturation(), 2.0 / 3, 0.001);
  press("leftLightTagBtn");
  EXPECT_THAT(numbers(), ElementsAre("100", "110", "120", "646E78"));
  // Showing a color is not a change.
  EXPECT_EQ(light().beforeColor(), LightColor());
  expectColor(color(3), 100, 110, 120);
}

TEST_F(LightPicker, EveryPartReportsOneChange) {
  openZone();
  const auto expectOneChange = [this](const std::function<void()>& change) {
    const LightColor before = light().afterColor();
    change();
    EXPECT_NE(light().afterColor(), before);
    EXPECT_EQ(light().beforeColor(), before);
  };
  expectOneChange([this] { clickIn(field(), 0.2, 0.1); });
  expectOneChange([this] { clickIn(brightness(), 0.9, 0.5); });
  expectOneChange([this] { hitKey(bar(), Qt::Key_End); });
  expectOneChange([this] {
    type(part<LXNumberTextField>("greenTxt"), "7");
    hitKey(part<LXNumberTextField>("greenTxt"), Qt::Key_Return);
  });
  expectOneChange([this] { light().colorPanel().setSelColor({0.1, 0.2, 0.3}); });
}
