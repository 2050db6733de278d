#include <chrono>

#include <gtest/gtest.h>

#include "Action/Service/LearnedButtons.h"
#include "Tests/Support/ActionTest.h"

namespace {

using namespace std::chrono_literals;

TEST(ButtonPattern, IsKeptAsText) {
  const ButtonPattern pattern{1, {0x07, std::nullopt, 0x0A}};
  EXPECT_EQ(pattern.text(), "1:07 ?? 0a");
  EXPECT_EQ(ButtonPattern::parse("1:07 ?? 0a"), pattern);
}

TEST(ButtonPattern, RefusesOtherTexts) {
  for (const char* text : {"", "1", "1:", "x:07", "1:7", "1:007", "1:07  0a", "1:0g", "1:-7",
                           "1:??", "1:?? ??", "1;07"}) {
    EXPECT_EQ(ButtonPattern::parse(text), std::nullopt) << text;
  }
  std::string tooLong = "1:";
  for (int place = 0; place < 100; ++place) {
    tooLong += "07 ";
  }
  EXPECT_EQ(ButtonPattern::parse(tooLong), std::nullopt);
}

TEST(ButtonPattern, FitsReportsOfItsShape) {
  const ButtonPattern pattern{1, {0x07, std::nullopt, 0x0A}};
  EXPECT_TRUE(pattern.fits(1, Bytes{0x07, 0x00, 0x0A}));
  EXPECT_TRUE(pattern.fits(1, Bytes{0x07, 0xFF, 0x0A}));
  EXPECT_FALSE(pattern.fits(0, Bytes{0x07, 0x00, 0x0A}));
  EXPECT_FALSE(pattern.fits(1, Bytes{0x07, 0x00, 0x0B}));
  EXPECT_FALSE(pattern.fits(1, Bytes{0x07, 0x00}));
  EXPECT_FALSE(pattern.fits(1, Bytes{0x07, 0x00, 0x0A, 0x00}));
}

class ButtonLessonTest : public testing::Test {
 protected:
  using Step = ButtonLesson::Step;

  void after(std::chrono::milliseconds time) {
    now += time;
    lesson.pass(now);
  }
  void hear(const Bytes& report, int interface = 1) { lesson.heard(interface, report, now); }
  // A press, and its release.
  void press(const Bytes& report, const Bytes& release = {0x07, 0, 0, 0}) {
    after(500ms);
    hear(report);
    after(80ms);
    hear(release);
  }

  ButtonLesson::Time now{std::chrono::hours(1)};
  ButtonLesson lesson{now};
};

TEST_F(ButtonLessonTest, LearnsFromThreePressesAndAnotherButton) {
  after(2s);
  for (const int count : {1, 2, 3}) {
    EXPECT_EQ(lesson.step(), Step::Presses);
    press({0x07, 0x20, 0x05, static_cast<std::uint8_t>(count)});
    EXPECT_EQ(lesson.presses(), count);
  }
  EXPECT_EQ(lesson.step(), Step::Other);
  press({0x07, 0x20, 0x06, 4});
  EXPECT_EQ(lesson.step(), Step::Done);
  EXPECT_EQ(lesson.pattern().text(), "1:07 20 05 ??");
}

TEST_F(ButtonLessonTest, LeavesOutWhatTheMouseSendsAnyway) {
  hear({0x08, 1});
  after(2s);
  for (int count = 0; count < 10; ++count) {
    after(500ms);
    hear({0x08, 1});
  }
  EXPECT_EQ(lesson.presses(), 0);
}

TEST_F(ButtonLessonTest, SaysThatTheButtonSendsNothing) {
  after(2s);
  after(14999ms);
  EXPECT_EQ(lesson.step(), Step::Presses);
  after(1ms);
  EXPECT_EQ(lesson.step(), Step::SendsNothing);
}

TEST_F(ButtonLessonTest, EachPressGivesNewTime) {
  after(2s);
  press({0x07, 1, 0, 0});
  after(10s);
  press({0x07, 1, 0, 0});
  after(10s);
  EXPECT_EQ(lesson.step(), Step::Presses);
}

TEST_F(ButtonLessonTest, SaysThatButtonsLookAlike) {
  after(2s);
  for (int count = 0; count < 4; ++count) {
    press({0x07, 1, 0, 0});
  }
  EXPECT_EQ(lesson.step(), Step::NoDifference);
}

TEST_F(ButtonLessonTest, AHeldButtonIsNoOtherOne) {
  after(2s);
  for (int count = 0; count < 3; ++count) {
    after(500ms);
    hear({0x07, 1, 0, 0});
  }
  after(50ms);
  hear({0x07, 2, 0, 0});
  EXPECT_EQ(lesson.step(), Step::Other);
}

class LearnedButtons : public ActionTest {};

TEST_F(LearnedButtons, AreKeptInThePreferences) {
  EXPECT_TRUE(learnedbuttons::all().empty());
  EXPECT_TRUE(learnedbuttons::keep(6, {1, {0x07, std::nullopt}}));
  EXPECT_TRUE(learnedbuttons::keep(15, {1, {0x08}}));
  const auto all = learnedbuttons::all();
  ASSERT_EQ(all.size(), 2U);
  EXPECT_EQ(all.at(6).text(), "1:07 ??");
  EXPECT_EQ(all.at(15).text(), "1:08");
}

}  // namespace
