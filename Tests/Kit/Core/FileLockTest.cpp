#include <cerrno>
#include <string_view>
#include <thread>

#include <gtest/gtest.h>

#include "Kit/Core/FileLock.h"
#include "Kit/Core/ProcessWide.h"
#include "Tests/Support/FailingDisk.h"
#include "Tests/Support/Scratch.h"

using namespace std::chrono_literals;

namespace {

class Lock : public testing::Test {
 protected:
  Lock() { ProcessWideBase::resetAll(); }
  ~Lock() override { FileLock::setFaultInjector({}); }

  static void failAt(std::string_view step, int error) {
    FileLock::setFaultInjector([step, error](const char* now) { return now == step ? error : 0; });
  }

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

TEST_F(Lock, HoldsNothingWhereLocksDoNotWork) {
  for (const int error : {ENOLCK, EOPNOTSUPP, ENOSYS, EINVAL, EIO}) {
    failAt("flock", error);
    const auto begin = std::chrono::steady_clock::now();
    const auto first = FileLock::acquire(m_file, 5s);
    EXPECT_TRUE(first) << error;
    EXPECT_TRUE(FileLock::acquire(m_file, 5s)) << error;
    EXPECT_LT(std::chrono::steady_clock::now() - begin, 2s) << error;
  }
}

TEST_F(Lock, HoldsNothingWhereTheFileCannotBeOpened) {
  for (const int error : {EACCES, EROFS, EMFILE, ENOSPC}) {
    failAt("open", error);
    EXPECT_TRUE(FileLock::acquire(m_file, 0ms)) << error;
  }
}

TEST_F(Lock, IsHeldByAnotherOnlyWhenTheSystemSaysSo) {
  failAt("flock", EWOULDBLOCK);
  EXPECT_FALSE(FileLock::acquire(m_file, 0ms));
}

TEST_F(Lock, IsTriedAgainAfterASignal) {
  for (const std::string_view step : {"open", "flock"}) {
    int interruptions = 3;
    FileLock::setFaultInjector(
        [&](const char* now) { return now == step && interruptions-- > 0 ? EINTR : 0; });
    const auto lock = FileLock::acquire(m_file, 0ms);
    EXPECT_TRUE(lock);
    FileLock::setFaultInjector({});
    EXPECT_FALSE(FileLock::acquire(m_file, 0ms)) << "the lock holds nothing after " << step;
  }
}

TEST_F(Lock, TellsOnceThatLocksDoNotWork) {
  const LogLines lines;
  failAt("flock", ENOLCK);
  EXPECT_TRUE(FileLock::acquire(m_file, 0ms));
  EXPECT_EQ(lines.count("cannot be locked"), 1U);
  EXPECT_TRUE(FileLock::acquire(m_scratch / "another", 0ms));
  EXPECT_EQ(lines.count("cannot be locked"), 1U);
}
