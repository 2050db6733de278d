#include <set>

#include <gtest/gtest.h>

#include "MacroPlayer/KeyNames.h"

TEST(KeyNames, AreThoseOfTheKeyboardPage) {
  EXPECT_EQ(nameOfKey(0x04), "A");
  EXPECT_EQ(nameOfKey(0x1D), "Z");
  EXPECT_EQ(nameOfKey(0x27), "0");
  EXPECT_EQ(nameOfKey(0x28), "Return");
  EXPECT_EQ(nameOfKey(0x2E), "=");
  EXPECT_EQ(nameOfKey(0x39), "Caps Lock");
  EXPECT_EQ(nameOfKey(0x3A), "F1");
  EXPECT_EQ(nameOfKey(0x45), "F12");
  EXPECT_EQ(nameOfKey(0x52), "Up Arrow");
  EXPECT_EQ(nameOfKey(0x57), "Num +");
  EXPECT_EQ(nameOfKey(0x67), "Num =");
  EXPECT_EQ(nameOfKey(0x68), "F13");
  EXPECT_EQ(nameOfKey(0x73), "F24");
  EXPECT_EQ(nameOfKey(0xE0), "Control");
  EXPECT_EQ(nameOfKey(0xE7), "Right Command");
}

TEST(KeyNames, OfOtherUsagesAreTheirNumbers) {
  EXPECT_EQ(nameOfKey(0x00), "0x00");
  EXPECT_EQ(nameOfKey(0x03), "0x03");
  EXPECT_EQ(nameOfKey(0x74), "0x74");
  EXPECT_EQ(nameOfKey(0xDF), "0xDF");
  EXPECT_EQ(nameOfKey(0xE8), "0xE8");
}

TEST(KeyNames, AreAllDifferent) {
  std::set<std::string> names;
  for (int usage = 0; usage < 256; ++usage) {
    EXPECT_TRUE(names.insert(nameOfKey(static_cast<std::uint8_t>(usage))).second) << usage;
  }
}
