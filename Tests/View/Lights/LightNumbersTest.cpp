// The numbers and the recent colors of a light.

#include <QApplication>
#include <QKeyEvent>

#include <gmock/gmock.h>

#include "Tests/View/Lights/PickerTest.h"

using testing::ElementsAre;

namespace {

class LightNumbers : public PickerTest {};

}  // namespace

TEST_F(LightNumbers, NumbersAreTakenWithinTheirLimits) {
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

TEST_F(LightNumbers, AClearedNumberGoesBackToItsValue) {
  openZone();
  for (const char* name : {"redTxt", "greenTxt", "blueTxt"}) {
    type(part<LXNumberTextField>(name), "");
    hitKey(part<LXNumberTextField>(name), Qt::Key_Return);
  }
  EXPECT_THAT(numbers(), ElementsAre("10", "20", "30", "0A141E"));
  expectColor(color(0), 10, 20, 30);
}

TEST_F(LightNumbers, ACodeIsSixDigits) {
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

TEST_F(LightNumbers, WhatWasTypedCountsForEveryButton) {
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

TEST_F(LightNumbers, ColorsThatWereUsedCanBeChosenAgain) {
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

TEST_F(LightNumbers, ACancelledColorIsForgotten) {
  forgetColors();
  openZone();
  light().onChangeColorPro({1, 0, 0});
  press("cancelBtn");
  openZone();
  EXPECT_EQ(recent()[0]->accessibleName(), "#6D6D6D");
}

TEST_F(LightNumbers, ARecentColorIsReachedAndChosenByKey) {
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
