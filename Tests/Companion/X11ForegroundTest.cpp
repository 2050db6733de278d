#include <algorithm>
#include <chrono>
#include <memory>
#include <optional>
#include <vector>

#include <gtest/gtest.h>
#include <stdlib.h>
#include <unistd.h>

#include "Companion/Desktop/X11Foreground.h"
#include "Tests/Companion/PrivateDisplay.h"

namespace {

using namespace std::chrono_literals;

class X11ForegroundTest : public testing::Test {
 protected:
  std::unique_ptr<X11Foreground> open() {
    return X11Foreground::open(
        loop, [this](const std::optional<AppIdentity>& identity) { seen.push_back(identity); },
        [this] { ++lost; });
  }
  // Whether a program with this class is in front soon, and stays there.
  bool comes(const std::string& appId) {
    return loop.runUntil(
        [&] { return !seen.empty() && seen.back() && seen.back()->appId == appId; }, 20s);
  }

  EventLoop loop;
  std::vector<std::optional<AppIdentity>> seen;
  int lost = 0;
};

TEST_F(X11ForegroundTest, TellsTheFirstState) {
  const PrivateDisplay display;
  const ProgramWindow window("blender", "Blender");
  // The window manager needs a moment; then there is no change any more to be told.
  {
    const auto before = open();
    ASSERT_TRUE(before);
    ASSERT_TRUE(comes("Blender"));
  }
  seen.clear();
  const auto foreground = open();
  ASSERT_TRUE(comes("Blender"));
  EXPECT_EQ(seen.back()->instance, "blender");
  EXPECT_EQ(seen.size(), 1U);
}

TEST_F(X11ForegroundTest, FollowsTheWindows) {
  const PrivateDisplay display;
  const auto foreground = open();
  ProgramWindow first("first", "First");
  ASSERT_TRUE(comes("First"));
  {
    const ProgramWindow second("second", "Second");
    ASSERT_TRUE(comes("Second"));
    first.activate();
    ASSERT_TRUE(comes("First"));
  }
  ProgramWindow third("third", "Third");
  ASSERT_TRUE(comes("Third"));
}

TEST_F(X11ForegroundTest, SaysWhoseProcessItIs) {
  const PrivateDisplay display;
  const auto foreground = open();
  const ProgramWindow window("test", "Test", ::getpid());
  ASSERT_TRUE(comes("Test"));
  EXPECT_EQ(seen.back()->pid, ::getpid());
  EXPECT_EQ(seen.back()->executable.filename(), "X11Test");
}

TEST_F(X11ForegroundTest, AWindowThatSaysNothingOfItselfIsAnotherProgram) {
  const PrivateDisplay display;
  const auto foreground = open();
  const ProgramWindow known("known", "Known");
  ASSERT_TRUE(comes("Known"));
  const ProgramWindow silent("", "");
  EXPECT_TRUE(comes(""));
}

TEST_F(X11ForegroundTest, TellsThatNoWindowIsInFront) {
  const PrivateDisplay display(false);
  ProgramWindow window("only", "Only");
  window.claimFront(true);
  std::unique_ptr<X11Foreground> foreground;
  // The window's own connection may be slower than this one.
  for (int attempt = 0; !foreground && attempt < 1000; ++attempt) {
    foreground = open();
  }
  ASSERT_TRUE(comes("Only"));
  window.claimFront(false);
  EXPECT_TRUE(loop.runUntil([&] { return !seen.back(); }, 20s));
}

TEST_F(X11ForegroundTest, TellsOnceThatTheServerIsGone) {
  PrivateDisplay display;
  auto foreground = open();
  loop.runUntil([&] { return !seen.empty(); }, 20s);
  display.end();
  EXPECT_TRUE(loop.runUntil([&] { return lost > 0; }, 20s));
  loop.runUntil([] { return false; }, 100ms);
  EXPECT_EQ(lost, 1);
}

TEST_F(X11ForegroundTest, KnowsThatNobodyTells) {
  const PrivateDisplay display(false);
  EXPECT_EQ(open(), nullptr);
}

TEST_F(X11ForegroundTest, NeedsAServer) {
  setenv("DISPLAY", ":9999", 1);
  EXPECT_EQ(open(), nullptr);
  unsetenv("DISPLAY");
}

}  // namespace
