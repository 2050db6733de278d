// The colors of the four zones.

#include "Tests/View/Lights/LightTest.h"

#include <gmock/gmock.h>

#include "Kit/Widgets/LXNumberTextField.h"
#include "Kit/Widgets/LXProgressBar.h"

using testing::IsEmpty;
using testing::SizeIs;

namespace {

class Light : public LightTest {};

}  // namespace

TEST_F(Light, FillingCopiesTheProfileAndBeginsAHistoryOfBlackAndTheColor) {
  open();
  EXPECT_TRUE(light().isOverFill());
  expectColor(editState->currSetProfile().lightColorArr[2], 70, 80, 90);
  EXPECT_EQ(light().historyColorDir().at("bColor2"), LightColor());
  EXPECT_EQ(light().historyColorDir().at("aColor2"), stored(70, 80, 90));
  EXPECT_EQ(light().currSelectedIndex(), 0);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Light, AColorBeforeAnyZoneChangesTheSwatchesOnly) {
  open();
  light().onChangeColorPro({1, 0, 0});
  EXPECT_EQ(light().afterColor(), (LightColor{1, 0, 0}));
  for (int i = 0; i < 4; ++i) {
    EXPECT_EQ(editState->currSetProfile().lightColorArr[i].cR,
              editState->selProfile().lightColorArr[i].cR);
  }
}

TEST_F(Light, AChosenZoneTakesTheColorWithItsRounding) {
  open();
  press("reProfileLightBtn");
  EXPECT_EQ(light().currSelectedIndex(), 2);
  EXPECT_EQ(light().beforeColor(), LightColor());
  EXPECT_EQ(light().afterColor(), stored(40, 50, 60));
  light().onChangeColorPro({1.0, 0.5, 0.0});
  expectColor(editState->currSetProfile().lightColorArr[1], 255, 127, 0);
  EXPECT_EQ(light().beforeColor(), stored(40, 50, 60));
  EXPECT_EQ(light().historyColorDir().at("aColor1"), (LightColor{1.0, 0.5, 0.0}));
  expectColor(editState->selProfile().lightColorArr[1], 40, 50, 60);
  EXPECT_THAT(sent(), IsEmpty());
}

TEST_F(Light, TheLastZoneKeepsItsHistoryAsFilled) {
  open();
  press("leftLightBtn");
  light().onChangeColorPro({1, 0, 0});
  light().onChangeColorPro({0, 1, 0});
  expectColor(editState->currSetProfile().lightColorArr[3], 0, 255, 0);
  press("midLightBtn");
  press("leftLightBtn");
  EXPECT_EQ(light().beforeColor(), LightColor());
  EXPECT_EQ(light().afterColor(), stored(100, 110, 120));
}

TEST_F(Light, TheSameZoneCanBeChosenAgainByItsMarker) {
  open();
  press("logoLightBtn");
  EXPECT_TRUE(hasLine("logoImgView"));
  press("logoLightTagBtn");
  EXPECT_EQ(light().currSelectedIndex(), 3);
  press("midLightTagBtn");
  EXPECT_EQ(light().currSelectedIndex(), 1);
  EXPECT_FALSE(hasLine("logoImgView"));
  EXPECT_TRUE(hasLine("midImgView"));
  press("logoLightBtn");
  EXPECT_EQ(light().currSelectedIndex(), 3);
}

TEST_F(Light, HoveringShowsTheLineOfAZoneThatIsNotChosen) {
  open();
  light().setLightSelImage(control("leftLightTagBtn"), true);
  EXPECT_EQ(light().currShowIndex(), 4);
  EXPECT_TRUE(hasLine("leftImgView"));
  light().setLightSelImage(control("leftLightTagBtn"), false);
  EXPECT_FALSE(hasLine("leftImgView"));
  press("leftLightBtn");
  light().setLightSelImage(control("leftLightBtn"), false);
  EXPECT_TRUE(hasLine("leftImgView"));
}

