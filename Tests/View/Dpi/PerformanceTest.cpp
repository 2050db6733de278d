// The window with the levels, the report rate and the lift-off height.

#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Tests/Support/EditorTest.h"
#include "View/Dpi/PerformanceView.h"
#include "View/Windows/StatusLine.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class Performance : public EditorTest {
 protected:
  Performance() {
    for (std::uint32_t level = 0; level < levelCount; ++level) {
      editState->edit().xSensArr[level] = editState->edit().ySensArr[level] = 10 * (level + 1);
    }
    editState->edit().dpiLevel = 5;
    editState->edit().currSelectDPI = 1;
    editState->edit().liftHeight = 12;
    editState->edit().poRate = 1;
    editState->edit().modeType = 1;
    m_stored = editState->selProfile();
  }
  void openWindow() {
    m_stored = editState->selProfile();
    m_performance = new PerformanceView;
    m_performance->construct();
    show(m_performance);
    m_opening = sent();
    clearTrace();
  }
  PerformanceView& performance() { return *m_performance; }
  std::string said() { return part<StatusLine>("statusLine").text().toStdString(); }
  LXProgressBar& lift() { return part<LXProgressBar>("liftPro"); }
  LXNumberTextField& field(int number) {
    return partOf<LXNumberTextField>(
        part<LevelView>(("levelView" + std::to_string(number)).c_str()), "dpiEdt");
  }
  // Edits the rate, the height and the DPI as a user does.
  void edit() {
    press("rate1000Btn");
    hitKey(lift(), Qt::Key_Right);
    type(field(2), "3000");
    hitKey(field(2), Qt::Key_Return);
    clearTrace();
  }
  bool isStoredAsBefore() const {
    return std::memcmp(&editState->selProfile(), &m_stored, sizeof m_stored) == 0;
  }
  _Nerin_PROFILE edited() const {
    _Nerin_PROFILE profile = m_stored;
    profile.poRate = 3;
    profile.liftHeight = 13;
    profile.xSensArr[1] = profile.ySensArr[1] = 60;
    return profile;
  }
  static bool isSameProfile(const _Nerin_PROFILE& one, const _Nerin_PROFILE& other) {
    return std::memcmp(&one, &other, sizeof one) == 0;
  }
  static std::vector<std::string> both(std::vector<std::string> first, const std::string& last) {
    first.push_back(last);
    return first;
  }
  // Saving puts the levels into the working copy; the lift height is there at once.
  void expectCancelled() {
    _Nerin_PROFILE worked = m_stored;
    worked.liftHeight = 13;
    EXPECT_FALSE(isOpen());
    EXPECT_EQ(m_performance->endTag(), 0);
    EXPECT_THAT(told(), ElementsAre("122 false"));
    EXPECT_EQ(sent(), both(settingCommands(worked), rateCommand(1)));
    EXPECT_TRUE(isStoredAsBefore());
    EXPECT_TRUE(isSameProfile(editState->currFWProfile(), m_stored));
  }

  _Nerin_PROFILE m_stored{};
  std::vector<std::string> m_opening;

 private:
  PerformanceView* m_performance = nullptr;
};

constexpr const char* rateButtons[] = {"rate125Btn", "rate250Btn", "rate500Btn", "rate1000Btn"};

}  // namespace

TEST_F(Performance, ItsControlsHaveTheirTagsAndTexts) {
  openWindow();
  struct Row {
    const char* name;
    int tag;
    const char* text;
  };
  for (const Row& row : {Row{"levelSelBtn", 250, "Sensitivity level setting"},
                         {"enableXYChk", 251, "Enable X-Y Axis"},
                         {"applyBtn", 256, "Apply"},
                         {"okBtn", 257, "Close"},
                         {"cancelBtn", 258, "Cancel"}}) {
    EXPECT_EQ(control(row.name).tag(), row.tag) << row.name;
    EXPECT_EQ(control(row.name).toolTip(), row.text) << row.name;
    EXPECT_FALSE(control(row.name).accessibleName().isEmpty()) << row.name;
  }
  EXPECT_TRUE(control("enableXYChk").isCheckBox());
  EXPECT_EQ(lift().tag(), 259);
  EXPECT_EQ(lift().minimum(), 0);
  EXPECT_EQ(lift().maximum(), 30);
  EXPECT_EQ(lift().accessibleName(), "Lift-off height");
  const char* hertz[] = {"125", "250", "500", "1000"};
  for (std::size_t i = 0; i < 4; ++i) {
    EXPECT_EQ(control(rateButtons[i]).toolTip().toStdString(),
              std::string("USB Report rate: ") + hertz[i] + "Hz");
    EXPECT_TRUE(control(rateButtons[i]).isStepItem());
  }
}

