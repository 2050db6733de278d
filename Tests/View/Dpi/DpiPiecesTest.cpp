// The parts of both DPI windows: the slider of a level, and the level with its fields.

#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/EditorTest.h"
#include "View/Dpi/DpiSliderView.h"
#include "View/Dpi/LevelView.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class DpiSlider : public EditorTest, protected DpiSliderDelegate {
 protected:
  DpiSlider() {
    m_view.construct();
    m_view.setDelegate(this);
    m_view.show();
    process();
  }
  void OnChangeSliderValue(DpiSliderView& sender) override {
    m_heard.push_back({sender.dpiValue(), sender.dpiXValue(), sender.dpiYValue()});
  }
  LXProgressBar& bar(const char* name) { return partOf<LXProgressBar>(m_view, name); }
  // The visible label above the knob, if any.
  std::string labelAtKnob(const LXProgressBar& bar) {
    for (const auto* label : m_view.findChildren<QLabel*>()) {
      const int knob = bar.x() + bar.indicatePosition();
      if (label->isVisible() && std::abs(label->geometry().center().x() - knob) <= 1 &&
          std::abs(label->geometry().bottom() - bar.y()) <= label->height()) {
        return label->text().toStdString();
      }
    }
    return "(none)";
  }

  DpiSliderView m_view;
  std::vector<std::vector<std::uint32_t>> m_heard;
};

class DpiLevel : public EditorTest, protected LevelViewDelegate {
 protected:
  void SetUp() override { make(DpiSliderView::ShowCommon); }
  void make(int showType) {
    m_window = std::make_unique<QWidget>();
    m_level = new LevelView(showType, 3, m_window.get());
    m_level->setLevelDelegate(this);
    m_level->construct();
    m_window->show();
    m_window->activateWindow();
    process();
  }
  void onLevelChange(LevelView& level) override {
    m_heard.push_back("level " + std::to_string(level.levelIndex()) +
                      (level.isActive() ? " active" : ""));
  }
  void onDpiChange(LevelView& level, int type) override {
    const std::uint32_t value = type == DpiX   ? level.dpiXValue()
                                : type == DpiY ? level.dpiYValue()
                                               : level.dpiValue();
    m_heard.push_back("type " + std::to_string(type) + " value " + std::to_string(value));
  }
  LXNumberTextField& field(const char* name = "dpiEdt") {
    return partOf<LXNumberTextField>(*m_level, name);
  }
  std::string shown(const char* name = "dpiEdt") { return textOf(field(name)); }
  // Whether the level shows that picture.
  bool shows(const LXImage& image) const {
    return m_level->bgImage().pixmap().toImage() == image.pixmap().toImage();
  }

  // Destroyed after the window, which reports typed values when it closes.
  std::vector<std::string> m_heard;
  std::unique_ptr<QWidget> m_window;
  LevelView* m_level = nullptr;
};

}  // namespace

TEST_F(DpiSlider, HasASliderForBothAxesAndOneForEach) {
  EXPECT_EQ(bar("dpiPro").tag(), 1000);
  EXPECT_EQ(bar("dpiXPro").tag(), 1001);
  EXPECT_EQ(bar("dpiYPro").tag(), 1002);
  for (const char* name : {"dpiPro", "dpiXPro", "dpiYPro"}) {
    EXPECT_EQ(bar(name).minimum(), 2) << name;
    EXPECT_EQ(bar(name).maximum(), 164) << name;
  }
}

TEST_F(DpiSlider, SettingAValueMovesItsSliderAndTellsNobody) {
  m_view.setDpiValue(10);
  m_view.setDpiXValue(20);
  m_view.setDpiYValue(30);
  EXPECT_EQ(bar("dpiPro").value(), 10);
  EXPECT_EQ(bar("dpiXPro").value(), 20);
  EXPECT_EQ(bar("dpiYPro").value(), 30);
  EXPECT_EQ(m_view.dpiValue(), 10U);
  EXPECT_EQ(m_view.dpiXValue(), 20U);
  EXPECT_EQ(m_view.dpiYValue(), 30U);
  EXPECT_THAT(m_heard, IsEmpty());
}

TEST_F(DpiSlider, ShowsOneSliderOrTheOtherTwo) {
  m_view.setShowType(1);
  EXPECT_TRUE(bar("dpiPro").isVisible());
  EXPECT_FALSE(bar("dpiXPro").isVisible());
  EXPECT_FALSE(bar("dpiYPro").isVisible());
  m_view.setShowType(2);
  EXPECT_EQ(m_view.showType(), 2);
  EXPECT_FALSE(bar("dpiPro").isVisible());
  EXPECT_TRUE(bar("dpiXPro").isVisible());
  EXPECT_TRUE(bar("dpiYPro").isVisible());
}

