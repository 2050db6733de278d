#include <gtest/gtest.h>

#include "Action/Record/EditState.h"
#include "Action/Record/Outcome.h"

namespace {

_Nerin_PROFILE withRate(std::uint32_t poRate) {
  _Nerin_PROFILE profile{};
  profile.poRate = poRate;
  return profile;
}

TEST(EditState, BeginsWithNothingToSaveAndNoBase) {
  const EditState state;
  EXPECT_FALSE(state.isNeedSave());
  EXPECT_FALSE(state.base());
  EXPECT_TRUE(isSameRecord(state.selProfile(), {}));
}

TEST(EditState, LoadingTakesTheRecordAsTheBase) {
  EditState state;
  state.load(withRate(2));
  EXPECT_EQ(state.selProfile().poRate, 2U);
  ASSERT_TRUE(state.base());
  EXPECT_EQ(state.base()->poRate, 2U);
  EXPECT_FALSE(state.isNeedSave());
}

TEST(EditState, ASlotThatTheMouseChangedLeavesTheFlag) {
  EditState state;
  state.edit().poRate = 1;
  state.load(withRate(2));
  EXPECT_TRUE(state.isNeedSave());
}

TEST(EditState, AnyEditRaisesTheFlagAndLeavesTheBase) {
  EditState state;
  state.load(withRate(2));
  state.edit().poRate = 3;
  EXPECT_TRUE(state.isNeedSave());
  EXPECT_EQ(state.selProfile().poRate, 3U);
  EXPECT_EQ(state.base()->poRate, 2U);
}

TEST(EditState, TakingTheSameRecordIsNoEdit) {
  EditState state;
  state.load(withRate(2));
  state.take(withRate(2));
  EXPECT_FALSE(state.isNeedSave());
  state.take(withRate(1));
  EXPECT_TRUE(state.isNeedSave());
  EXPECT_EQ(state.selProfile().poRate, 1U);
}

TEST(EditState, BindingAProfileLeavesTheBaseAndTheFlag) {
  EditState state;
  state.load(withRate(2));
  state.bind(withRate(3));
  EXPECT_EQ(state.selProfile().poRate, 3U);
  EXPECT_EQ(state.base()->poRate, 2U);
  EXPECT_FALSE(state.isNeedSave());
}

TEST(EditState, SettlingMakesTheEditTheBase) {
  EditState state;
  state.load(withRate(2));
  state.edit().poRate = 3;
  state.settle();
  EXPECT_FALSE(state.isNeedSave());
  EXPECT_EQ(state.base()->poRate, 3U);
}

TEST(EditState, ASlotThatCannotBeReadHasNoBase) {
  EditState state;
  state.load(withRate(2));
  state.forgetBase();
  EXPECT_FALSE(state.base());
  EXPECT_EQ(state.selProfile().poRate, 2U);
}

TEST(Outcome, KeepsTheFirstFailure) {
  Outcome outcome;
  EXPECT_TRUE(outcome.isDone());
  outcome += Outcome(SlotStep::ReadName, std::error_code());
  EXPECT_TRUE(outcome.isDone());
  outcome += Outcome(SlotStep::WriteImage, std::make_error_code(std::errc::io_error));
  outcome += Outcome(SlotStep::SaveLibrary, std::make_error_code(std::errc::no_space_on_device));
  outcome += Outcome();
  ASSERT_TRUE(outcome.failure());
  EXPECT_EQ(outcome.failure()->step, SlotStep::WriteImage);
  EXPECT_EQ(outcome.failure()->error, std::errc::io_error);
}

TEST(Outcome, IsMadeOfAYesOrNo) {
  EXPECT_TRUE(Outcome::of(SlotStep::SavePreferences, true).isDone());
  EXPECT_EQ(Outcome::of(SlotStep::SavePreferences, false).failure()->step,
            SlotStep::SavePreferences);
}

}  // namespace
