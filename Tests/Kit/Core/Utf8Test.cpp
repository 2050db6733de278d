#include <gtest/gtest.h>

#include "Kit/Core/Utf8.h"

TEST(Utf8, TakesCharactersOfEveryLength) {
  EXPECT_TRUE(utf8::isValid(""));
  EXPECT_TRUE(utf8::isValid("plain"));
  EXPECT_TRUE(utf8::isValid("\u00E4\u20AC\U0001F5B1"));
  EXPECT_TRUE(utf8::isValid("\uD7FF\uE000\U0010FFFF"));
  EXPECT_TRUE(utf8::isValid(std::string_view("a\0b", 3)));
}

TEST(Utf8, RefusesWhatIsNoCharacter) {
  EXPECT_FALSE(utf8::isValid("\x80")) << "a continuation alone";
  EXPECT_FALSE(utf8::isValid("a\xC3")) << "cut off";
  EXPECT_FALSE(utf8::isValid("\xE2\x82")) << "cut off";
  EXPECT_FALSE(utf8::isValid("\xF0\x9F\x96")) << "cut off";
  EXPECT_FALSE(utf8::isValid("\xC3\x28")) << "no continuation";
  EXPECT_FALSE(utf8::isValid("\xC0\x80")) << "overlong";
  EXPECT_FALSE(utf8::isValid("\xE0\x9F\xBF")) << "overlong";
  EXPECT_FALSE(utf8::isValid("\xF0\x8F\xBF\xBF")) << "overlong";
  EXPECT_FALSE(utf8::isValid("\xED\xA0\x80")) << "surrogate";
  EXPECT_FALSE(utf8::isValid("\xF4\x90\x80\x80")) << "past the last";
  EXPECT_FALSE(utf8::isValid("\xF5\x80\x80\x80")) << "past the last";
  EXPECT_FALSE(utf8::isValid("\xFF"));
}

TEST(Utf8, ReplacesOnlyWhatIsNoCharacter) {
  EXPECT_EQ(utf8::repaired("a\u00E4\U0001F5B1"), "a\u00E4\U0001F5B1");
  EXPECT_EQ(utf8::repaired("a\xFF"
                           "b\xE2\x82"),
            "a\uFFFDb\uFFFD\uFFFD");
  EXPECT_EQ(utf8::repaired("\xED\xA0\x80"), "\uFFFD\uFFFD\uFFFD");
  EXPECT_EQ(utf8::repaired(""), "");
}

TEST(Utf8, TellsAsciiFromOtherText) {
  EXPECT_TRUE(utf8::isAscii(""));
  EXPECT_TRUE(utf8::isAscii("\x7F ~"));
  EXPECT_FALSE(utf8::isAscii("\u00E4"));
  EXPECT_FALSE(utf8::isAscii("\x80"));
}

TEST(Utf8, CutsBetweenCharacters) {
  EXPECT_EQ(utf8::prefixOfBytes("abc", 3), "abc");
  EXPECT_EQ(utf8::prefixOfBytes("abc", 2), "ab");
  EXPECT_EQ(utf8::prefixOfBytes("a\u00E4", 2), "a");
  EXPECT_EQ(utf8::prefixOfBytes("a\u20AC", 3), "a");
  EXPECT_EQ(utf8::prefixOfBytes("\U0001F5B1", 3), "");
  EXPECT_EQ(utf8::prefixOfBytes("\U0001F5B1x", 4), "\U0001F5B1");
  EXPECT_EQ(utf8::prefixOfBytes("abc", 0), "");
}

TEST(Utf8, CutsBytesThatAreNoTextAnywhere) {
  EXPECT_EQ(utf8::prefixOfBytes("\x80\x80\x80\x80\x80\x80\x80", 6), "\x80\x80\x80\x80\x80\x80");
}

TEST(Utf8, CountsAsCocoaDoes) {
  EXPECT_EQ(utf8::lengthInUtf16(""), 0U);
  EXPECT_EQ(utf8::lengthInUtf16("a\u00E4\u20AC"), 3U);
  EXPECT_EQ(utf8::lengthInUtf16("\U0001F5B1"), 2U);
}

TEST(Utf8, LowersOnlyAsciiLetters) {
  EXPECT_EQ(utf8::lowercased("Zh_TW \u00C4[@`{"), "zh_tw \u00C4[@`{");
}
