#include <gtest/gtest.h>

#include "Companion/Desktop/ScreenDisplay.h"
#include "Companion/Policy/DisplayText.h"

namespace {

// As if there were another language.
std::string spoken(const std::string& name) {
  return name == "Slot %1" ? "Platz %1" : name == "Slot %1: %2" ? "%2 (Platz %1)" : name;
}

TEST(DisplayText, ShowsTheSlotWithItsProfileAndWhy) {
  const SlotReason files{SlotReason::InFront, 2, 0, "Files"};
  EXPECT_EQ(slotDisplay(files, "Office", spoken),
            (DisplayText{"Office (Platz 3)", "Slot 3, because Files is in front"}));
  EXPECT_EQ(slotDisplay(files, "", spoken),
            (DisplayText{"Platz 3", "Slot 3, because Files is in front"}));
}

TEST(DisplayText, SaysWhyOnlyWhereItConcernsAProgram) {
  EXPECT_EQ(slotDisplay({SlotReason::NothingLinked, 2, 0, ""}, "", spoken).body, "");
  EXPECT_EQ(slotDisplay({SlotReason::SwitchedOff, 2, 0, ""}, "", spoken).body, "");
  EXPECT_EQ(slotDisplay({SlotReason::ByHand, 2, 0, ""}, "", spoken).body,
            "Slot 3, the last one chosen by hand");
}

TEST(DisplayText, ShowsWhatTheWindowChanged) {
  const auto shown = [](std::vector<std::int32_t> values) {
    const auto text = displayOf({111, std::move(values)}, spoken);
    return text ? text->summary : "";
  };
  EXPECT_EQ(shown({2, 0}), "LED mode: Normal");
  EXPECT_EQ(shown({2, 1}), "LED mode: Battle");
  EXPECT_EQ(shown({3, 1, 32, 32}), "DPI level 2");
  EXPECT_EQ(shown({4, 0}), "Report rate: 125 Hz");
  EXPECT_EQ(shown({4, 3}), "Report rate: 1000 Hz");
  EXPECT_EQ(shown({4, 4}), "");
  EXPECT_EQ(shown({4, -1}), "");
  EXPECT_EQ(shown({1, 3}), "");
  EXPECT_EQ(shown({2}), "");
  EXPECT_FALSE(displayOf({110, {2, 1}}, spoken));
}

TEST(DisplayText, KnowsTheDesktopWithADisplayOfItsOwn) {
  EXPECT_TRUE(hasDisplayOfItsOwn("KDE"));
  EXPECT_TRUE(hasDisplayOfItsOwn("X:KDE"));
  EXPECT_FALSE(hasDisplayOfItsOwn("GNOME"));
  EXPECT_FALSE(hasDisplayOfItsOwn("KDEish"));
  EXPECT_FALSE(hasDisplayOfItsOwn(nullptr));
}

}  // namespace
