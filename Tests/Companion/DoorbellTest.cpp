#include <chrono>

#include <gtest/gtest.h>

#include "Companion/Policy/Doorbell.h"

namespace {

using namespace std::chrono_literals;

class DoorbellTest : public testing::Test {
 protected:
  static Doorbell::Time at(std::chrono::milliseconds time) {
    return Doorbell::Time(std::chrono::hours(1)) + time;
  }

  // One ring that is answered.
  void ringFor(std::uint8_t id, std::chrono::milliseconds time, bool hasChanged) {
    bell.heard(id, at(time));
    bell.answered(hasChanged, at(time + 40ms));
  }

  Doorbell bell;
};

TEST_F(DoorbellTest, IsSilentUntilAReportRings) {
  EXPECT_FALSE(bell.due());
}

TEST_F(DoorbellTest, WaitsForThirtyQuietMilliseconds) {
  bell.heard(7, at(0ms));
  bell.heard(7, at(20ms));
  EXPECT_EQ(bell.due(), at(50ms));
}

TEST_F(DoorbellTest, IsSilentAfterTheAnswer) {
  bell.heard(7, at(0ms));
  bell.answered(true, at(30ms));
  EXPECT_FALSE(bell.due());
}

TEST_F(DoorbellTest, TakesAReportRightAfterAnOwnTransferForItsEcho) {
  bell.transferred(at(0ms));
  bell.heard(7, at(99ms));
  EXPECT_FALSE(bell.due());
  bell.heard(7, at(100ms));
  EXPECT_TRUE(bell.due());
}

TEST_F(DoorbellTest, IsDisarmedByFiveFruitlessRingsInTenSeconds) {
  for (int ring = 0; ring < 4; ++ring) {
    ringFor(7, 2s * ring, false);
  }
  EXPECT_FALSE(bell.isDisarmed(7));
  ringFor(7, 8s, false);
  EXPECT_TRUE(bell.isDisarmed(7));
  bell.heard(7, at(20s));
  EXPECT_FALSE(bell.due());
}

TEST_F(DoorbellTest, ForgetsFruitlessRingsAfterTenSeconds) {
  for (int ring = 0; ring < 20; ++ring) {
    ringFor(7, 3s * ring, false);
  }
  EXPECT_FALSE(bell.isDisarmed(7));
}

TEST_F(DoorbellTest, AChangeMakesUpForFruitlessRings) {
  for (int ring = 0; ring < 4; ++ring) {
    ringFor(7, 1s * ring, false);
  }
  ringFor(7, 4s, true);
  ringFor(7, 5s, false);
  EXPECT_FALSE(bell.isDisarmed(7));
}

TEST_F(DoorbellTest, DisarmsOnlyTheKindThatRangForNothing) {
  for (int ring = 0; ring < 5; ++ring) {
    ringFor(7, 1s * ring, false);
  }
  bell.heard(8, at(6s));
  EXPECT_TRUE(bell.due());
}

}  // namespace
