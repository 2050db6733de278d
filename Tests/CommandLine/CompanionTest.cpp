// What nerinctl says about the companion, which runs beside it as a program of its own.

#include <chrono>
#include <cstdlib>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <signal.h>

#include "Tests/CommandLine/TestHome.h"
#include "Tests/Support/ChildProcess.h"
#include "Tests/Support/PrivateBus.h"

namespace {

using namespace std::chrono_literals;
using testing::HasSubstr;

class WithCompanion : public testing::Test {
 protected:
  WithCompanion() {
    settings.environment["DBUS_SESSION_BUS_ADDRESS"] = std::getenv("DBUS_SESSION_BUS_ADDRESS");
    user.prepare({"slots"});
  }

  std::vector<std::string> command() const {
    return {"env",
            "HOME=" + user.home.string(),
            "XDG_RUNTIME_DIR=" + user.home.string(),
            NERIN_COMPANION,
            "--virtual",
            user.mouseFile.string()};
  }
  nlohmann::json status() const {
    const RunResult result = user.runWithMouse({"--json", "status"}, settings);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    return nlohmann::json::parse(result.output);
  }
  bool saysSoon(const std::string& why) const {
    for (int attempt = 0; attempt < 100; ++attempt) {
      if (status()["why"] == why) {
        return true;
      }
      std::this_thread::sleep_for(50ms);
    }
    return false;
  }

  PrivateBus bus;
  TestHome user;
  RunSettings settings;
};

TEST_F(WithCompanion, StatusSaysWhyTheMouseHasItsSlot) {
  EXPECT_TRUE(status()["why"].is_null());
  const ChildProcess companion(command());
  EXPECT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
  EXPECT_EQ(user.runWithMouse({"switch", "4"}, settings).exitCode, 0);
  EXPECT_TRUE(saysSoon("Slot 4, the last one chosen by hand"));
}

TEST_F(WithCompanion, StatusSaysNothingOfAnotherMouse) {
  const ChildProcess companion(command());
  ASSERT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
  const TestHome other;
  const RunResult result = other.runWithMouse({"--json", "status"}, settings);
  EXPECT_TRUE(nlohmann::json::parse(result.output)["why"].is_null());
}

TEST_F(WithCompanion, ItRunsOnceAndEndsOnRequest) {
  ChildProcess companion(command());
  ASSERT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
  ChildProcess second(command());
  EXPECT_EQ(second.exitCode(20s), 0);
  companion.send(SIGTERM);
  EXPECT_EQ(companion.exitCode(20s), 0);
  EXPECT_TRUE(status()["why"].is_null());
}

TEST_F(WithCompanion, AKillLeavesNothingInTheWayOfTheNextOne) {
  {
    ChildProcess companion(command());
    ASSERT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
    companion.send(SIGKILL);
    EXPECT_EQ(companion.exitCode(20s), std::nullopt);
  }
  const ChildProcess next(command());
  EXPECT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
}

TEST_F(WithCompanion, ItFailsWithoutABusSoThatItIsStartedAgain) {
  ChildProcess companion(command());
  ASSERT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
  bus.end();
  EXPECT_EQ(companion.exitCode(20s), 1);
}

TEST_F(WithCompanion, TheDoctorSaysWhetherItRunsAndWhatToDo) {
  const auto findings = [&](const std::string& subject) {
    const RunResult result = user.runWithMouse({"--json", "doctor"}, settings);
    EXPECT_EQ(result.exitCode, 0) << result.errors;
    for (const auto& finding : nlohmann::json::parse(result.output)) {
      if (finding["subject"] == subject) {
        return finding;
      }
    }
    return nlohmann::json();
  };
  EXPECT_EQ(findings("mouse")["ok"], true);
  EXPECT_EQ(findings("companion")["ok"], false);
  EXPECT_THAT(findings("companion")["text"].get<std::string>(), HasSubstr("nerin-companion"));
  const ChildProcess companion(command());
  ASSERT_TRUE(saysSoon("Slot 1, the last one chosen by hand"));
  EXPECT_EQ(findings("companion")["ok"], true);
  EXPECT_EQ(findings("focus")["text"], "not needed");
  EXPECT_EQ(findings("slot now")["text"], "Slot 1, the last one chosen by hand");
}

TEST(Doctor, NeedsNoMouseAndSaysWhatIsMissing) {
  const TestHome user;
  const RunResult result = user.run({"doctor"});
  EXPECT_EQ(result.exitCode, 0);
  EXPECT_THAT(result.output, HasSubstr("Plug the mouse in."));
  expectHarmless(result.output);
}

TEST(Learn, NeedsAMouseThatSendsSomething) {
  const TestHome user;
  expectComplaint(user.run({"learn", "7"}), 3, "Plug the mouse in");
  expectComplaint(user.runWithMouse({"learn", "7"}), 1, "virtual mouse");
  expectComplaint(user.run({"learn", "0"}), 2, "1 to 16");
  expectComplaint(user.run({"learn", "17"}), 2, "1 to 16");
}

}  // namespace
