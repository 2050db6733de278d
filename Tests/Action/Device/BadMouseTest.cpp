#include <algorithm>

#include <gmock/gmock.h>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/DeviceSettings.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Tests/Support/ActionTest.h"
#include "Tests/Support/SlotAsRead.h"

// Mice that misbehave.

namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = MouseScenario::Kind;

class BadMouse : public ActionTest {
 protected:
  BadMouse() { beginProgram(); }

  void misbehave(Kind kind) { mouse().setScenario({.kind = kind}); }

  // Every operation of the program on a mouse.
  static void doEverything() {
    for (int slot = 0; slot < 10; ++slot) {
      static_cast<void>(NerinAction::loadSlot(slot));
      for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
        NerinAction::getBtnCaption(editState->selProfile().btnInfo[index], index);
        static_cast<void>(
            NerinAction::setBtnInfoToDevicePro(index, editState->selProfile().btnInfo[index]));
        static_cast<void>(NerinAction::setBtnInfoToDevicePro(index, macroButton(1)));
      }
      static_cast<void>(NerinAction::applySlot());
      editState->currSetProfile() = editState->selProfile();
      static_cast<void>(NerinAction::setSettingToDevice());
      static_cast<void>(NerinAction::setRateToDevice(editState->selProfile().poRate));
      static_cast<void>(NerinAction::setModelToDevice());
      static_cast<void>(NerinAction::setColorToDevice());
      static_cast<void>(NerinAction::setColorToDevice2());
      static_cast<void>(
          NerinAction::setProfileIndexToDevice(NerinAction::getProfileIndexByDevice().value));
      static_cast<void>(NerinAction::resetDevPro());
    }
  }

  void expectSoundState() const {
    EXPECT_LT(library().currFWProfileIndex(), 10);
    EXPECT_GE(library().currFWProfileIndex(), 0);
    EXPECT_THAT(supportNames(), testing::Contains("Profiles"));
    EXPECT_EQ(namesIn(libraryFolder()).size(), library().getProfileCount());
    std::size_t shown = 0;
    for (const auto& macro : NerinAction::macroStore->macroListArrs) {
      shown += macro->isNoDisplay() ? 0 : 1;
      EXPECT_LE(macro->keyInfoArr().size(), 2000U);
    }
    EXPECT_LE(shown, limits::macros);
  }
};

TEST_F(BadMouse, ThatAnswersShortDoesNoHarm) {
  misbehave(Kind::AnswersShort);
  doEverything();
  expectSoundState();
}

TEST_F(BadMouse, ThatAnswersShortHasNoNames) {
  misbehave(Kind::AnswersShort);
  editState->edit().liftHeight = 9;
  EXPECT_FALSE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(editState->selProfile().liftHeight, 9U);
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 0);
}

TEST_F(BadMouse, ThatAnswersRandomBytesDoesNoHarm) {
  misbehave(Kind::AnswersRandom);
  for (int round = 0; round < 5; ++round) {
    doEverything();
    expectSoundState();
  }
}

TEST_F(BadMouse, ThatAnswersRandomBytesIsDecodedIntoSoundRecords) {
  misbehave(Kind::AnswersRandom);
  for (int round = 0; round < 2000; ++round) {
    static_cast<void>(NerinAction::getFWProfileDataPro(static_cast<std::uint8_t>(round)));
    EXPECT_GE(editState->currFWProfile().dpiLevel, 1U);
    EXPECT_LE(editState->currFWProfile().dpiLevel, 5U);
    EXPECT_LE(editState->currFWProfile().currSelectDPI, 15U);
    EXPECT_LE(editState->currFWProfile().modeType, 1U);
    EXPECT_LE(editState->currFWProfile().poRate, 3U);
    EXPECT_LE(editState->currFWProfile().liftHeight, 31U);
    EXPECT_LE(NerinAction::getProfileIndexByDevice().value, 15);
  }
}

TEST_F(BadMouse, ThatHoldsGarbageDoesNoHarm) {
  misbehave(Kind::HoldsGarbage);
  doEverything();
  expectSoundState();
}

TEST_F(BadMouse, ThatHoldsGarbageIsReadAsStated) {
  misbehave(Kind::HoldsGarbage);
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 15);
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(library().currFWProfileName(), std::string(65, 'A'));
  EXPECT_EQ(editState->selProfile().dpiLevel, 5U);
  EXPECT_EQ(editState->selProfile().currSelectDPI, 15U);
  EXPECT_EQ(editState->selProfile().poRate, 0U);
  EXPECT_EQ(editState->selProfile().xSensArr[4], 255U);
  EXPECT_EQ(editState->selProfile().btnInfo[3].btnType, 2U);
  EXPECT_NE(editState->selProfile().btnInfo[15].MacroID, 0U);
  // 1999 events and the start of a delay record.
  const auto macro = NerinAction::getMacroById(
      static_cast<std::int32_t>(editState->selProfile().btnInfo[3].MacroID));
  ASSERT_NE(macro, nullptr);
  EXPECT_THAT(macro->keyInfoArr(), SizeIs(1999));
  EXPECT_TRUE(macro->isNoDisplay());
}

