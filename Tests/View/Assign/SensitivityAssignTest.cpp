// Assigning a DPI function to a button.

#include <QLabel>
#include <QTest>
#include <cstring>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Kit/Widgets/LXImageView.h"
#include "Kit/Widgets/LXMenulist.h"
#include "Kit/Widgets/LXProgressBar.h"
#include "Kit/Widgets/LXTextField.h"
#include "Tests/Support/EditorTest.h"
#include "View/Assign/SubSensitivityView.h"
#include "View/Assign/SubSensitivityViewSub.h"
#include "View/Dpi/LevelSettingView.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/ModalWindow.h"

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class SensitivityAssign : public AssignTest {
 protected:
  // Function 1 sets a value, the others use the levels.
  static _BTN_INFO dpi(std::uint32_t id, std::uint32_t x = 64, std::uint32_t y = 64) {
    const std::uint32_t codes[] = {0, 16, 9, 10, 11, 21};
    _BTN_INFO info = button(codes[id], {x, y, 13, 14}, 4);
    info.FuncID = id;
    info.MacroID = 99;
    setText(info.app_path, "/opt/tool.app");
    return info;
  }
  SubSensitivityView& sub() { return part<SubSensitivityView>("sensitivityView"); }
  SubSensitivityViewSub& editor() { return part<SubSensitivityViewSub>("subView"); }
  DpiSliderView& slider() { return editor().sliderView(); }
  LXButton& function() { return partOf<LXButton>(sub(), "selBtn"); }
  LXButton& levelsButton() { return partOf<LXButton>(sub(), "levelSettingBtn"); }
  LXButton& box() { return partOf<LXButton>(editor(), "enableXYChk"); }
  void chooseFunction(const char* title) { chooseIn(function(), title); }
  void move(const char* bar, int key = Qt::Key_Right) {
    hitKey(partOf<LXProgressBar>(slider(), bar), key);
  }
  static void pressIn(LevelSettingView& levels, const char* name) {
    clickThroughWindow(partOf<LXButton>(levels, name));
  }
};

struct Row {
  std::uint32_t id;
  bool hasEditor;
  bool hasLevels;
  const char* title;
  const char* entry;
};

constexpr Row rows[] = {{1, true, false, "Set DPI", "1040400d0e"},
                        {2, false, true, "DPI Level Up", "0940400d0e"},
                        {3, false, true, "DPI Level Down", "0a40400d0e"},
                        {4, false, false, "Show DPI", "0b40400d0e"},
                        {5, false, true, "DPI Level Cycle", "1540400d0e"}};

}  // namespace

TEST_F(SensitivityAssign, ItsControlsHaveTheirTagsAndTexts) {
  openPanel(3, dpi(1));
  EXPECT_EQ(function().tag(), 300);
  EXPECT_EQ(function().accessibleName(), "DPI function");
  EXPECT_EQ(levelsButton().tag(), 301);
  EXPECT_FALSE(levelsButton().accessibleName().isEmpty());
  EXPECT_EQ(box().tag(), 305);
  EXPECT_TRUE(box().isCheckBox());
  EXPECT_EQ(box().toolTip(), "Enable X-Y Axis");
  const auto* label = editor().findChild<LXImageView*>();
  ASSERT_NE(label, nullptr);
  EXPECT_EQ(label->image().pixmap().toImage(),
            pictures::load(QStringLiteral("EnableXYText.png")).pixmap().toImage());
}

TEST_F(SensitivityAssign, TheListHasTheFiveFunctions) {
  openPanel(3, dpi(1));
  std::vector<std::string> titles;
  for (const Row& row : rows) {
    titles.emplace_back(row.title);
  }
  EXPECT_EQ(titlesOf(*sub().senMenuList()), titles);
}

TEST_F(SensitivityAssign, OpensOnTheStoredFunction) {
  for (const Row& row : rows) {
    openPanel(3, dpi(row.id));
    EXPECT_EQ(function().title(), row.title);
    EXPECT_EQ(editor().isVisible(), row.hasEditor) << row.title;
    EXPECT_EQ(levelsButton().isVisible(), row.hasLevels) << row.title;
  }
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(SensitivityAssign, ChoosingAFunctionShowsWhatItNeeds) {
  openPanel(3, dpi(4));
  for (const Row& row : rows) {
    chooseFunction(row.title);
    EXPECT_EQ(function().title(), row.title);
    EXPECT_EQ(editor().isVisible(), row.hasEditor) << row.title;
    EXPECT_EQ(levelsButton().isVisible(), row.hasLevels) << row.title;
  }
}

TEST_F(SensitivityAssign, AFunctionThatTheListDoesNotHaveIsNone) {
  _BTN_INFO other = dpi(1);
  other.FuncID = 77;
  openPanel(3, other);
  EXPECT_EQ(function().title(), "");
  EXPECT_FALSE(editor().isVisible());
  EXPECT_FALSE(levelsButton().isVisible());
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), other));
}

