// The levels alone, in a window over the key assignment.

#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/EditorTest.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Windows/ModalWindow.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LevelSetting : public EditorTest {
 protected:
  LevelSetting() {
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      selProfile.xSensArr[level] = selProfile.ySensArr[level] = 10 * (level + 1);
    }
    selProfile.dpiLevel = 4;
    selProfile.currSelectDPI = 1;
    selProfile.liftHeight = 12;
    selProfile.poRate = 1;
    selProfile.btnInfo[3] = button(2, {7});
    m_stored = selProfile;
  }
  // Runs the window over another one, hands it over, and gives the code with which it ends.
  int run(std::function<void(LXNoTitleWindow&, LevelSettingView&)> act) {
    QWidget over;
    over.resize(700, 600);
    over.show();
    auto* content = new LevelSettingView;
    content->construct();
    ModalWindow window(content, LevelSettingView::dragHeight, QStringLiteral("Levels"), &over);
    onModal<LevelSettingView>([&](LXNoTitleWindow& shown, LevelSettingView& levels) {
      m_opening = trace();
      clearTrace();
      act(shown, levels);
    });
    return window.run();
  }
  static void pressIn(LevelSettingView& levels, const char* name) {
    clickThroughWindow(partOf<LXButton>(levels, name));
  }
  // The active level, with the slider.
  static void moveSlider(LevelSettingView& levels) {
    hitKey(partOf<LXProgressBar>(levels, "dpiPro"), Qt::Key_Right);
  }
  static LXNumberTextField& field(LevelSettingView& levels, int number) {
    return partOf<LXNumberTextField>(
        partOf<LevelView>(levels, ("levelView" + std::to_string(number)).c_str()), "dpiEdt");
  }
  _Nerin_PROFILE edited() const {
    _Nerin_PROFILE profile = m_stored;
    profile.xSensArr[1] = profile.ySensArr[1] = 21;
    return profile;
  }
  static bool isSameProfile(const _Nerin_PROFILE& one, const _Nerin_PROFILE& other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
  }

  _Nerin_PROFILE m_stored{};
  std::vector<std::string> m_opening;
};

}  // namespace

TEST_F(LevelSetting, ItsControlsHaveTheirTagsAndTexts) {
  run([](LXNoTitleWindow& window, LevelSettingView& levels) {
    struct Row {
      const char* name;
      int tag;
      const char* text;
    };
    for (const Row& row : {Row{"applyBtn", 320, "Apply"},
                           {"okBtn", 321, "Close"},
                           {"cancelBtn", 322, "Cancel"},
                           {"enableXYChk", 323, "Enable X-Y Axis"}}) {
      EXPECT_EQ(partOf<LXButton>(levels, row.name).tag(), row.tag) << row.name;
      EXPECT_EQ(partOf<LXButton>(levels, row.name).toolTip(), row.text) << row.name;
    }
    EXPECT_EQ(levels.findChild<LXButton*>("levelSelBtn"), nullptr);
    EXPECT_EQ(levels.findChild<LXButton*>("rate125Btn"), nullptr);
    EXPECT_EQ(levels.findChild<LXProgressBar*>("liftPro"), nullptr);
    window.close();
  });
  EXPECT_EQ(modals(), 1);
}

TEST_F(LevelSetting, OpeningSendsNothing) {
  run([](LXNoTitleWindow&, LevelSettingView& levels) { pressIn(levels, "okBtn"); });
  EXPECT_EQ(modals(), 1);
  EXPECT_THAT(m_opening, IsEmpty());
}

TEST_F(LevelSetting, ItsWindowIsModalAndCanBeDragged) {
  QWidget over;
  over.setGeometry(20, 20, 700, 600);
  over.show();
  auto* content = new LevelSettingView;
  content->construct();
  ModalWindow window(content, LevelSettingView::dragHeight, QStringLiteral("Levels"), &over);
  EXPECT_EQ(window.windowModality(), Qt::WindowModal);
  EXPECT_TRUE(window.windowFlags() & Qt::FramelessWindowHint);
  EXPECT_TRUE(window.isCanDrag());
  EXPECT_GT(window.dragHeight(), 0);
  EXPECT_EQ(window.size(), content->size());
  EXPECT_LE((window.geometry().center() - over.geometry().center()).manhattanLength(), 2);
}