TEST_F(BadMouse, ThatIsAbsentLeavesTheStateAsItWas) {
  editState->edit().liftHeight = 9;
  library().setCurrFWProfileName("Kept");
  misbehave(Kind::Absent);
  EXPECT_FALSE(NerinAction::checkListenDev());
  EXPECT_FALSE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(editState->selProfile().liftHeight, 9U);
  EXPECT_EQ(library().currFWProfileName(), "Kept");
  EXPECT_EQ(NerinAction::getProfileIndexByDevice().value, 0);
  doEverything();
  expectSoundState();
  EXPECT_THAT(mouse().transcript(), IsEmpty());
}

TEST_F(BadMouse, ThatIsAbsentDoesNotKeepAnApplyFromTheLibrary) {
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  addMacro(1, "m", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  clearTrace();
  EXPECT_TRUE(NerinAction::applySlot().isDone());
  const auto pauses = std::count(trace().begin(), trace().end(), "SLEEP 30");
  misbehave(Kind::Absent);
  clearTrace();
  const Outcome outcome = NerinAction::applySlot();
  ASSERT_TRUE(outcome.failure());
  EXPECT_EQ(outcome.failure()->step, SlotStep::WriteName);
  EXPECT_EQ(outcome.failure()->error, std::errc::no_such_device);
  EXPECT_EQ(std::count(trace().begin(), trace().end(), "SLEEP 30"), pauses);
  EXPECT_THAT(posts(), SizeIs(2));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Profile#3.pro"));
}

TEST_F(BadMouse, ThatIsUnpluggedAnywhereInAnApplyLosesNothing) {
  addMacro(1, "one", {{49, 0, 0}});
  addMacro(2, "two", {{36, 0, 5}});
  std::size_t transfers = 1;
  for (std::uint32_t after = 0; after <= transfers; ++after) {
    SCOPED_TRACE(after);
    mouse().attach();
    mouse().setScenario({.kind = Kind::Healthy});
    EXPECT_TRUE(NerinAction::loadSlot(2).value);
    editState->edit().btnInfo[3] = macroButton(1);
    editState->edit().btnInfo[15] = macroButton(2, 2, 5);
    editState->edit().liftHeight = 1 + after;
    const _Nerin_PROFILE edited = editState->selProfile();
    const std::string image = hexOf(mouse().imageReport(2));
    const std::size_t told = posts().size();
    clearTrace();
    mouse().clearTranscript();
    mouse().setScenario({.kind = Kind::UnpluggedAfter, .transfers = after});
    EXPECT_EQ(NerinAction::applySlot().isDone(), after == 8);
    transfers = sent().size();
    EXPECT_EQ(transfers, 8U);
    EXPECT_EQ(mouse().transcript().size(), std::min<std::size_t>(after, transfers));
    EXPECT_EQ(mouse().isAttached(), after > transfers);
    EXPECT_THAT(mouse().faults(), IsEmpty());
    // The library has the edit in any case; the mouse has the old image or the new one.
    EXPECT_EQ(differenceOf(editState->selProfile(), edited), "");
    EXPECT_EQ(differenceOf(library().getProfileByName("Profile#3")->profileData(), edited), "");
    EXPECT_EQ(posts().size(), told + 1);
    const bool isWritten = after >= 7;
    EXPECT_EQ(hexOf(mouse().imageReport(2)) == image, !isWritten);
    if (isWritten) {
      EXPECT_EQ(mouse().imageReport(2)[5], 0x20 | (1 + after));
    }
  }
}

TEST_F(BadMouse, ThatIsUnpluggedAnywhereInAReadLeavesASoundRecord) {
  addMacro(1, "one", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  library().setCurrFWProfileName("Game");
  EXPECT_TRUE(NerinAction::writeSlot(2).isDone());
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  const _Nerin_PROFILE whole = editState->selProfile();
  for (std::uint32_t after = 0; after <= 7; ++after) {
    SCOPED_TRACE(after);
    mouse().attach();
    mouse().setScenario({.kind = Kind::UnpluggedAfter, .transfers = after});
    editState->edit() = whole;
    editState->edit().liftHeight = 30;
    const bool hasName = NerinAction::loadSlot(2).value;
    EXPECT_EQ(hasName, after >= 2);
    if (!hasName) {
      EXPECT_EQ(editState->selProfile().liftHeight, 30U) << "the edited profile stays";
    } else if (after < 4) {
      // Without an answer, the image is all zeros.
      EXPECT_EQ(editState->selProfile().liftHeight, 0U);
      EXPECT_EQ(editState->selProfile().dpiLevel, 1U);
    } else if (after < 6) {
      // Without the macro, the button keeps its values from the image.
      EXPECT_EQ(editState->selProfile().btnInfo[3].btnType, 2U);
      EXPECT_EQ(editState->selProfile().btnInfo[3].MacroID, 0U);
      EXPECT_EQ(editState->selProfile().btnInfo[3].KeyBit[0], 1U);
    } else {
      EXPECT_EQ(differenceOf(editState->selProfile(), whole), "");
    }
  }
}

TEST_F(BadMouse, ThatComesBackIsTheSameMouse) {
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  mouse().detach();
  EXPECT_FALSE(NerinAction::loadSlot(2).value);
  mouse().attach();
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(library().currFWProfileName(), "Profile#3");
}

}  // namespace
