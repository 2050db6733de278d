#include <thread>

#include <gtest/gtest.h>

#include "Kit/Core/FileLock.h"
#include "Tests/Support/Scratch.h"

using namespace std::chrono_literals;

namespace {

class Lock : public testing::Test {
 protected:
  Scratch m_scratch;
  std::filesystem::path m_file = m_scratch / "lock";
};

}  // namespace

TEST_F(Lock, IsOneHoldersAtATime) {
  auto first = FileLock::acquire(m_file, 0ms);
  ASSERT_TRUE(first);
  EXPECT_FALSE(FileLock::acquire(m_file, 0ms));
  EXPECT_TRUE(FileLock::acquire(m_scratch / "another", 0ms));
  first.reset();
  EXPECT_TRUE(FileLock::acquire(m_file, 0ms));
}

TEST_F(Lock, IsWaitedFor) {
  auto first = FileLock::acquire(m_file, 0ms);
  ASSERT_TRUE(first);
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_FALSE(FileLock::acquire(m_file, 50ms));
  EXPECT_GE(std::chrono::steady_clock::now() - begin, 50ms);
  std::thread holder([&] {
    std::this_thread::sleep_for(50ms);
    first.reset();
  });
  EXPECT_TRUE(FileLock::acquire(m_file, 60s));
  holder.join();
}

TEST_F(Lock, HoldsNothingWhereNoFileCanBeMade) {
  EXPECT_TRUE(FileLock::acquire(m_scratch / "none/lock", 0ms));
  EXPECT_TRUE(FileLock::acquire(m_scratch / "none/lock", 0ms));
}
