#include "Kit/Core/FileLock.h"

#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

std::unique_ptr<FileLock> FileLock::acquire(const std::filesystem::path& file,
                                            std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  std::unique_ptr<FileLock> lock(
      new FileLock(::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600)));
  if (lock->m_descriptor < 0) {
    return lock;
  }
  constexpr std::chrono::milliseconds pause(10);
  const auto end = Clock::now() + limit;
  while (::flock(lock->m_descriptor, LOCK_EX | LOCK_NB) != 0) {
    if (Clock::now() >= end) {
      return nullptr;
    }
    std::this_thread::sleep_for(pause);
  }
  return lock;
}

FileLock::~FileLock() {
  if (m_descriptor >= 0) {
    ::close(m_descriptor);
  }
}