TEST_F(SensitivityAssign, WithoutAFunctionAMacroKeepsItsRepeatMode) {
  _BTN_INFO macro = button(6, {4, 100, 13, 14}, 2);
  macro.FuncID = 6;
  openPanel(3, macro);
  chooseType("DPI Function");
  EXPECT_FALSE(editor().isVisible());
  EXPECT_FALSE(levelsButton().isVisible());
  press("okBtn");
  macro.btnType = 4;
  EXPECT_TRUE(isSame(stored(), macro));
}

TEST_F(SensitivityAssign, EveryFunctionIsTriedAndStored) {
  for (const Row& row : rows) {
    openPanel(3, dpi(1));
    chooseType("Default");
    chooseType("DPI Function");
    chooseFunction(row.title);
    clearTrace();
    press("applyBtn");
    EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, row.entry)));
    press("okBtn");
    EXPECT_TRUE(isSame(stored(), dpi(row.id))) << row.title;
  }
}

TEST_F(SensitivityAssign, TheEditorOpensAt3200WhateverIsStored) {
  const std::pair<std::uint32_t, std::uint32_t> stored[] = {{40, 80}, {50, 50}, {0, 0},
                                                            {2, 163}, {1, 164}, {0xFFFFFFFF, 64}};
  for (const auto& [x, y] : stored) {
    openPanel(3, dpi(1, x, y));
    EXPECT_FALSE(box().Checked()) << x;
    EXPECT_EQ(slider().showType(), 1) << x;
    EXPECT_EQ(slider().dpiValue(), 64U) << x;
    EXPECT_EQ(editor().xValue(), 64U) << x;
    EXPECT_EQ(editor().yValue(), 64U) << x;
    press("okBtn");
    EXPECT_EQ(this->stored().KeyBit[0], 64U) << x;
    EXPECT_EQ(this->stored().KeyBit[1], 64U) << x;
  }
}

TEST_F(SensitivityAssign, ValuesOutOfRangeAreReplacedInThePanelsCopy) {
  openPanel(3, dpi(1, 1, 164));
  EXPECT_EQ(sub().tmpBtnInfo().KeyBit[0], 64U);
  EXPECT_EQ(sub().tmpBtnInfo().KeyBit[1], 64U);
  EXPECT_EQ(stored().KeyBit[0], 1U);
  openPanel(3, dpi(1, 2, 163));
  EXPECT_EQ(sub().tmpBtnInfo().KeyBit[0], 2U);
  EXPECT_EQ(sub().tmpBtnInfo().KeyBit[1], 163U);
}

TEST_F(SensitivityAssign, OneValueIsStoredForBothAxes) {
  openPanel(3, dpi(1));
  move("dpiPro");
  press("applyBtn");
  EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, "1041410d0e")));
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), dpi(1, 65, 65)));
}

TEST_F(SensitivityAssign, WithTheBoxCheckedEachAxisIsStored) {
  openPanel(3, dpi(1));
  clickThroughWindow(box());
  EXPECT_EQ(slider().showType(), 2);
  editor().setXValue(40);
  editor().setYValue(80);
  move("dpiXPro");
  move("dpiYPro", Qt::Key_Left);
  EXPECT_EQ(editor().xValue(), 41U);
  EXPECT_EQ(editor().yValue(), 79U);
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), dpi(1, 41, 79)));
}

TEST_F(SensitivityAssign, TheBoxSwitchesBetweenTheSliders) {
  openPanel(3, dpi(1));
  editor().setXValue(30);
  editor().setYValue(31);
  EXPECT_EQ(slider().dpiValue(), 31U);
  clickThroughWindow(box());
  editor().setXValue(40);
  editor().setYValue(80);
  EXPECT_EQ(slider().dpiXValue(), 40U);
  EXPECT_EQ(slider().dpiYValue(), 80U);
  EXPECT_EQ(slider().dpiValue(), 31U);
  clickThroughWindow(box());
  EXPECT_EQ(slider().showType(), 1);
  EXPECT_EQ(editor().xValue(), 31U);
  EXPECT_EQ(editor().yValue(), 31U);
}

TEST_F(SensitivityAssign, CheckingTheBoxStartsBothAxesFromTheCommonValue) {
  openPanel(3, dpi(1));
  move("dpiPro");
  clickThroughWindow(box());
  EXPECT_EQ(editor().xValue(), 65U);
  EXPECT_EQ(editor().yValue(), 65U);
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), dpi(1, 65, 65)));
  openPanel(3, dpi(1));
  box().setFocus();
  hitKey(box(), Qt::Key_Space);
  EXPECT_EQ(editor().xValue(), 64U);
  EXPECT_EQ(editor().yValue(), 64U);
}

