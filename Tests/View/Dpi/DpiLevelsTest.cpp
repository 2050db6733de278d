// The editor of the levels, in both of its windows.

#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/EditorTest.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Dpi/PerformanceView.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

// The names of the levels with one value and with two.
constexpr const char* singles = "levelView";
constexpr const char* doubles = "levelXYView";

class DpiLevels : public EditorTest, public testing::WithParamInterface<const char*> {
 protected:
  DpiLevels() {
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      editState->edit().xSensArr[level] = editState->edit().ySensArr[level] = 10 * (level + 1);
    }
    editState->edit().dpiLevel = 5;
    editState->edit().currSelectDPI = 1;
    editState->edit().liftHeight = 31;
    editState->edit().poRate = 2;
  }
  void openLevels() {
    if (std::string(GetParam()) == "PerformanceView") {
      m_levels = new PerformanceView;
    } else {
      m_levels = new LevelSettingView;
    }
    m_levels->construct();
    show(m_levels);
    clearTrace();
  }
  // Opens the window with two values in one level.
  void openTwoValued() {
    editState->edit().ySensArr[1] = 25;
    openLevels();
  }
  DpiLevelsView& levels() { return *m_levels; }
  DpiSliderView& slider() { return part<DpiSliderView>("dpiSliderView"); }
  LevelView& one(int number) { return level(singles, number); }
  LevelView& both(int number) { return level(doubles, number); }
  LXNumberTextField& fieldOf(LevelView& level, const char* name = "dpiEdt") {
    return partOf<LXNumberTextField>(level, name);
  }
  void commitIn(LXNumberTextField& field, const char* text) {
    type(field, text);
    hitKey(field, Qt::Key_Return);
  }
  std::vector<int> visible(const char* set) {
    return numbers([&](int number) { return level(set, number).isVisible(); });
  }
  // The marked levels of the visible set.
  std::vector<int> marked() {
    return numbers(
        [&](int number) { return (levels().isXY() ? both(number) : one(number)).isActive(); });
  }
  std::vector<std::uint32_t> onSlider() {
    return {slider().dpiValue(), slider().dpiXValue(), slider().dpiYValue()};
  }
  std::vector<std::uint32_t> inLevel(int number) {
    return {one(number).dpiValue(), both(number).dpiXValue(), both(number).dpiYValue()};
  }
  // Clicks beside the field.
  void clickLevel(LevelView& level) {
    const QPoint beside = level.mapTo(&host(), QPoint(3, level.height() - 3));
    QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, beside);
    process();
  }
  void moveSlider(const char* name, int key = Qt::Key_Right) {
    hitKey(partOf<LXProgressBar>(slider(), name), key);
  }

 private:
  LevelView& level(const char* name, int number) {
    return part<LevelView>((name + std::to_string(number)).c_str());
  }
  template <typename Is>
  static std::vector<int> numbers(Is is) {
    std::vector<int> all;
    for (int number = 1; number <= 5; ++number) {
      if (is(number)) {
        all.push_back(number);
      }
    }
    return all;
  }

  DpiLevelsView* m_levels = nullptr;
};

INSTANTIATE_TEST_SUITE_P(Windows, DpiLevels, testing::Values("PerformanceView", "LevelSettingView"),
                         [](const auto& one) { return std::string(one.param); });

}  // namespace

TEST_P(DpiLevels, OpeningTakesTheWholeEditedProfileAndChangesNothingOfIt) {
  const _Nerin_PROFILE before = editState->selProfile();
  editState->currSetProfile().liftHeight = 3;
  editState->currSetProfile().btnInfo[4].FuncID = 77;
  openLevels();
  EXPECT_EQ(std::memcmp(&editState->currSetProfile(), &before, sizeof before), 0);
  EXPECT_EQ(std::memcmp(&editState->selProfile(), &before, sizeof before), 0);
}