TEST_F(Performance, OpeningSendsTheRateOnceAndNothingElse) {
  for (std::uint32_t rate = 0; rate < 4; ++rate) {
    editState->edit().poRate = rate;
    clearTrace();
    openWindow();
    EXPECT_THAT(m_opening, ElementsAre(rateCommand(rate)));
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(control(rateButtons[i]).Checked(), i == rate);
    }
  }
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(Performance, FillingItAgainIsAnotherChoiceOfTheRate) {
  openWindow();
  performance().fillSettingData();
  EXPECT_THAT(sent(), ElementsAre(rateCommand(1)));
}

TEST_F(Performance, ARateThatDoesNotExistIsShownAsTheFastest) {
  for (const std::uint32_t rate : {4U, 0xFFFFFFFFU}) {
    editState->edit().poRate = rate;
    clearTrace();
    openWindow();
    EXPECT_THAT(m_opening, ElementsAre(rateCommand(3)));
    EXPECT_TRUE(control("rate1000Btn").Checked());
    EXPECT_TRUE(isStoredAsBefore());
  }
}

TEST_F(Performance, ARateIsSentWhenItIsChosen) {
  openWindow();
  press("rate125Btn");
  EXPECT_THAT(sent(), ElementsAre("SET 0300 0 c40f000008000000"));
  EXPECT_EQ(editState->currSetProfile().poRate, 0U);
  press("rate1000Btn");
  EXPECT_EQ(sent().back(), "SET 0300 0 c40f000001000000");
  press("rate500Btn");
  EXPECT_EQ(sent().back(), "SET 0300 0 c40f000002000000");
  press("rate250Btn");
  EXPECT_EQ(sent().back(), "SET 0300 0 c40f000004000000");
  press("rate250Btn");
  EXPECT_EQ(sent().size(), 4U);
  EXPECT_EQ(editState->currSetProfile().poRate, 1U);
  EXPECT_TRUE(isStoredAsBefore());
  EXPECT_THAT(told(), IsEmpty());
}

TEST_F(Performance, ARateTakesTheWorkingCopyWholeIntoTheImage) {
  openWindow();
  hitKey(lift(), Qt::Key_Right);
  editState->currFWProfile() = {};
  press("rate500Btn");
  EXPECT_TRUE(isSameProfile(editState->currFWProfile(), editState->currSetProfile()));
  EXPECT_EQ(editState->currFWProfile().liftHeight, 13U);
}

TEST_F(Performance, TheLiftHeightFollowsItsSliderWithoutBeingSent) {
  openWindow();
  EXPECT_EQ(lift().value(), 12);
  hitKey(lift(), Qt::Key_Right);
  EXPECT_EQ(editState->currSetProfile().liftHeight, 13U);
  hitKey(lift(), Qt::Key_Home);
  EXPECT_EQ(editState->currSetProfile().liftHeight, 0U);
  hitKey(lift(), Qt::Key_End);
  EXPECT_EQ(editState->currSetProfile().liftHeight, 30U);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Performance, ALiftHeightOf31SurvivesUntilTheSliderIsMoved) {
  editState->edit().liftHeight = 31;
  openWindow();
  EXPECT_EQ(lift().value(), 30);
  press("applyBtn");
  EXPECT_EQ(sent(), settingCommands(m_stored));
  press("okBtn");
  EXPECT_EQ(editState->selProfile().liftHeight, 31U);
  openWindow();
  hitKey(lift(), Qt::Key_Left);
  press("okBtn");
  EXPECT_EQ(editState->selProfile().liftHeight, 29U);
}