TEST_F(SensitivityAssign, TheEditorItselfStartsAt5000) {
  QWidget parent;
  auto* alone = new SubSensitivityViewSub(&parent);
  alone->construct();
  EXPECT_EQ(alone->sliderView().dpiValue(), 100U);
  EXPECT_EQ(alone->sliderView().dpiXValue(), 100U);
  EXPECT_EQ(alone->sliderView().dpiYValue(), 100U);
  EXPECT_FALSE(alone->isXY());
}

TEST_F(SensitivityAssign, TheLevelsHaveAModalWindowOfTheirOwn) {
  openPanel(3, dpi(2));
  onModal<LevelSettingView>([this](LXNoTitleWindow& window, LevelSettingView& levels) {
    EXPECT_EQ(window.windowModality(), Qt::WindowModal);
    EXPECT_TRUE(window.isCanDrag());
    EXPECT_LE((window.geometry().center() - host().geometry().center()).manhattanLength(), 2);
    clickThroughWindow(control("cancelBtn"));
    EXPECT_TRUE(isOpen());
    pressIn(levels, "cancelBtn");
  });
  clickThroughWindow(levelsButton());
  EXPECT_EQ(modals(), 1);
  EXPECT_TRUE(isOpen());
}

TEST_F(SensitivityAssign, LevelsThatWereKeptSurviveTheCancelOfThePanel) {
  editState->edit().dpiLevel = 3;
  openPanel(3, dpi(2));
  editState->clearNeedSave();
  onModal<LevelSettingView>([](LXNoTitleWindow&, LevelSettingView& levels) {
    hitKey(partOf<LXProgressBar>(levels, "dpiPro"), Qt::Key_End);
    pressIn(levels, "okBtn");
  });
  clickThroughWindow(levelsButton());
  EXPECT_EQ(editState->selProfile().xSensArr[0], 164U);
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_THAT(trace(), IsEmpty());
  press("cancelBtn");
  EXPECT_EQ(editState->selProfile().xSensArr[0], 164U);
  EXPECT_EQ(editState->selProfile().dpiLevel, 3U);
  EXPECT_TRUE(isSame(stored(), dpi(2)));
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(SensitivityAssign, TheWindowOfTheLevelsKeepsTheAssignmentThatIsEdited) {
  openPanel(3, dpi(2));
  chooseFunction("DPI Level Cycle");
  onModal<LevelSettingView>(
      [](LXNoTitleWindow&, LevelSettingView& levels) { pressIn(levels, "okBtn"); });
  clickThroughWindow(levelsButton());
  EXPECT_EQ(function().title(), "DPI Level Cycle");
  press("okBtn");
  EXPECT_TRUE(isSame(stored(), dpi(5)));
}

TEST_F(SensitivityAssign, TheRemovalOfTheMouseEndsTheWindowOfTheLevelsToo) {
  openPanel(3, dpi(2));
  onModal<LevelSettingView>([](LXNoTitleWindow&, LevelSettingView&) {
    LocalNotifications::shared().post(NerinAction::notifyOutPlus);
  });
  clickThroughWindow(levelsButton());
  EXPECT_EQ(modals(), 1);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(panel().endTag(), 0);
  EXPECT_THAT(trace(), IsEmpty());
}

TEST_F(SensitivityAssign, TheWindowOfTheLevelsGoesWithTheWindowUnderIt) {
  openPanel(3, dpi(2));
  onModal<LevelSettingView>([this](LXNoTitleWindow&, LevelSettingView&) {
    LocalNotifications::shared().post(NerinAction::notifyOutPlus);
    destroyHost();
  });
  function().setFocus();
  hitKey(levelsButton(), Qt::Key_Space);
  EXPECT_EQ(modals(), 1);
  EXPECT_FALSE(isOpen());
}

TEST_F(SensitivityAssign, SaysThatNoFunctionIsChosenAndWhatApplyThenDid) {
  const char* text = "No function chosen: nothing changes";
  _BTN_INFO other = dpi(1);
  other.FuncID = 77;
  openPanel(3, other);
  auto& note = partOf<LXTextField>(sub(), "noteTxt");
  ASSERT_TRUE(note.isVisible());
  EXPECT_EQ(textOf(note), text);
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), text);
  chooseFunction("Show DPI");
  EXPECT_FALSE(note.isVisible());
  press("applyBtn");
  EXPECT_EQ(part<QLabel>("statusText").text(), "");
}
