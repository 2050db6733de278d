#pragma once

#include <QAbstractButton>
#include <QTest>
#include <string>
#include <vector>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/View/Lights/LightTest.h"

// Picks the color of a light in the LED window.
class PickerTest : public LightTest {
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