TEST_P(DpiLevels, EqualAxesOpenWithTheBoxUnchecked) {
  openLevels();
  EXPECT_FALSE(levels().isXY());
  EXPECT_EQ(slider().showType(), 1);
  EXPECT_THAT(visible(singles), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(visible(doubles), IsEmpty());
}

TEST_P(DpiLevels, AxesThatDifferInALevelInUseOpenWithTheBoxChecked) {
  editState->edit().dpiLevel = 3;
  editState->edit().ySensArr[2] = 31;
  openLevels();
  EXPECT_TRUE(levels().isXY());
  EXPECT_EQ(slider().showType(), 2);
  EXPECT_THAT(visible(singles), IsEmpty());
  EXPECT_THAT(visible(doubles), ElementsAre(1, 2, 3));
}

TEST_P(DpiLevels, AxesThatDifferBeyondTheLevelsInUseDoNotCount) {
  editState->edit().dpiLevel = 3;
  editState->edit().ySensArr[3] = 99;
  openLevels();
  EXPECT_FALSE(levels().isXY());
}

TEST_P(DpiLevels, EveryLevelShowsItsStoredValuesWithinTheLimits) {
  editState->edit().xSensArr[0] = 1;
  editState->edit().ySensArr[0] = 165;
  editState->edit().xSensArr[4] = 0;
  editState->edit().ySensArr[4] = 0xFFFFFFFF;
  openLevels();
  EXPECT_THAT(inLevel(1), ElementsAre(2, 2, 164));
  EXPECT_THAT(inLevel(3), ElementsAre(30, 30, 30));
  EXPECT_THAT(inLevel(5), ElementsAre(2, 2, 164));
  EXPECT_EQ(textOf(fieldOf(one(1))), "100");
  EXPECT_EQ(textOf(fieldOf(both(1), "dpiYEdt")), "8200");
}

TEST_P(DpiLevels, TheActiveLevelIsMarkedAndOnTheSlider) {
  openLevels();
  EXPECT_THAT(marked(), ElementsAre(2));
  EXPECT_THAT(onSlider(), ElementsAre(20, 20, 20));
}

TEST_P(DpiLevels, AnActiveLevelThatIsNotInUseBecomesTheLastOne) {
  for (const std::uint32_t active : {3U, 5U, 15U, 0xFFFFFFFFU}) {
    editState->edit().dpiLevel = 3;
    editState->edit().currSelectDPI = active;
    openLevels();
    EXPECT_THAT(marked(), ElementsAre(3)) << active;
    EXPECT_EQ(editState->currSetProfile().currSelectDPI, 2U) << active;
    EXPECT_THAT(onSlider(), ElementsAre(30, 30, 30)) << active;
  }
}

TEST_P(DpiLevels, AClickIntoTheFieldThatIsBeingTypedInCommitsNothing) {
  openLevels();
  type(fieldOf(one(2)), "82");
  const QPoint inside = fieldOf(one(2)).mapTo(&host(), fieldOf(one(2)).rect().center());
  QTest::mouseClick(host().windowHandle(), Qt::LeftButton, {}, inside);
  EXPECT_EQ(textOf(fieldOf(one(2))), "82");
  EXPECT_EQ(inLevel(2), (std::vector<std::uint32_t>{20, 20, 20}));
}

TEST_P(DpiLevels, NoLevelKeepsTheAxesOfTheOneThatIsShown) {
  editState->edit().dpiLevel = 0;
  editState->edit().ySensArr[0] = 80;
  openLevels();
  EXPECT_TRUE(levels().isXY());
  press("okBtn");
  EXPECT_EQ(editState->selProfile().xSensArr[0], 10U);
  EXPECT_EQ(editState->selProfile().ySensArr[0], 80U);
}

TEST_P(DpiLevels, NoLevelShowsOneAndMoreThanFiveShowFive) {
  editState->edit().dpiLevel = 0;
  openLevels();
  EXPECT_THAT(visible(singles), ElementsAre(1));
  EXPECT_THAT(marked(), ElementsAre(1));
  for (const std::uint32_t count : {6U, 15U, 0xFFFFFFFFU}) {
    editState->edit().dpiLevel = count;
    openLevels();
    EXPECT_THAT(visible(singles), ElementsAre(1, 2, 3, 4, 5)) << count;
    EXPECT_THAT(marked(), ElementsAre(2)) << count;
  }
}

TEST_P(DpiLevels, TheCountShowsSoManyOfTheSetInUse) {
  openLevels();
  for (std::uint32_t count = 1; count <= 5; ++count) {
    levels().setCurrLevlePro(count, false);
    EXPECT_EQ(visible(singles).size(), count);
    EXPECT_THAT(visible(doubles), IsEmpty());
    EXPECT_EQ(editState->currSetProfile().dpiLevel, count);
    EXPECT_EQ(levels().currLevel(), count);
  }
}

TEST_P(DpiLevels, ACountThatDoesNotExistChangesNothingOnTheScreen) {
  openLevels();
  for (const std::uint32_t count : {0U, 6U}) {
    levels().setCurrLevlePro(count, false);
    EXPECT_THAT(visible(singles), ElementsAre(1, 2, 3, 4, 5)) << count;
    EXPECT_THAT(marked(), ElementsAre(2)) << count;
    EXPECT_EQ(editState->currSetProfile().currSelectDPI, 1U) << count;
  }
}

TEST_P(DpiLevels, FewerLevelsMakeTheLastOneActive) {
  editState->edit().currSelectDPI = 4;
  openLevels();
  levels().setCurrLevlePro(3, false);
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 2U);
  EXPECT_THAT(marked(), ElementsAre(3));
  EXPECT_THAT(onSlider(), ElementsAre(30, 30, 30));
}

