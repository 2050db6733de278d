// Only the levels, in a window over the key assignment.

#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/EditorTest.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Windows/ModalWindow.h"
#include "View/Windows/StatusLine.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class LevelSetting : public EditorTest {
 protected:
  LevelSetting() {
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      editState->edit().xSensArr[level] = editState->edit().ySensArr[level] = 10 * (level + 1);
    }
    editState->edit().dpiLevel = 4;
    editState->edit().currSelectDPI = 1;
    editState->edit().liftHeight = 12;
    editState->edit().poRate = 1;
    editState->edit().btnInfo[3] = button(2, {7});
    editState->clearNeedSave();
    m_stored = editState->selProfile();
  }
  // Runs the window over another one, calls `act` with it, and returns its end code.
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
  // Moves the slider of the active level.
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
    EXPECT_TRUE(isSameProfile(editState->selProfile(), m_stored));
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
    std::copy(std::begin(editState->currSetProfile().xSensArr),
              std::end(editState->currSetProfile().xSensArr), expected.xSensArr);
    std::copy(std::begin(editState->currSetProfile().ySensArr),
              std::end(editState->currSetProfile().ySensArr), expected.ySensArr);
    EXPECT_THAT(expected.xSensArr, ElementsAre(10, 21, 30, 10, 50));
    EXPECT_TRUE(isSameProfile(editState->currFWProfile(), expected));
    EXPECT_EQ(editState->currSetProfile().currSelectDPI, 3U);
    EXPECT_EQ(editState->currFWProfile().currSelectDPI, 1U);
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
  EXPECT_TRUE(isSameProfile(editState->selProfile(), edited()));
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(LevelSetting, CancelSendsTheEditAgainAndKeepsTheProfile) {
  QString said;
  EXPECT_EQ(run([&](LXNoTitleWindow&, LevelSettingView& levels) {
              moveSlider(levels);
              pressIn(levels, "applyBtn");
              pressIn(levels, "cancelBtn");
              said = partOf<StatusLine>(levels, "statusLine").text();
            }),
            0);
  const auto once = settingCommands(edited());
  auto twice = once;
  twice.insert(twice.end(), once.begin(), once.end());
  EXPECT_EQ(sent(), twice);
  EXPECT_TRUE(isSameProfile(editState->selProfile(), m_stored));
  EXPECT_TRUE(isSameProfile(editState->currFWProfile(), m_stored));
  EXPECT_THAT(told(), IsEmpty());
  EXPECT_EQ(said, "The mouse keeps the DPI settings you tried. Apply gives it the profile's own.");
  EXPECT_TRUE(editState->isNeedSave());
}

// Values that were not saved are not in the working copy.
TEST_F(LevelSetting, CancelWithoutApplySendsWhatWasStored) {
  EXPECT_EQ(run([](LXNoTitleWindow&, LevelSettingView& levels) {
              moveSlider(levels);
              pressIn(levels, "cancelBtn");
            }),
            0);
  EXPECT_EQ(sent(), settingCommands(m_stored));
  EXPECT_TRUE(isSameProfile(editState->selProfile(), m_stored));
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
    EXPECT_TRUE(isSameProfile(editState->selProfile(), m_stored));
  }
  EXPECT_EQ(modals(), 2);
}

TEST_F(LevelSetting, WhatWasTypedLastCountsWhenAButtonIsPressed) {
  run([](LXNoTitleWindow&, LevelSettingView& levels) {
    type(field(levels, 3), "4000");
    partOf<LXButton>(levels, "okBtn").click();
  });
  EXPECT_THAT(editState->selProfile().xSensArr, ElementsAre(10, 20, 80, 40, 50));
  EXPECT_EQ(editState->selProfile().currSelectDPI, 2U);
}

TEST_F(LevelSetting, TheSliderIsSavedIntoTheActiveLevelBeforeAllLevelsAre) {
  run([](LXNoTitleWindow& window, LevelSettingView& levels) {
    // The slider differs from its level, and the level wins.
    partOf<DpiSliderView>(levels, "dpiSliderView").setDpiValue(99);
    levels.saveDPiData(editState->currSetProfile().currSelectDPI);
    EXPECT_EQ(editState->currSetProfile().xSensArr[1], 99U);
    levels.saveData();
    EXPECT_EQ(editState->currSetProfile().xSensArr[1], 20U);
    window.close();
  });
}

TEST_F(LevelSetting, UncheckingTheBoxAndClosingMakesAllAxesEqual) {
  editState->edit().ySensArr[0] = 12;
  editState->edit().ySensArr[4] = 55;
  run([](LXNoTitleWindow&, LevelSettingView& levels) {
    EXPECT_TRUE(levels.isXY());
    pressIn(levels, "enableXYChk");
    pressIn(levels, "okBtn");
  });
  EXPECT_THAT(editState->selProfile().xSensArr, ElementsAre(10, 20, 30, 40, 50));
  EXPECT_THAT(editState->selProfile().ySensArr, ElementsAre(10, 20, 30, 40, 50));
}

TEST_F(LevelSetting, LiftHeightAndRateStayAsTheyAre) {
  editState->edit().liftHeight = 31;
  editState->edit().poRate = 9;
  run([](LXNoTitleWindow&, LevelSettingView& levels) { pressIn(levels, "okBtn"); });
  EXPECT_EQ(editState->selProfile().liftHeight, 31U);
  EXPECT_EQ(editState->selProfile().poRate, 9U);
}
