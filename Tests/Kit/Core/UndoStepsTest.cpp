#include <string>

#include <gtest/gtest.h>

#include "Kit/Core/UndoSteps.h"

TEST(UndoSteps, LeadBackAndForthThroughWhatWasNoted) {
  UndoSteps<std::string> steps;
  steps.note("a");
  steps.note("b");
  EXPECT_EQ(steps.undo("c"), "b");
  EXPECT_EQ(steps.undo("b"), "a");
  EXPECT_FALSE(steps.canUndo());
  EXPECT_EQ(steps.redo("a"), "b");
  EXPECT_EQ(steps.redo("b"), "c");
  EXPECT_FALSE(steps.canRedo());
}

TEST(UndoSteps, ForgetWhatCouldBeRedoneAfterAChange) {
  UndoSteps<int> steps;
  steps.note(1);
  EXPECT_EQ(steps.undo(2), 1);
  steps.note(1);
  EXPECT_FALSE(steps.canRedo());
}

TEST(UndoSteps, KeepTheNewestStates) {
  UndoSteps<std::size_t> steps;
  const auto last = UndoSteps<std::size_t>::maximum + 5;
  for (std::size_t i = 0; i < last; ++i) {
    steps.note(i);
  }
  std::size_t reached = last;
  while (steps.canUndo()) {
    reached = steps.undo(reached);
  }
  EXPECT_EQ(reached, 5U);
}

TEST(UndoSteps, ChangeInBothDirections) {
  UndoSteps<int> steps;
  steps.note(1);
  steps.note(2);
  EXPECT_EQ(steps.undo(3), 2);
  steps.forEach([](int& step) { step *= 10; });
  EXPECT_EQ(steps.redo(2), 30);
  EXPECT_EQ(steps.undo(30), 2);
  EXPECT_EQ(steps.undo(2), 10);
}
