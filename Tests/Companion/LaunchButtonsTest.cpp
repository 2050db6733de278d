#include <vector>

#include <gtest/gtest.h>

#include "Companion/Policy/LaunchButtons.h"

namespace {

using namespace std::chrono_literals;
using Press = LaunchButtons::Press;
using Report = std::vector<std::uint8_t>;

class LaunchButtonsTest : public testing::Test {
 protected:
  LaunchButtonsTest() {
    // The last byte of the seventh button varies.
    buttons.learn({{6, {1, {7, 0x22, std::nullopt}}}, {9, {1, {7, 0x23, 1}}}});
  }
  std::optional<Press> at(std::chrono::milliseconds time, const Report& report, int interface = 1) {
    return buttons.heard(interface, report, LaunchButtons::Time() + time);
  }

  LaunchButtons buttons;
};

TEST_F(LaunchButtonsTest, KnowsAButtonByWhatItSends) {
  EXPECT_EQ(at(0ms, {7, 0x22, 5}), (Press{6, true}));
  EXPECT_EQ(at(0ms, {7, 0x23, 1}), (Press{9, true}));
}

TEST_F(LaunchButtonsTest, OtherReportsAreNoButton) {
  EXPECT_EQ(at(0ms, {7, 0x24, 1}), std::nullopt);
  EXPECT_EQ(at(0ms, {7, 0x23, 2}), std::nullopt);
  EXPECT_EQ(at(0ms, {7, 0x22}), std::nullopt);
  EXPECT_EQ(at(0ms, {7, 0x22, 5}, 0), std::nullopt);
  buttons.learn({});
  EXPECT_EQ(at(0ms, {7, 0x22, 5}), std::nullopt);
}

TEST_F(LaunchButtonsTest, AButtonThatIsHeldIsPressedOnce) {
  EXPECT_EQ(at(0ms, {7, 0x22, 0}), (Press{6, true}));
  EXPECT_EQ(at(499ms, {7, 0x22, 1}), (Press{6, false}));
  EXPECT_EQ(at(998ms, {7, 0x22, 2}), (Press{6, false}));
  EXPECT_EQ(at(1498ms, {7, 0x22, 3}), (Press{6, true}));
}

TEST_F(LaunchButtonsTest, AnotherButtonIsNotHeld) {
  EXPECT_EQ(at(0ms, {7, 0x22, 0}), (Press{6, true}));
  EXPECT_EQ(at(10ms, {7, 0x23, 1}), (Press{9, true}));
  EXPECT_EQ(at(20ms, {7, 0x22, 0}), (Press{6, false}));
}

TEST_F(LaunchButtonsTest, AButtonThatIsTaughtAgainMeanwhileIsStillHeld) {
  EXPECT_EQ(at(0ms, {7, 0x22, 0}), (Press{6, true}));
  buttons.learn({{6, {1, {7, 0x22, 0}}}});
  EXPECT_EQ(at(10ms, {7, 0x22, 0}), (Press{6, false}));
}

}  // namespace