TEST_F(LevelSetting, ApplySendsTheWholeWorkingCopy) {
  run([this](LXNoTitleWindow& window, LevelSettingView& levels) {
    moveSlider(levels);
    pressIn(levels, "applyBtn");
    EXPECT_EQ(sent(), settingCommands(edited()));
    EXPECT_TRUE(isSameProfile(selProfile, m_stored));
    EXPECT_TRUE(window.isVisible());
    clearTrace();
    pressIn(levels, "applyBtn");
    EXPECT_EQ(sent().size(), 14U);
    window.close();
  });
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(LevelSetting, ApplyPreparesTheStoredProfileWithTheLevelsOfAllFive) {
  run([this](LXNoTitleWindow& window, LevelSettingView& levels) {
    moveSlider(levels);
    type(field(levels, 4), "500");
    hitKey(field(levels, 4), Qt::Key_Return);
    pressIn(levels, "applyBtn");
    _Nerin_PROFILE expected = m_stored;
    std::copy(std::begin(currSetProfile.xSensArr), std::end(currSetProfile.xSensArr),
              expected.xSensArr);
    std::copy(std::begin(currSetProfile.ySensArr), std::end(currSetProfile.ySensArr),
              expected.ySensArr);
    EXPECT_THAT(expected.xSensArr, ElementsAre(10, 21, 30, 10, 50));
    EXPECT_TRUE(isSameProfile(currFWProfile, expected));
    EXPECT_EQ(currSetProfile.currSelectDPI, 3U);
    EXPECT_EQ(currFWProfile.currSelectDPI, 1U);
    window.close();
  });
}

TEST_F(LevelSetting, CloseKeepsTheSettingsWithoutSending) {
  EXPECT_EQ(run([](LXNoTitleWindow&, LevelSettingView& levels) {
              moveSlider(levels);
              pressIn(levels, "okBtn");
            }),
            1);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_TRUE(isSameProfile(selProfile, edited()));
  EXPECT_FALSE(isNeedSave);
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(LevelSetting, CancelSendsTheEditAgainAndKeepsTheProfile) {
  EXPECT_EQ(run([](LXNoTitleWindow&, LevelSettingView& levels) {
              moveSlider(levels);
              pressIn(levels, "applyBtn");
              pressIn(levels, "cancelBtn");
            }),
            0);
  const auto once = settingCommands(edited());
  auto twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(sent(), twice);
  EXPECT_TRUE(isSameProfile(selProfile, m_stored));
  EXPECT_TRUE(isSameProfile(currFWProfile, m_stored));
  EXPECT_THAT(told(), IsEmpty());
}

// What was not saved is not in the working copy either.
TEST_F(LevelSetting, CancelWithoutApplySendsWhatWasStored) {
  EXPECT_EQ(run([](LXNoTitleWindow&, LevelSettingView& levels) {
              moveSlider(levels);
              pressIn(levels, "cancelBtn");
            }),
            0);
  EXPECT_EQ(sent(), settingCommands(m_stored));
  EXPECT_TRUE(isSameProfile(selProfile, m_stored));
}

TEST_F(LevelSetting, EscapeAndAForcedCloseCancel) {
  for (const bool isEscape : {true, false}) {
    EXPECT_EQ(run([&](LXNoTitleWindow& window, LevelSettingView& levels) {
                moveSlider(levels);
                if (isEscape) {
                  QTest::keyClick(&window, Qt::Key_Escape);
                } else {
                  window.close();
                }
              }),
              0);
    EXPECT_EQ(sent(), settingCommands(m_stored));
    EXPECT_TRUE(isSameProfile(selProfile, m_stored));
  }
  EXPECT_EQ(modals(), 2);
}

TEST_F(LevelSetting, WhatWasTypedLastCountsWhenAButtonIsPressed) {
  run([](LXNoTitleWindow&, LevelSettingView& levels) {
    type(field(levels, 3), "4000");
    partOf<LXButton>(levels, "okBtn").click();
  });
  EXPECT_THAT(selProfile.xSensArr, ElementsAre(10, 20, 80, 40, 50));
  EXPECT_EQ(selProfile.currSelectDPI, 2U);
}

TEST_F(LevelSetting, TheSliderIsSavedIntoTheActiveLevelBeforeAllLevelsAre) {
  run([](LXNoTitleWindow& window, LevelSettingView& levels) {
    // Out of step with its level: the level has the last word.
    partOf<DpiSliderView>(levels, "dpiSliderView").setDpiValue(99);
    levels.saveDPiData(currSetProfile.currSelectDPI);
    EXPECT_EQ(currSetProfile.xSensArr[1], 99U);
    levels.saveData();
    EXPECT_EQ(currSetProfile.xSensArr[1], 20U);
    window.close();
  });
}

TEST_F(LevelSetting, UncheckingTheBoxAndClosingMakesAllAxesEqual) {
  selProfile.ySensArr[0] = 12;
  selProfile.ySensArr[4] = 55;
  run([](LXNoTitleWindow&, LevelSettingView& levels) {
    EXPECT_TRUE(levels.isXY());
    pressIn(levels, "enableXYChk");
    pressIn(levels, "okBtn");
  });
  EXPECT_THAT(selProfile.xSensArr, ElementsAre(10, 20, 30, 40, 50));
  EXPECT_THAT(selProfile.ySensArr, ElementsAre(10, 20, 30, 40, 50));
}

TEST_F(LevelSetting, LiftHeightAndRateStayAsTheyAre) {
  selProfile.liftHeight = 31;
  selProfile.poRate = 9;
  run([](LXNoTitleWindow&, LevelSettingView& levels) { pressIn(levels, "okBtn"); });
  EXPECT_EQ(selProfile.liftHeight, 31U);
  EXPECT_EQ(selProfile.poRate, 9U);
}
