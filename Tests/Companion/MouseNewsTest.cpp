#include <gtest/gtest.h>

#include "Companion/Policy/MouseNews.h"
#include "Companion/Policy/WindowMessage.h"

namespace {

using Reports = std::vector<DeviceReport>;

TEST(MouseNews, TellsNothingOfTheFirstReading) {
  EXPECT_EQ(changesOf(std::nullopt, MouseReading{3, 1}), Reports());
}

TEST(MouseNews, TellsChangesOnly) {
  struct Row {
    MouseReading before;
    MouseReading now;
    Reports reports;
  };
  const Row rows[] = {
      {{0, 0}, {0, 0}, {}},
      {{0, 0}, {3, 0}, {{DeviceReport::SlotChanged, 3}}},
      {{3, 1}, {3, 2}, {{DeviceReport::DpiChanged, 2}}},
      // Another slot has its own level.
      {{3, 1}, {4, 2}, {{DeviceReport::SlotChanged, 4}}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(changesOf(row.before, row.now), row.reports)
        << row.before.slot << "/" << row.before.dpiLevel;
  }
}

TEST(MouseNews, TellsComingAndGoingOnce) {
  struct Row {
    MousePresence before;
    MousePresence now;
    Reports reports;
  };
  const DeviceReport removed{DeviceReport::Removed, 0};
  const DeviceReport attached{DeviceReport::Attached, 0};
  const Row rows[] = {
      {{false, 0}, {false, 0}, {}},
      {{false, 0}, {true, 1}, {attached}},
      {{true, 1}, {true, 1}, {}},
      {{true, 1}, {false, 1}, {removed}},
      {{false, 1}, {true, 2}, {attached}},
      // Plugged in again before anybody looked.
      {{true, 1}, {true, 2}, {removed, attached}},
  };
  for (const Row& row : rows) {
    EXPECT_EQ(changesOf(row.before, row.now), row.reports);
  }
}

TEST(WindowMessage, ReadsCodeAndValues) {
  const auto message = windowMessageOf("111", {{"value1", 1}, {"value2", 4}});
  ASSERT_TRUE(message);
  EXPECT_EQ(message->code, 111);
  EXPECT_EQ(message->values, (std::vector<std::int32_t>{1, 4}));
  EXPECT_EQ(message->chosenSlot(), 4);
}

TEST(WindowMessage, TakesAFlagForANumber) {
  EXPECT_EQ(windowMessageOf("122", {{"value1", true}})->value(0), 1);
  EXPECT_EQ(windowMessageOf("122", {{"value1", false}})->value(0), 0);
  EXPECT_EQ(windowMessageOf("122", {})->value(0), 0);
}

TEST(WindowMessage, RefusesWhatIsNoCode) {
  for (const char* object : {"", "abc", "111x", "99999999999"}) {
    EXPECT_FALSE(windowMessageOf(object, {})) << object;
  }
}

TEST(WindowMessage, FindsAChosenSlotOnlyInAMessageOfThatKind) {
  EXPECT_FALSE(windowMessageOf("111", {{"value1", 2}, {"value2", 4}})->chosenSlot());
  EXPECT_FALSE(windowMessageOf("110", {{"value1", 1}, {"value2", 4}})->chosenSlot());
  EXPECT_FALSE(windowMessageOf("111", {{"value1", 1}})->chosenSlot());
  for (const int slot : {-1, 10}) {
    EXPECT_FALSE(windowMessageOf("111", {{"value1", 1}, {"value2", slot}})->chosenSlot()) << slot;
  }
}

}  // namespace
