// How the window hears of a mouse where udevd does not run.

#include <QTemporaryDir>
#include <QTest>
#include <filesystem>
#include <fstream>

#include <gtest/gtest.h>

#include "App/PresenceWatch.h"

namespace {

constexpr const char* noUdevd = "/missing/control";

}  // namespace

TEST(PresenceWatch, IsToldByTheNodesAndSleepsMeanwhile) {
  const QTemporaryDir folder;
  const std::filesystem::path nodes = folder.path().toStdString();
  int told = 0;
  const PresenceWatch watch([&told] { ++told; }, noUdevd, nodes);
  QTest::qWait(700);
  EXPECT_EQ(told, 0);
  std::ofstream(nodes / "hidraw3") << "x";
  EXPECT_TRUE(QTest::qWaitFor([&] { return told == 2; })) << "at once, and a moment later";
  std::filesystem::permissions(nodes / "hidraw3", std::filesystem::perms::owner_read);
  EXPECT_TRUE(QTest::qWaitFor([&] { return told == 4; }));
  std::filesystem::remove(nodes / "hidraw3");
  EXPECT_TRUE(QTest::qWaitFor([&] { return told == 6; }));
  QTest::qWait(700);
  EXPECT_EQ(told, 6);
}

TEST(PresenceWatch, LooksNowAndThenWhereNobodyTells) {
  int told = 0;
  const PresenceWatch watch([&told] { ++told; }, noUdevd, "/missing");
  EXPECT_TRUE(QTest::qWaitFor([&] { return told == 2; }));
}
