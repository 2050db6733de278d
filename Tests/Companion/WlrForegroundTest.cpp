#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>

#include "Companion/Desktop/WlrForeground.h"
#include "Tests/Companion/PrivateSway.h"

namespace {

using namespace std::chrono_literals;

class WlrForegroundTest : public testing::Test {
 protected:
  std::unique_ptr<WlrForeground> open() {
    return WlrForeground::open(
        loop, [this](const std::optional<AppIdentity>& identity) { seen.push_back(identity); },
        [this] { ++lost; });
  }
  bool comes(const std::optional<std::string>& appId) {
    return loop.runUntil(
        [&] {
          return !seen.empty() && seen.back().has_value() == appId.has_value() &&
                 (!appId || seen.back()->appId == *appId);
        },
        20s);
  }

  EventLoop loop;
  std::vector<std::optional<AppIdentity>> seen;
  int lost = 0;
};

TEST_F(WlrForegroundTest, TellsTheFirstState) {
  const PrivateSway sway;
  const WaylandWindow window("org.blender.Blender");
  const auto foreground = open();
  ASSERT_TRUE(foreground);
  ASSERT_TRUE(comes("org.blender.Blender"));
  EXPECT_EQ(seen.size(), 1U);
}

TEST_F(WlrForegroundTest, TellsThatNoWindowIsInFront) {
  const PrivateSway sway;
  const auto foreground = open();
  ASSERT_TRUE(comes(std::nullopt));
  EXPECT_EQ(seen.size(), 1U);
}

TEST_F(WlrForegroundTest, FollowsTheWindows) {
  const PrivateSway sway;
  const auto foreground = open();
  ASSERT_TRUE(foreground);
  const WaylandWindow first("first");
  ASSERT_TRUE(comes("first"));
  {
    const WaylandWindow second("second");
    ASSERT_TRUE(comes("second"));
  }
  EXPECT_TRUE(comes("first"));
  EXPECT_EQ(lost, 0);
}

TEST_F(WlrForegroundTest, AWindowThatSaysNothingOfItselfIsAnotherProgram) {
  const PrivateSway sway;
  const auto foreground = open();
  const WaylandWindow known("known");
  ASSERT_TRUE(comes("known"));
  const WaylandWindow silent("");
  EXPECT_TRUE(comes(""));
}

TEST_F(WlrForegroundTest, TellsOnceThatTheCompositorIsGone) {
  PrivateSway sway;
  const auto foreground = open();
  ASSERT_TRUE(comes(std::nullopt));
  sway.end();
  EXPECT_TRUE(loop.runUntil([&] { return lost == 1; }, 20s));
  loop.runUntil([] { return false; }, 200ms);
  EXPECT_EQ(lost, 1);
}

TEST_F(WlrForegroundTest, ACompositorThatHangsKeepsNobodyWaiting) {
  const PrivateSway sway;
  sway.freeze();
  const auto begin = std::chrono::steady_clock::now();
  {
    const auto foreground = open();
    ASSERT_TRUE(foreground);
    EXPECT_FALSE(loop.runUntil([&] { return !seen.empty() || lost > 0; }, 300ms));
  }
  EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s);
  sway.thaw();
}

TEST_F(WlrForegroundTest, NeedsACompositor) {
  setenv("WAYLAND_DISPLAY", "no such socket", 1);
  EXPECT_FALSE(open());
}

}  // namespace