TEST_F(Performance, TheListOfCountsHasItsWidthAndFiveEntries) {
  openWindow();
  EXPECT_EQ(performance().levelMenuList()->menuWidth(), 73);
  EXPECT_THAT(titlesOf(*performance().levelMenuList()), ElementsAre("1", "2", "3", "4", "5"));
  EXPECT_EQ(control("levelSelBtn").title(), "5");
}

TEST_F(Performance, ChoosingACountSetsIt) {
  openWindow();
  chooseIn("levelSelBtn", "3");
  EXPECT_EQ(control("levelSelBtn").title(), "3");
  EXPECT_EQ(editState->currSetProfile().dpiLevel, 3U);
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 1U);
  EXPECT_TRUE(part<LevelView>("levelView3").isVisible());
  EXPECT_FALSE(part<LevelView>("levelView4").isVisible());
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Performance, ThreeLevelsMakeLevelThreeActiveWhereLevelFiveWas) {
  editState->edit().currSelectDPI = 4;
  openWindow();
  chooseIn("levelSelBtn", "3");
  EXPECT_EQ(editState->currSetProfile().currSelectDPI, 2U);
  EXPECT_TRUE(part<LevelView>("levelView3").isActive());
  EXPECT_EQ(part<DpiSliderView>("dpiSliderView").dpiValue(), 30U);
}

TEST_F(Performance, TheCountOfARecordWithoutOneIsShownAsOne) {
  editState->edit().dpiLevel = 0;
  openWindow();
  EXPECT_EQ(control("levelSelBtn").title(), "1");
}

TEST_F(Performance, ApplyTriesTheSettingsOnTheMouse) {
  openWindow();
  edit();
  press("applyBtn");
  EXPECT_EQ(sent(), settingCommands(edited()));
  EXPECT_THAT(told(), ElementsAre("122 true"));
  EXPECT_TRUE(isSameProfile(editState->currSetProfile(), edited()));
  EXPECT_TRUE(isSameProfile(editState->currFWProfile(), edited()));
  EXPECT_TRUE(isStoredAsBefore());
  EXPECT_TRUE(isOpen());
  EXPECT_THAT(mouse().faults(), IsEmpty());
  const auto image = mouse().imageReport(mouse().activeSlot());
  EXPECT_EQ(image[5], 0x20 + 13);
  EXPECT_EQ(image[6], 0x51);
  EXPECT_EQ(image[12], 60);
  EXPECT_EQ(image[13], 60);
}

TEST_F(Performance, ApplyCanBePressedAgain) {
  openWindow();
  press("applyBtn");
  press("applyBtn");
  EXPECT_EQ(sent().size(), 28U);
  EXPECT_THAT(told(), ElementsAre("122 true", "122 true"));
}

TEST_F(Performance, CloseKeepsTheSettingsAndSendsNothing) {
  openWindow();
  edit();
  press("okBtn");
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(performance().endTag(), 1);
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_THAT(told(), ElementsAre("122 false"));
  EXPECT_TRUE(isSameProfile(editState->selProfile(), edited()));
}

TEST_F(Performance, ClosingAnUntouchedWindowKeepsTheProfile) {
  openWindow();
  press("okBtn");
  EXPECT_TRUE(isStoredAsBefore());
}

TEST_F(Performance, ClosingLimitsTheValuesThatWereShownLimited) {
  editState->edit().xSensArr[0] = editState->edit().ySensArr[0] = 1;
  editState->edit().xSensArr[3] = editState->edit().ySensArr[3] = 300;
  openWindow();
  EXPECT_EQ(textOf(field(1)), "100");
  press("okBtn");
  EXPECT_THAT(editState->selProfile().xSensArr, ElementsAre(2, 20, 30, 164, 50));
  EXPECT_THAT(editState->selProfile().ySensArr, ElementsAre(2, 20, 30, 164, 50));
}

TEST_F(Performance, CancelSendsTheWorkingCopyAgainAndTheStoredRate) {
  openWindow();
  edit();
  press("cancelBtn");
  expectCancelled();
}

