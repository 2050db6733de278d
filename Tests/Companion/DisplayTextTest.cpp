#include <gtest/gtest.h>

#include "Companion/Desktop/ScreenDisplay.h"
#include "Companion/Policy/DisplayText.h"

namespace {

TEST(DisplayText, ShowsTheSlotWithItsProfileAndWhy) {
  EXPECT_EQ(slotDisplay(2, "Office", "Slot 3, because Files is in front"),
            (DisplayText{"Slot 3: Office", "Slot 3, because Files is in front"}));
  EXPECT_EQ(slotDisplay(2, "", "why"), (DisplayText{"Slot 3", "why"}));
}

TEST(DisplayText, ShowsWhatTheWindowChanged) {
  const auto shown = [](std::vector<std::int32_t> values) {
    const auto text = displayOf({111, std::move(values)});
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
  EXPECT_FALSE(displayOf({110, {2, 1}}));
}

TEST(DisplayText, KnowsTheDesktopWithADisplayOfItsOwn) {
  EXPECT_TRUE(hasDisplayOfItsOwn("KDE"));
  EXPECT_TRUE(hasDisplayOfItsOwn("X:KDE"));
  EXPECT_FALSE(hasDisplayOfItsOwn("GNOME"));
  EXPECT_FALSE(hasDisplayOfItsOwn("KDEish"));
  EXPECT_FALSE(hasDisplayOfItsOwn(nullptr));
}

}  // namespace