TEST_F(DpiSlider, EveryMoveIsStoredAndToldWithItsOwnField) {
  m_view.setDpiValue(10);
  m_view.setDpiXValue(20);
  m_view.setDpiYValue(30);
  hitKey(bar("dpiPro"), Qt::Key_Right);
  m_view.setShowType(2);
  hitKey(bar("dpiXPro"), Qt::Key_Right);
  hitKey(bar("dpiYPro"), Qt::Key_Left);
  EXPECT_THAT(m_heard, ElementsAre(ElementsAre(11, 20, 30), ElementsAre(11, 21, 30),
                                   ElementsAre(11, 21, 29)));
}

TEST_F(DpiSlider, ThePointerMovesTheKnobOverTheWholeRange) {
  LXProgressBar& slider = bar("dpiPro");
  QTest::mouseClick(&slider, Qt::LeftButton, {}, {slider.width() - 1, slider.height() / 2});
  EXPECT_EQ(m_view.dpiValue(), 164U);
  QTest::mouseClick(&slider, Qt::LeftButton, {}, {0, slider.height() / 2});
  EXPECT_EQ(m_view.dpiValue(), 2U);
  QTest::mousePress(&slider, Qt::LeftButton, {}, {0, slider.height() / 2});
  QTest::mouseMove(&slider, {slider.width() / 2, slider.height() / 2});
  QTest::mouseRelease(&slider, Qt::LeftButton, {}, {slider.width() / 2, slider.height() / 2});
  EXPECT_NEAR(m_view.dpiValue(), 83.0, 2.0);
  EXPECT_EQ(m_heard.size(), 3U);
}

TEST_F(DpiSlider, TheLabelSaysTheDpiWhereTheKnobIs) {
  m_view.setDpiValue(64);
  EXPECT_EQ(labelAtKnob(bar("dpiPro")), "3200");
  hitKey(bar("dpiPro"), Qt::Key_Right);
  EXPECT_EQ(labelAtKnob(bar("dpiPro")), "3250");
  m_view.setShowType(2);
  m_view.setDpiXValue(40);
  m_view.setDpiYValue(100);
  EXPECT_EQ(labelAtKnob(bar("dpiXPro")), "2000");
  EXPECT_EQ(labelAtKnob(bar("dpiYPro")), "5000");
}

TEST_F(DpiSlider, TheLabelStaysInsideTheViewAtBothEnds) {
  for (const std::uint32_t value : {2U, 164U}) {
    m_view.setDpiValue(value);
    for (const auto* label : m_view.findChildren<QLabel*>()) {
      EXPECT_TRUE(!label->isVisible() || m_view.rect().contains(label->geometry())) << value;
    }
  }
}

TEST_F(DpiLevel, ItsFieldsTakeFourDigitsFrom100To8200) {
  for (const int type : {DpiSliderView::ShowCommon, DpiSliderView::ShowXY}) {
    make(type);
    const auto fields = m_level->findChildren<LXNumberTextField*>();
    EXPECT_EQ(fields.size(), type);
    for (auto* one : fields) {
      EXPECT_EQ(one->maxNum(), 8200);
      EXPECT_EQ(one->minNum(), 100);
      EXPECT_EQ(one->maxLength(), 4);
      EditorTest::type(*one, "-1a2.3456");
      EXPECT_EQ(one->text(), "1234");
    }
  }
}

TEST_F(DpiLevel, ShowsFiftyTimesItsValueAndTellsNobody) {
  m_level->setDpiValue(24);
  EXPECT_EQ(shown(), "1200");
  EXPECT_EQ(m_level->dpiValue(), 24U);
  make(DpiSliderView::ShowXY);
  m_level->setDpiXValue(2);
  m_level->setDpiYValue(164);
  EXPECT_EQ(shown("dpiXEdt"), "100");
  EXPECT_EQ(shown("dpiYEdt"), "8200");
  EXPECT_THAT(m_heard, IsEmpty());
}

TEST_F(DpiLevel, ATyped1234Becomes24ShownAs1200) {
  type(field(), "1234");
  EXPECT_THAT(m_heard, IsEmpty());
  hitKey(field(), Qt::Key_Return);
  EXPECT_EQ(shown(), "1200");
  EXPECT_THAT(m_heard, ElementsAre("type 0 value 24"));
}

TEST_F(DpiLevel, NothingIsLimitedWhileItIsTyped) {
  m_level->setDpiValue(24);
  for (const char* text : {"1", "9", "9999", ""}) {
    type(field(), text);
    EXPECT_EQ(shown(), text);
    EXPECT_EQ(m_level->dpiValue(), 24U);
  }
  EXPECT_THAT(m_heard, IsEmpty());
}

TEST_F(DpiLevel, WhatIsCommittedIsDividedAndThenLimited) {
  const std::vector<std::pair<const char*, std::uint32_t>> typed = {
      {"1", 2},     {"99", 2},   {"100", 2},    {"149", 2},    {"150", 3},    {"1249", 24},
      {"1250", 25}, {"0000", 2}, {"8199", 163}, {"8200", 164}, {"8249", 164}, {"9999", 164}};
  for (const auto& [text, value] : typed) {
    type(field(), text);
    hitKey(field(), Qt::Key_Return);
    EXPECT_EQ(m_level->dpiValue(), value) << text;
    EXPECT_EQ(shown(), std::to_string(value * 50)) << text;
  }
}