TEST_P(DpiLevels, AClickOnALevelMakesItTheOnlyActiveOne) {
  openLevels();
  clickLevel(one(4));
  EXPECT_THAT(marked(), ElementsAre(4));
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 3U);
  EXPECT_THAT(onSlider(), ElementsAre(40, 40, 40));
  clickLevel(one(4));
  EXPECT_THAT(marked(), ElementsAre(4));
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_P(DpiLevels, AClickOnALevelOfTwoValuesFillsBothSliders) {
  openTwoValued();
  clickLevel(both(1));
  EXPECT_THAT(onSlider(), ElementsAre(10, 10, 10));
  clickLevel(both(2));
  EXPECT_THAT(onSlider(), ElementsAre(20, 20, 25));
  EXPECT_THAT(marked(), ElementsAre(2));
}

TEST_P(DpiLevels, TheArrowsMoveThroughTheLevelsInUse) {
  editState->edit().dpiLevel = 3;
  openLevels();
  hitKey(control("level2"), Qt::Key_Right);
  EXPECT_THAT(marked(), ElementsAre(3));
  hitKey(control("level3"), Qt::Key_Down);
  EXPECT_THAT(marked(), ElementsAre(3));
  hitKey(control("level3"), Qt::Key_Up);
  hitKey(control("level2"), Qt::Key_Left);
  EXPECT_THAT(marked(), ElementsAre(1));
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 0U);
}

TEST_P(DpiLevels, TheCommonSliderWritesBothAxesOfTheActiveLevelAlone) {
  openLevels();
  moveSlider("dpiPro");
  EXPECT_THAT(inLevel(2), ElementsAre(21, 21, 21));
  EXPECT_EQ(textOf(fieldOf(one(2))), "1050");
  EXPECT_THAT(inLevel(1), ElementsAre(10, 10, 10));
  EXPECT_THAT(inLevel(3), ElementsAre(30, 30, 30));
  EXPECT_EQ(editState->currSetProfile().xSensArr[1], 20U);
}

TEST_P(DpiLevels, TheAxesSlidersWriteTheirAxesAndXIntoTheSingleValue) {
  openTwoValued();
  moveSlider("dpiXPro");
  EXPECT_THAT(inLevel(2), ElementsAre(21, 21, 25));
  moveSlider("dpiYPro", Qt::Key_Left);
  EXPECT_THAT(inLevel(2), ElementsAre(21, 21, 24));
}

TEST_P(DpiLevels, WhatIsTypedMovesTheSliderOfTheActiveLevel) {
  openLevels();
  commitIn(fieldOf(one(2)), "1234");
  EXPECT_EQ(slider().dpiValue(), 24U);
  EXPECT_EQ(textOf(fieldOf(one(2))), "1200");
  EXPECT_THAT(inLevel(2), ElementsAre(24, 24, 24));
}

TEST_P(DpiLevels, AnAxisThatIsTypedMovesItsSliderAlone) {
  openTwoValued();
  commitIn(fieldOf(both(2), "dpiXEdt"), "4000");
  EXPECT_THAT(inLevel(2), ElementsAre(80, 80, 25));
  commitIn(fieldOf(both(2), "dpiYEdt"), "5000");
  EXPECT_THAT(inLevel(2), ElementsAre(80, 80, 100));
  EXPECT_EQ(slider().dpiXValue(), 80U);
  EXPECT_EQ(slider().dpiYValue(), 100U);
}

TEST_P(DpiLevels, TypingIntoAnotherLevelMakesThatOneActiveFirst) {
  openLevels();
  commitIn(fieldOf(one(5)), "8200");
  EXPECT_THAT(marked(), ElementsAre(5));
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 4U);
  EXPECT_THAT(inLevel(5), ElementsAre(164, 164, 164));
  EXPECT_THAT(inLevel(2), ElementsAre(20, 20, 20));
  EXPECT_EQ(slider().dpiValue(), 164U);
}

