#include <fstream>

#include <gtest/gtest.h>

#include "Companion/Loop/EventLoop.h"
#include "Tests/Support/Scratch.h"

namespace {

constexpr std::chrono::seconds limit(10);
constexpr std::chrono::milliseconds quiet(100);

void touch(const std::filesystem::path& file) {
  std::ofstream(file) << "written";
}

}  // namespace

TEST(EventLoopFiles, HearsOfOneFileAndNotOfItsNeighbours) {
  const Scratch folder;
  const auto file = folder.folder() / "preferences";
  EventLoop loop;
  int changes = 0;
  const auto watch = loop.watchFile(file, [&] { ++changes; });
  ASSERT_TRUE(watch);
  touch(folder.folder() / "another");
  touch(folder.folder() / "preferences.old");
  EXPECT_FALSE(loop.runUntil([&] { return changes > 0; }, quiet));
  touch(folder.folder() / "another");
  touch(file);
  EXPECT_TRUE(loop.runUntil([&] { return changes == 1; }, limit));
  std::filesystem::rename(folder.folder() / "another", file);
  EXPECT_TRUE(loop.runUntil([&] { return changes == 2; }, limit));
  std::filesystem::remove(file);
  EXPECT_TRUE(loop.runUntil([&] { return changes == 3; }, limit));
}

TEST(EventLoopFiles, HearsOfEveryFileOfAFolder) {
  const Scratch folder;
  EventLoop loop;
  int changes = 0;
  const auto watch = loop.watchFolder(folder.folder(), [&] { ++changes; });
  ASSERT_TRUE(watch);
  touch(folder.folder() / "one");
  EXPECT_TRUE(loop.runUntil([&] { return changes > 0; }, limit));
  EXPECT_FALSE(loop.watchFolder(folder.folder() / "none", [] {}));
}
