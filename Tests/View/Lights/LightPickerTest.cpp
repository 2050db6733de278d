// Picking a zone's color in the field, the brightness, the bar, the numbers and the recent colors.

#include <QAbstractButton>
#include <QApplication>
#include <QKeyEvent>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/View/Lights/LightTest.h"

using testing::ElementsAre;

namespace {

class LightPicker : public LightTest {
 protected:
  HueSaturationView& field() { return part<HueSaturationView>("colorFieldView"); }
  BrightnessView& brightness() { return part<BrightnessView>("brightnessView"); }
  LXProgressBar& bar() { return part<LXProgressBar>("colorBarView"); }
  void openZone() {
    open();
    press("midLightBtn");
  }
  QColor stored() {
    return {static_cast<int>(color(0).cR), static_cast<int>(color(0).cG),
            static_cast<int>(color(0).cB)};
  }
  // The point at a fraction of the widget's width and height.
  static QPoint placeIn(const QWidget& widget, double x, double y) {
    return widget.mapTo(widget.window(), QPoint(qRound(x * (widget.width() - 1)),
                                                qRound(y * (widget.height() - 1))));
  }
  static void clickIn(const QWidget& widget, double x, double y) {
    QTest::mouseClick(widget.window()->windowHandle(), Qt::LeftButton, {}, placeIn(widget, x, y));
    process();
  }
  static void expectNear(const QColor& one, const QColor& other, int apart = 1) {
    EXPECT_NEAR(one.red(), other.red(), apart);
    EXPECT_NEAR(one.green(), other.green(), apart);
    EXPECT_NEAR(one.blue(), other.blue(), apart);
  }
  std::vector<std::string> numbers() {
    std::vector<std::string> all;
    for (const char* name : {"redTxt", "greenTxt", "blueTxt", "hexTxt"}) {
      all.push_back(textOf(part<LXTextField>(name)));
    }
    return all;
  }
  std::vector<QAbstractButton*> recent() {
    std::vector<QAbstractButton*> all;
    for (auto* swatch :
         part<RecentColorsView>("recentColorsView").findChildren<QAbstractButton*>()) {
      if (swatch->isVisible()) {
        all.push_back(swatch);
      }
    }
    return all;
  }
  // Ten grays replace the colors of other tests.
  static void forgetColors() {
    for (int i = 0; i < 10; ++i) {
      const double grey = (100 + i) / 255.0;
      RecentColorsView::remember({grey, grey, grey});
    }
  }
};

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

TEST_F(LightPicker, TheBarIsAPictureOfItsColors) {
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

TEST_F(LightPicker, TheBarGivesWhatItShowsUnderThePointer) {
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

TEST_F(LightPicker, TheBarAnswersAlsoWhereItsKnobStands) {
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

TEST_F(LightPicker, TheKnobOfTheBarFollowsTheColorAndTheLight) {
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

TEST_F(LightPicker, ADragIsOneChangeFromTheColorAtItsPress) {
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

TEST_F(LightPicker, AHeldKeyIsOneChangeFromTheColorAtItsPress) {
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

TEST_F(LightPicker, NumbersAreTakenWithinTheirLimits) {
  openZone();
  struct Part {
    const char* name;
    std::vector<std::string> expected;
  };
  for (const Part& one : {Part{"redTxt", {"255", "20", "30", "FF141E"}},
                          Part{"greenTxt", {"255", "255", "30", "FFFF1E"}},
                          Part{"blueTxt", {"255", "255", "255", "FFFFFF"}}}) {
    auto& number = part<LXNumberTextField>(one.name);
    type(number, "999");
    hitKey(number, Qt::Key_Return);
    EXPECT_EQ(numbers(), one.expected);
    EXPECT_EQ(stored().name().mid(1).toUpper().toStdString(), one.expected[3]);
  }
  auto& number = part<LXNumberTextField>("greenTxt");
  hitKey(number, Qt::Key_Down);
  hitKey(number, Qt::Key_Return);
  expectColor(color(0), 255, 254, 255);
}

TEST_F(LightPicker, AClearedNumberGoesBackToItsValue) {
  openZone();
  for (const char* name : {"redTxt", "greenTxt", "blueTxt"}) {
    type(part<LXNumberTextField>(name), "");
    hitKey(part<LXNumberTextField>(name), Qt::Key_Return);
  }
  EXPECT_THAT(numbers(), ElementsAre("10", "20", "30", "0A141E"));
  expectColor(color(0), 10, 20, 30);
}

TEST_F(LightPicker, ACodeIsSixDigits) {
  openZone();
  auto& code = part<LXTextField>("hexTxt");
  const auto typeCode = [&](const char* text) {
    code.setFocus();
    code.selectAll();
    QTest::keyClicks(&code, text);
    hitKey(code, Qt::Key_Return);
  };
  typeCode("#12aBcD");
  expectColor(color(0), 0x12, 0xAB, 0xCD);
  EXPECT_EQ(textOf(code), "12ABCD");
  // Text that is not a color is rejected and not stored.
  for (const char* text : {"1", "#", "12345", "ghijkl"}) {
    typeCode(text);
    EXPECT_EQ(textOf(code), "12ABCD") << text;
    expectColor(color(0), 0x12, 0xAB, 0xCD);
  }
}

TEST_F(LightPicker, WhatWasTypedCountsForEveryButton) {
  for (const char* end : {"applyBtn", "okBtn"}) {
    openZone();
    type(part<LXNumberTextField>("redTxt"), "77");
    control(end).click();
    EXPECT_EQ(color(0).cR, 77U) << end;
    open();
    press("midLightBtn");
    auto& code = part<LXTextField>("hexTxt");
    code.setFocus();
    code.selectAll();
    QTest::keyClicks(&code, "010203");
    control(end).click();
    expectColor(color(0), 1, 2, 3);
  }
}

TEST_F(LightPicker, ColorsThatWereUsedCanBeChosenAgain) {
  forgetColors();
  openZone();
  ASSERT_EQ(recent().size(), 10U);
  EXPECT_EQ(recent()[0]->accessibleName(), "#6D6D6D");
  light().onChangeColorPro({1, 0, 0});
  press("reProfileLightBtn");
  light().onChangeColorPro({0, 0, 1});
  // Colors become recent when they are applied or kept.
  EXPECT_EQ(recent()[0]->accessibleName(), "#6D6D6D");
  press("applyBtn");
  ASSERT_EQ(recent().size(), 10U);
  EXPECT_EQ(recent()[0]->accessibleName(), "#FF0000");
  EXPECT_EQ(recent()[1]->accessibleName(), "#0000FF");
  EXPECT_EQ(recent()[2]->accessibleName(), "#6D6D6D");
  EXPECT_EQ(recent()[9]->accessibleName(), "#666666");
  press("logoLightBtn");
  clickThroughWindow(*recent()[1]);
  expectColor(color(2), 0, 0, 255);
  clickThroughWindow(*recent()[9]);
  expectColor(color(2), 102, 102, 102);
  press("okBtn");
  // Newest first, without duplicates.
  openZone();
  EXPECT_EQ(recent()[0]->accessibleName(), "#FF0000");
  EXPECT_EQ(recent()[1]->accessibleName(), "#0000FF");
  EXPECT_EQ(recent()[2]->accessibleName(), "#666666");
  EXPECT_EQ(recent()[3]->accessibleName(), "#6D6D6D");
}

TEST_F(LightPicker, ACancelledColorIsForgotten) {
  forgetColors();
  openZone();
  light().onChangeColorPro({1, 0, 0});
  press("cancelBtn");
  openZone();
  EXPECT_EQ(recent()[0]->accessibleName(), "#6D6D6D");
}

TEST_F(LightPicker, ARecentColorIsReachedAndChosenByKey) {
  forgetColors();
  openZone();
  press("logoLightBtn");
  // The order of the Tab key goes from the numbers over the recent colors to the buttons.
  auto& code = part<LXTextField>("hexTxt");
  code.setFocus();
  QTest::keyClick(&host(), Qt::Key_Tab);
  ASSERT_EQ(QApplication::focusWidget(), recent()[0]);
  hitKey(*recent()[0], Qt::Key_Return);
  expectColor(color(2), 0x6D, 0x6D, 0x6D);
  hitKey(*recent()[0], Qt::Key_Right);
  hitKey(*recent()[1], Qt::Key_Down);
  ASSERT_EQ(QApplication::focusWidget(), recent()[2]);
  hitKey(*recent()[2], Qt::Key_Space);
  expectColor(color(2), 0x6B, 0x6B, 0x6B);
  hitKey(*recent()[2], Qt::Key_End);
  hitKey(*recent()[9], Qt::Key_Right);
  ASSERT_EQ(QApplication::focusWidget(), recent()[9]);
  hitKey(*recent()[9], Qt::Key_Enter);
  expectColor(color(2), 0x64, 0x64, 0x64);
  // One stop of the Tab key, and the focus comes back to where it was.
  QTest::keyClick(recent()[9], Qt::Key_Tab);
  EXPECT_EQ(QApplication::focusWidget(), &control("applyBtn"));
  QTest::keyClick(&control("applyBtn"), Qt::Key_Backtab);
  EXPECT_EQ(QApplication::focusWidget(), recent()[9]);
  hitKey(*recent()[9], Qt::Key_Home);
  hitKey(*recent()[0], Qt::Key_Left);
  EXPECT_EQ(QApplication::focusWidget(), recent()[0]);
  EXPECT_EQ(part<RecentColorsView>("recentColorsView").accessibleName(), "Recent colors");
}
