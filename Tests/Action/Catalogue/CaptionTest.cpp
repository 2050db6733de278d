#include <algorithm>
#include <filesystem>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Record/Records.h"
#include "Tests/Support/ActionTest.h"

// The captions of the buttons on the screen.

namespace {

class Caption : public ActionTest {
 protected:
  Caption() { beginProgram(); }

  static std::string captionOf(const _BTN_INFO& info, int index = 4) {
    return NerinAction::getBtnCaption(info, index);
  }
  static _BTN_INFO launchButton(const std::string& path) {
    _BTN_INFO info = button(15, {}, ButtonTypeLaunch);
    setText(info.app_path, path);
    return info;
  }
};

TEST_F(Caption, OfAMacroIsItsName) {
  addMacro(5, "Combo");
  EXPECT_EQ(captionOf(macroButton(5)), "Combo");
}

TEST_F(Caption, OfAMacroWithAGeneratedNameIsATextOfItsOwn) {
  addMacro(5, "dmr_fw_macro_tag_0_3");
  EXPECT_EQ(captionOf(macroButton(5)), "Macro Key");
}

TEST_F(Caption, OfAMacroThatIsGoneIsEmpty) {
  EXPECT_EQ(captionOf(macroButton(5)), "");
}

TEST_F(Caption, OfAKeyIsTheNameOfTheKey) {
  EXPECT_EQ(captionOf(button(2, {49})), "Space");
  EXPECT_EQ(captionOf(button(2, {0})), "A");
  EXPECT_EQ(captionOf(button(2, {9999})), "");
}

TEST_F(Caption, OfAMouseFunctionIsThatOfItsBytes) {
  _BTN_INFO info = button(1, {6});
  info.FuncID = 1;
  EXPECT_EQ(captionOf(info), "Scroll Up");
}

TEST_F(Caption, OfAMouseFunctionWithUnknownBytesIsThatOfItsId) {
  _BTN_INFO info = button(1, {6, 9});
  info.FuncID = 3;
  EXPECT_EQ(captionOf(info), "Right Click");
  info.FuncID = 0x77;
  EXPECT_EQ(captionOf(info), "");
}

TEST_F(Caption, OfTheSpecialFunctionsIsTheirTitle) {
  _BTN_INFO info = button(1, {241});
  EXPECT_EQ(captionOf(info), "Control + Right Arrow");
  info.KeyBit[0] = 242;
  EXPECT_EQ(captionOf(info), "Control + Left Arrow");
}

TEST_F(Caption, OfADpiFunctionIsThatOfItsId) {
  _BTN_INFO info = button(21, {64, 64}, ButtonTypeSensitivity);
  info.FuncID = 5;
  EXPECT_EQ(captionOf(info), "DPI Level Cycle");
  info.FuncID = 6;
  EXPECT_EQ(captionOf(info), "");
}

TEST_F(Caption, OfAProgramIsItsFileNameWithoutExtension) {
  library().setCurrFWProfileIndex(3);
  EXPECT_TRUE(library().setLaunchPath("/usr/bin/other", 3, 4));
  EXPECT_EQ(captionOf(launchButton("/opt/My Game/game.x86.app")), "game.x86");
  EXPECT_EQ(captionOf(launchButton("relative.app")), "relative");
}

TEST_F(Caption, OfAProgramWithoutAPathIsThatOfThePreferences) {
  library().setCurrFWProfileIndex(3);
  EXPECT_TRUE(library().setLaunchPath("/usr/bin/other.sh", 3, 4));
  EXPECT_TRUE(library().setLaunchPath("/usr/bin/wrong", 4, 4));
  EXPECT_EQ(captionOf(launchButton("")), "other");
}

TEST_F(Caption, OfAProgramThatNothingNamesIsTheKindOfAssignment) {
  EXPECT_EQ(captionOf(launchButton("")), "Launch Program");
}

TEST_F(Caption, OfADisabledButtonSaysSo) {
  EXPECT_EQ(captionOf(button(255, {}, ButtonTypeDisabled)), "Disable");
}

TEST_F(Caption, OfAnyOtherKindIsEmpty) {
  for (const std::uint32_t type : {0U, 1U, 7U, 0xFFFFFFFFU}) {
    EXPECT_EQ(captionOf(button(1, {1}, type)), "") << type;
  }
}

TEST_F(Caption, OfAPathWithoutItsNulIsReadInsideItsField) {
  _BTN_INFO info = button(15, {}, ButtonTypeLaunch);
  std::fill(std::begin(info.app_path), std::end(info.app_path), 'x');
  EXPECT_EQ(captionOf(info), std::string(255, 'x'));
}

TEST_F(Caption, IsEmptyWithoutCatalogues) {
  setResourceFolder(home());
  std::filesystem::remove_all(supportFolder());
  endProgram();
  beginProgram();
  EXPECT_EQ(captionOf(button(255, {}, ButtonTypeDisabled)), "");
  EXPECT_EQ(captionOf(button(1, {1})), "");
  EXPECT_EQ(captionOf(launchButton("")), "");
}

TEST_F(Caption, OfEveryDeliveredButtonIsThere) {
  for (int slot = 0; slot < 10; ++slot) {
    library().setCurrFWProfileIndex(slot);
    for (int index = 0; index < 16; ++index) {
      EXPECT_NE(captionOf(library().getDefBtnInfoByIndex(index), index), "") << index;
    }
  }
}

}  // namespace