TEST_F(Light, ApplySendsTheColorsAndEndsTheChoice) {
  open();
  press("midLightBtn");
  light().onChangeColorPro({1, 1, 1});
  press("applyBtn");
  // Three bytes for each of the four zones, and the command that activates them.
  ASSERT_THAT(sent(), SizeIs(13));
  EXPECT_EQ(sent().front(), "SET 0300 0 c40f0027ff000000");
  EXPECT_EQ(sent()[11], "SET 0300 0 c40f003578000000");
  EXPECT_EQ(sent().back(), "SET 0300 0 c403030300000000");
  EXPECT_TRUE(isOpen());
  EXPECT_EQ(light().currSelectedIndex(), 0);
  EXPECT_FALSE(hasLine("midImgView"));
  EXPECT_FALSE(editState->isNeedSave());
  expectColor(editState->selProfile().lightColorArr[0], 10, 20, 30);
  light().onChangeColorPro({0, 0, 0});
  expectColor(editState->currSetProfile().lightColorArr[0], 255, 255, 255);
  press("midLightBtn");
  EXPECT_EQ(light().currSelectedIndex(), 1);
}

TEST_F(Light, CancelAfterApplyGivesTheMouseTheProfilesColors) {
  open();
  press("applyBtn");
  const auto unchanged = sent();
  clearTrace();
  press("midLightBtn");
  light().onChangeColorPro({1, 1, 1});
  press("applyBtn");
  EXPECT_NE(sent(), unchanged);
  clearTrace();
  press("cancelBtn");
  EXPECT_EQ(sent(), unchanged);
  EXPECT_FALSE(isOpen());
  EXPECT_EQ(light().endTag(), 0);
  EXPECT_FALSE(editState->isNeedSave());
  expectColor(editState->currSetProfile().lightColorArr[0], 10, 20, 30);
}

TEST_F(Light, EscapeIsCancel) {
  open();
  press("midLightBtn");
  light().onChangeColorPro({1, 1, 1});
  host().close();
  EXPECT_THAT(sent(), testing::Not(IsEmpty()));
  expectColor(editState->currSetProfile().lightColorArr[0], 10, 20, 30);
  expectColor(editState->selProfile().lightColorArr[0], 10, 20, 30);
}

TEST_F(Light, OkKeepsTheColorsAndSendsNothing) {
  open();
  press("midLightBtn");
  light().onChangeColorPro({1, 1, 1});
  press("okBtn");
  EXPECT_THAT(sent(), IsEmpty());
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_EQ(light().endTag(), 1);
  EXPECT_FALSE(light().isOverFill());
  expectColor(editState->selProfile().lightColorArr[0], 255, 255, 255);
  light().onChangeColorPro({0, 0, 0});
  expectColor(editState->selProfile().lightColorArr[0], 255, 255, 255);
}

TEST_F(Light, TypedNumbersAndCodesAreColors) {
  open();
  press("midLightBtn");
  auto& red = part<LXNumberTextField>("redTxt");
  type(red, "200");
  hitKey(red, Qt::Key_Return);
  expectColor(editState->currSetProfile().lightColorArr[0], 200, 20, 30);
  auto& code = part<LXTextField>("hexTxt");
  code.setFocus();
  code.selectAll();
  code.insert("0A0b0C");
  hitKey(code, Qt::Key_Return);
  expectColor(editState->currSetProfile().lightColorArr[0], 10, 11, 12);
  code.selectAll();
  code.insert("12");
  hitKey(code, Qt::Key_Return);
  EXPECT_EQ(textOf(code), "0A0B0C");
}

TEST_F(Light, TheColorBarGivesItsColors) {
  open();
  press("midLightBtn");
  auto& bar = part<LXProgressBar>("colorBarView");
  bar.setFocus();
  hitKey(bar, Qt::Key_End);
  expectColor(editState->currSetProfile().lightColorArr[0], 255, 255, 255);
  hitKey(bar, Qt::Key_Home);
  expectColor(editState->currSetProfile().lightColorArr[0], 0, 0, 0);
}

TEST_F(Light, TheFieldAndTheBrightnessPickWithKeys) {
  open();
  press("midLightBtn");
  light().onChangeColorPro({0, 0, 0});
  auto& field = part<HueSaturationView>("colorFieldView");
  hitKey(field, Qt::Key_Up);
  const _LightColorInfo picked = editState->currSetProfile().lightColorArr[0];
  EXPECT_GT(picked.cR + picked.cG + picked.cB, 0U);
  auto& brightness = part<BrightnessView>("brightnessView");
  const auto before = editState->currSetProfile().lightColorArr[0].cR;
  hitKey(brightness, Qt::Key_Left);
  EXPECT_LT(editState->currSetProfile().lightColorArr[0].cR, before);
}
