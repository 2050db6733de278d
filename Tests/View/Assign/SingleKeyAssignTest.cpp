// Assigning a mouse function to a button, and its difference from a key.

#include <gmock/gmock.h>

#include "Kit/Widgets/LXMenulist.h"
#include "Tests/View/Assign/SingleKeyTest.h"

using testing::ElementsAre;

namespace {

class SingleKeyAssign : public SingleKeyTest {};

}  // namespace

TEST_F(SingleKeyAssign, ItsControlsHaveTheirTagsAndTexts) {
  openPanel(3, full(1, 1, 1));
  EXPECT_EQ(in("selBtn").tag(), 292);
  EXPECT_EQ(in("selBtn").toolTip(), "");
  EXPECT_EQ(in("selBtn").accessibleName(), "Mouse function");
  EXPECT_EQ(in("mouseFunChk").toolTip(), "Assign mouse function");
  EXPECT_EQ(in("keybordChk").toolTip(), "Assign keyboard function");
  EXPECT_TRUE(in("mouseFunChk").isStepItem());
  EXPECT_TRUE(in("keybordChk").isStepItem());
  EXPECT_TRUE(display("newKeyEdt").isReadOnly());
  EXPECT_TRUE(display("oldKeyEdt").isReadOnly());
  EXPECT_EQ(display("newKeyEdt").accessibleName(), "Keyboard key");
  EXPECT_EQ(display("oldKeyEdt").accessibleName(), "Current");
}

TEST_F(SingleKeyAssign, TheListHasTheMouseFunctions) {
  openPanel(3, full(1, 1, 1));
  EXPECT_THAT(
      titlesOf(*sub().singleList()),
      ElementsAre("Left Click", "Right Click", "Middle Click", "Button 4", "Button 5", "Scroll Up",
                  "Scroll Down", "Control + Left Arrow", "Control + Right Arrow"));
}

TEST_F(SingleKeyAssign, AMouseFunctionOpensWithItsTitleAndTheListInReach) {
  openPanel(3, full(1, 7, 1));
  EXPECT_EQ(sub().choice(), 1);
  EXPECT_TRUE(in("mouseFunChk").Checked());
  EXPECT_EQ(in("selBtn").title(), "Middle Click");
  EXPECT_EQ(sub().selKeyCode(), -1);
  EXPECT_TRUE(in("selBtn").isEnabled());
  EXPECT_FALSE(display("newKeyEdt").isEnabled());
  EXPECT_FALSE(display("oldKeyEdt").isEnabled());
  EXPECT_FALSE(sub().hasFocus());
}

TEST_F(SingleKeyAssign, AKeyOpensWithTheCaptureOnTheKeyboard) {
  openPanel(3, key(40));
  EXPECT_EQ(sub().choice(), 2);
  EXPECT_TRUE(in("keybordChk").Checked());
  EXPECT_EQ(sub().selKeyCode(), 40);
  EXPECT_EQ(in("selBtn").title(), "");
  EXPECT_FALSE(in("selBtn").isEnabled());
  EXPECT_TRUE(display("newKeyEdt").isEnabled());
  EXPECT_TRUE(display("oldKeyEdt").isEnabled());
  EXPECT_TRUE(sub().hasFocus());
  EXPECT_EQ(newKey(), "");
  EXPECT_EQ(current(), "K");
}

TEST_F(SingleKeyAssign, TheMarkTellsAKeyFromAMouseFunctionAndZeroIsAKey) {
  for (const std::uint32_t mark : {0U, 2U, 3U}) {
    openPanel(3, full(1, 1, mark));
    EXPECT_EQ(sub().choice(), 2) << mark;
    EXPECT_EQ(sub().selKeyCode(), 11) << mark;
  }
  openPanel(3, full(2, 2, 1));
  EXPECT_EQ(sub().choice(), 1);
  EXPECT_EQ(sub().selKeyCode(), -1);
}

TEST_F(SingleKeyAssign, OtherCodesOpenWithNoFunctionChosen) {
  for (const std::uint32_t code : {0U, 4U, 6U, 15U, 255U}) {
    openPanel(3, full(code, 1, 2));
    EXPECT_EQ(sub().choice(), 1) << code;
    EXPECT_EQ(sub().selKeyCode(), -1) << code;
    EXPECT_EQ(in("selBtn").title(), "") << code;
  }
}

TEST_F(SingleKeyAssign, AnUnknownFunctionHasNoTitle) {
  openPanel(3, full(1, 77, 1));
  EXPECT_EQ(in("selBtn").title(), "");
}

TEST_F(SingleKeyAssign, ShowsWhatTheButtonDoesNowUnlessItIsDisabled) {
  openPanel(3, full(1, 7, 1));
  EXPECT_EQ(current(), "Middle Click");
  openPanel(3, button(255, {}, 6));
  chooseType("Mouse or Key Function");
  EXPECT_EQ(current(), "");
  addMacro(5, "Five");
  openPanel(3, macroButton(5));
  chooseType("Mouse or Key Function");
  EXPECT_EQ(current(), "Five");
}

TEST_F(SingleKeyAssign, EveryFunctionOfTheListIsStoredWithItsFields) {
  struct Row {
    const char* title;
    std::uint32_t id;
    std::uint32_t bit;
    const char* entry;
  };
  for (const Row& row : {Row{"Left Click", 1, 1, "0101000000"},
                         {"Right Click", 3, 2, "0102000000"},
                         {"Middle Click", 7, 3, "0103000000"},
                         {"Button 4", 8, 4, "0104000000"},
                         {"Button 5", 9, 5, "0105000000"},
                         {"Scroll Up", 10, 6, "0106000000"},
                         {"Scroll Down", 11, 7, "0107000000"},
                         {"Control + Left Arrow", 5, 0xF2, "0208500000"},
                         {"Control + Right Arrow", 6, 0xF1, "02084f0000"}}) {
    openPanel(3, full(4, 9, 2));
    chooseIn(in("selBtn"), row.title);
    EXPECT_EQ(in("selBtn").title(), row.title);
    clearTrace();
    press("applyBtn");
    EXPECT_THAT(sent(), ElementsAre(buttonCommand(3, row.entry)));
    press("okBtn");
    _BTN_INFO expected = full(1, row.id, 1);
    const std::uint32_t bits[] = {row.bit, 0, 0, 0};
    std::copy(std::begin(bits), std::end(bits), expected.KeyBit);
    EXPECT_TRUE(isSame(stored(), expected)) << row.title;
  }
}

TEST_F(SingleKeyAssign, WithoutAChosenFunctionTheFieldsStay) {
  for (const std::uint32_t code : {0U, 4U, 13U}) {
    openPanel(3, full(code, 9, 2));
    press("okBtn");
    EXPECT_TRUE(isSame(stored(), full(code, 9, 1))) << code;
  }
}

TEST_F(SingleKeyAssign, AnApplyOfAnotherKindLeavesTheCaptionAlone) {
  openPanel(3, full(1, 7, 1));
  chooseType("Disable");
  press("applyBtn");
  EXPECT_EQ(current(), "Middle Click");
  chooseType("Mouse or Key Function");
  chooseIn(in("selBtn"), "Scroll Up");
  EXPECT_EQ(current(), "Middle Click");
  press("applyBtn");
  EXPECT_EQ(current(), "Scroll Up");
}
