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

TEST_F(BadMouse, ThatAnswersRandomBytesIsNotBelieved) {
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  const _Nerin_PROFILE before = editState->selProfile();
  misbehave(Kind::AnswersRandom);
  for (int round = 0; round < 200; ++round) {
    const auto read = NerinAction::loadSlot(round % 10);
    EXPECT_FALSE(read.value);
    ASSERT_TRUE(read.outcome.failure());
    EXPECT_EQ(read.outcome.failure()->error, std::errc::bad_message);
    EXPECT_LE(NerinAction::getProfileIndexByDevice().value, 15);
  }
  EXPECT_EQ(differenceOf(editState->selProfile(), before), "");
}

TEST_F(BadMouse, ThatIsUncertainOnceIsReadAgain) {
  // The first attempt fails at its second transfer, and the mouse answers properly after that.
  int attempts = 0;
  setOnPause([&] {
    if (++attempts == 1) {
      misbehave(Kind::AnswersShort);
    } else if (attempts == 2) {
      misbehave(Kind::Healthy);
    }
  });
  const auto read = NerinAction::loadSlot(2);
  EXPECT_TRUE(read.value);
  EXPECT_TRUE(read.outcome.isDone());
  EXPECT_EQ(library().currFWProfileName(), "Profile#3");
}

TEST_F(BadMouse, ThatNeverAnswersAsAskedIsAskedThreeTimes) {
  misbehave(Kind::AnswersShort);
  clearTrace();
  EXPECT_FALSE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(std::count_if(trace().begin(), trace().end(),
                          [](const std::string& line) { return line.starts_with("GET"); }),
            3);
}

TEST_F(BadMouse, ThatIsGoneIsNotAskedAgain) {
  misbehave(Kind::Absent);
  clearTrace();
  EXPECT_FALSE(NerinAction::loadSlot(2).value);
  EXPECT_EQ(trace().size(), 1U);
}

TEST_F(BadMouse, ThatWasReplacedGetsNothingOfTheSeries) {
  EXPECT_TRUE(NerinAction::loadSlot(2).value);
  editState->edit().liftHeight = 9;
  const std::string image = hexOf(mouse().imageReport(2));
  bool isReplaced = false;
  setOnPause([&] {
    if (!isReplaced) {
      isReplaced = true;
      mouse().detach();
      mouse().attach();
    }
  });
  const Outcome outcome = NerinAction::applySlot();
  ASSERT_TRUE(outcome.failure());
  EXPECT_EQ(outcome.failure()->error, std::errc::no_such_device);
  EXPECT_EQ(hexOf(mouse().imageReport(2)), image);
  EXPECT_TRUE(editState->isNeedSave());
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
  misbehave(Kind::Absent);
  clearTrace();
  const Outcome outcome = NerinAction::applySlot();
  ASSERT_TRUE(outcome.failure());
  EXPECT_EQ(outcome.failure()->step, SlotStep::WriteName);
  EXPECT_EQ(outcome.failure()->error, std::errc::no_such_device);
  EXPECT_EQ(sent().size(), 1U) << "the series ends at its first failure";
  EXPECT_TRUE(editState->isNeedSave());
  EXPECT_THAT(posts(), SizeIs(2));
  EXPECT_THAT(namesIn(libraryFolder()), ElementsAre("Profile#3.pro"));
}

TEST_F(BadMouse, ThatIsUnpluggedAnywhereInAnApplyLosesNothing) {
  addMacro(1, "one", {{49, 0, 0}});
  addMacro(2, "two", {{36, 0, 5}});
  constexpr std::size_t transfers = 8;
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
    EXPECT_EQ(NerinAction::applySlot().isDone(), after == transfers);
    EXPECT_EQ(editState->isNeedSave(), after < transfers);
    EXPECT_EQ(sent().size(), std::min<std::size_t>(after + 1, transfers));
    EXPECT_EQ(mouse().transcript().size(), after);
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

TEST_F(BadMouse, ThatIsUnpluggedAnywhereInAReadChangesNothing) {
  addMacro(1, "one", {{49, 0, 0}});
  editState->edit().btnInfo[3] = macroButton(1);
  library().addProfileByName("Game", nullptr);
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
    editState->clearNeedSave();
    const auto stored = library().currProfile()->profileData();
    const bool isRead = NerinAction::loadSlot(2).value;
    EXPECT_EQ(isRead, after >= 6);
    if (!isRead) {
      EXPECT_EQ(editState->selProfile().liftHeight, 30U) << "the edited profile stays";
      EXPECT_EQ(differenceOf(library().getProfileByName("Game")->profileData(), stored), "");
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