TEST_P(DpiLevels, TypingAnAxisOfAnotherLevelKeepsItsOtherAxis) {
  openTwoValued();
  commitIn(fieldOf(both(4), "dpiYEdt"), "100");
  EXPECT_THAT(marked(), ElementsAre(4));
  EXPECT_THAT(inLevel(4), ElementsAre(40, 40, 2));
  EXPECT_THAT(inLevel(2), ElementsAre(20, 20, 25));
}

TEST_P(DpiLevels, ALevelChosenAfterTypingIntoAnotherStaysTheActiveOne) {
  openLevels();
  type(fieldOf(one(1)), "1234");
  clickLevel(one(3));
  EXPECT_THAT(marked(), ElementsAre(3));
  press("applyBtn");
  EXPECT_THAT(marked(), ElementsAre(3));
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 2U);
  EXPECT_EQ(editState->currSetProfile().xSensArr[0], 24U);
  EXPECT_EQ(editState->currSetProfile().xSensArr[2], 30U);
}

TEST_P(DpiLevels, CheckingTheBoxShowsTheAxesOfTheActiveLevel) {
  openLevels();
  moveSlider("dpiPro");
  press("enableXYChk");
  EXPECT_TRUE(levels().isXY());
  EXPECT_EQ(slider().showType(), 2);
  EXPECT_THAT(visible(singles), IsEmpty());
  EXPECT_THAT(visible(doubles), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(marked(), ElementsAre(2));
  EXPECT_EQ(slider().dpiXValue(), 21U);
  EXPECT_EQ(slider().dpiYValue(), 21U);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_P(DpiLevels, UncheckingTheBoxGivesBothAxesTheSingleValue) {
  openTwoValued();
  press("enableXYChk");
  EXPECT_FALSE(levels().isXY());
  EXPECT_EQ(slider().showType(), 1);
  EXPECT_THAT(visible(singles), ElementsAre(1, 2, 3, 4, 5));
  EXPECT_THAT(visible(doubles), IsEmpty());
  EXPECT_THAT(marked(), ElementsAre(2));
  EXPECT_THAT(onSlider(), ElementsAre(20, 20, 20));
}

TEST_P(DpiLevels, TheBoxKeepsTheNumberOfLevels) {
  editState->edit().dpiLevel = 3;
  openLevels();
  press("enableXYChk");
  EXPECT_THAT(visible(doubles), ElementsAre(1, 2, 3));
  press("enableXYChk");
  EXPECT_THAT(visible(singles), ElementsAre(1, 2, 3));
  EXPECT_EQ(editState->currSetProfile().dpiLevel, 3U);
}

TEST_P(DpiLevels, SavingTakesBothAxesOfAllFiveLevels) {
  editState->edit().dpiLevel = 2;
  editState->edit().ySensArr[0] = 11;
  editState->edit().ySensArr[4] = 55;
  openLevels();
  levels().saveData();
  EXPECT_THAT(editState->currSetProfile().xSensArr, ElementsAre(10, 20, 30, 40, 50));
  EXPECT_THAT(editState->currSetProfile().ySensArr, ElementsAre(11, 20, 30, 40, 55));
}

TEST_P(DpiLevels, SavingWithTheBoxUncheckedMakesTheAxesEqualInAllFiveLevels) {
  editState->edit().dpiLevel = 2;
  editState->edit().ySensArr[0] = 11;
  editState->edit().ySensArr[4] = 55;
  openLevels();
  press("enableXYChk");
  levels().saveData();
  EXPECT_THAT(editState->currSetProfile().xSensArr, ElementsAre(10, 20, 30, 40, 50));
  EXPECT_THAT(editState->currSetProfile().ySensArr, ElementsAre(10, 20, 30, 40, 50));
}

TEST_P(DpiLevels, SavingOneLevelTakesTheSliderAlone) {
  openTwoValued();
  slider().setDpiXValue(90);
  slider().setDpiYValue(91);
  levels().saveDPiData(3);
  EXPECT_THAT(editState->currSetProfile().xSensArr, ElementsAre(10, 20, 30, 90, 50));
  EXPECT_THAT(editState->currSetProfile().ySensArr, ElementsAre(10, 25, 30, 91, 50));
  slider().setShowType(1);
  slider().setDpiValue(70);
  levels().saveDPiData(0);
  EXPECT_EQ(editState->currSetProfile().xSensArr[0], 70U);
  EXPECT_EQ(editState->currSetProfile().ySensArr[0], 70U);
}