TEST_F(DpiLevel, AClearedFieldGoesBackToItsValue) {
  m_level->setDpiValue(24);
  type(field(), "");
  hitKey(field(), Qt::Key_Return);
  EXPECT_EQ(shown(), "1200");
  EXPECT_EQ(m_level->dpiValue(), 24U);
  type(field(), "900");
  hitKey(field(), Qt::Key_Return);
  type(field(), "");
  field().clearFocus();
  EXPECT_EQ(shown(), "900");
  EXPECT_EQ(m_level->dpiValue(), 18U);
  type(field(), "");
  hitKey(field(), Qt::Key_Up);
  EXPECT_EQ(shown(), "950");
}

TEST_F(DpiLevel, LeavingTheFieldCommitsWhatWasChangedOnce) {
  m_level->setDpiValue(24);
  field().setFocus();
  field().clearFocus();
  EXPECT_THAT(m_heard, IsEmpty());
  type(field(), "777");
  field().clearFocus();
  m_level->commit();
  EXPECT_THAT(m_heard, ElementsAre("type 0 value 15"));
}

TEST_F(DpiLevel, WhatWasTypedCountsWhenItIsCalledFor) {
  type(field(), "2000");
  m_level->commit();
  EXPECT_THAT(m_heard, ElementsAre("type 0 value 40"));
  m_level->commit();
  EXPECT_EQ(m_heard.size(), 1U);
}

TEST_F(DpiLevel, EachAxisHasItsOwnType) {
  make(DpiSliderView::ShowXY);
  type(field("dpiXEdt"), "500");
  hitKey(field("dpiXEdt"), Qt::Key_Return);
  type(field("dpiYEdt"), "600");
  hitKey(field("dpiYEdt"), Qt::Key_Return);
  EXPECT_THAT(m_heard, ElementsAre("type 1 value 10", "type 2 value 12"));
}

TEST_F(DpiLevel, UpAndDownStepByFifty) {
  m_level->setDpiValue(24);
  hitKey(field(), Qt::Key_Up);
  EXPECT_EQ(shown(), "1250");
  hitKey(field(), Qt::Key_Down);
  hitKey(field(), Qt::Key_Down);
  EXPECT_EQ(shown(), "1150");
  EXPECT_THAT(m_heard, ElementsAre("type 0 value 25", "type 0 value 24", "type 0 value 23"));
}

TEST_F(DpiLevel, StepsStopAtTheLimits) {
  m_level->setDpiValue(164);
  hitKey(field(), Qt::Key_Up);
  EXPECT_EQ(shown(), "8200");
  m_level->setDpiValue(2);
  hitKey(field(), Qt::Key_Down);
  EXPECT_EQ(shown(), "100");
}

TEST_F(DpiLevel, AStepStartsFromWhatWasTyped) {
  type(field(), "2000");
  hitKey(field(), Qt::Key_Up);
  EXPECT_EQ(shown(), "2050");
  EXPECT_THAT(m_heard, ElementsAre("type 0 value 41"));
}

TEST_F(DpiLevel, AClickTellsOfTheLevelAndThenMakesItActive) {
  const QPoint beside(2, m_level->height() - 2);
  QTest::mousePress(m_level, Qt::LeftButton, {}, beside);
  EXPECT_THAT(m_heard, IsEmpty());
  QTest::mouseRelease(m_level, Qt::LeftButton, {}, beside);
  EXPECT_THAT(m_heard, ElementsAre("level 3"));
  EXPECT_TRUE(m_level->isActive());
}

TEST_F(DpiLevel, AClickIntoItsFieldIsOneOnTheLevel) {
  QTest::mouseClick(&field(), Qt::LeftButton);
  EXPECT_THAT(m_heard, ElementsAre("level 3"));
  EXPECT_TRUE(m_level->isActive());
}

TEST_F(DpiLevel, OtherButtonsOfThePointerAndADragOutDoNothing) {
  const QPoint beside(2, m_level->height() - 2);
  QTest::mouseClick(m_level, Qt::RightButton, {}, beside);
  QTest::mouseClick(&field(), Qt::MiddleButton);
  QTest::mousePress(m_level, Qt::LeftButton, {}, beside);
  QTest::mouseRelease(m_level, Qt::LeftButton, {}, {-20, -20});
  EXPECT_THAT(m_heard, IsEmpty());
  EXPECT_FALSE(m_level->isActive());
}

TEST_F(DpiLevel, BeingActiveShowsInItsPicture) {
  for (const int type : {DpiSliderView::ShowCommon, DpiSliderView::ShowXY}) {
    make(type);
    ASSERT_FALSE(m_level->activeImage().isNull());
    EXPECT_FALSE(shows(m_level->activeImage()));
    m_level->setIsActive(true);
    EXPECT_TRUE(shows(m_level->activeImage()));
    m_level->setIsActive(false);
    EXPECT_FALSE(shows(m_level->activeImage()));
  }
}