TEST_F(Performance, CancelAfterApplyLeavesTheLevelsOnTheMouse) {
  openWindow();
  edit();
  press("applyBtn");
  clearTrace();
  press("cancelBtn");
  EXPECT_THAT(told(), ElementsAre("122 true", "122 false"));
  EXPECT_EQ(sent(), both(settingCommands(edited()), rateCommand(1)));
  EXPECT_TRUE(isStoredAsBefore());
  const auto image = mouse().imageReport(mouse().activeSlot());
  EXPECT_EQ(image[4], 4);
  EXPECT_EQ(image[13], 60);
}

TEST_F(Performance, CancelSaysWhatTheMouseKeepsAndLeavesTheProfileToBeApplied) {
  editState->clearNeedSave();
  openWindow();
  edit();
  press("applyBtn");
  EXPECT_EQ(said(), "");
  EXPECT_FALSE(editState->isNeedSave());
  press("cancelBtn");
  EXPECT_EQ(said(),
            "The mouse keeps the DPI settings you tried. Apply gives it the profile's own.");
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_TRUE(isStoredAsBefore());
}

TEST_F(Performance, CancelOfAnUntouchedWindowLeavesNothingToApply) {
  editState->clearNeedSave();
  openWindow();
  press("applyBtn");
  press("rate125Btn");
  press("cancelBtn");
  EXPECT_EQ(said(), "");
  EXPECT_FALSE(editState->isNeedSave());
}

TEST_F(Performance, ACancelThatTheMouseDidNotTakeSaysThat) {
  editState->clearNeedSave();
  openWindow();
  edit();
  mouse().detach();
  press("cancelBtn");
  EXPECT_EQ(said(), "The mouse did not take all of it. Try again.");
  EXPECT_FALSE(editState->isNeedSave());
  mouse().attach();
  openWindow();
  edit();
  press("applyBtn");
  mouse().detach();
  press("cancelBtn");
  EXPECT_EQ(said(), "The mouse did not take all of it. Try again.");
  EXPECT_TRUE(editState->isNeedSave()) << "the trial before is still there";
}

TEST_F(Performance, ClosingTheWindowInAnotherWayCancels) {
  openWindow();
  edit();
  host().close();
  expectCancelled();
}

TEST_F(Performance, EscapeCancels) {
  openWindow();
  edit();
  QTest::keyClick(&host(), Qt::Key_Escape);
  process();
  expectCancelled();
}

TEST_F(Performance, AWindowThatEndedCancelsNoMore) {
  openWindow();
  press("okBtn");
  host().close();
  performance().windowCloses();
  EXPECT_THAT(told(), ElementsAre("122 false"));
  EXPECT_THAT(trace(), IsEmpty());
  EXPECT_EQ(performance().endTag(), 1);
}

TEST_F(Performance, WhatWasTypedLastCountsWhenAButtonIsPressed) {
  openWindow();
  type(field(2), "3000");
  control("applyBtn").click();
  EXPECT_EQ(sent().at(2), "SET 0300 0 c40f00093c000000");
  EXPECT_EQ(sent().at(3), "SET 0300 0 c40f00083c000000");
  type(field(2), "4000");
  control("okBtn").click();
  EXPECT_EQ(editState->selProfile().xSensArr[1], 80U);
  EXPECT_EQ(editState->selProfile().ySensArr[1], 80U);
}

TEST_F(Performance, EveryOpeningStartsFromTheStoredProfile) {
  openWindow();
  edit();
  press("cancelBtn");
  openWindow();
  EXPECT_TRUE(isSameProfile(editState->currSetProfile(), m_stored));
  EXPECT_EQ(textOf(field(2)), "1000");
  EXPECT_EQ(lift().value(), 12);
  EXPECT_TRUE(control("rate250Btn").Checked());
}

TEST_F(Performance, WithoutAMouseItStillEdits) {
  mouse().detach();
  openWindow();
  edit();
  press("applyBtn");
  press("okBtn");
  EXPECT_TRUE(isSameProfile(editState->selProfile(), edited()));
}
