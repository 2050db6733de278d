#include "Kit/Core/FileLock.h"

#include <cerrno>
#include <set>
#include <system_error>
#include <thread>
#include <utility>

#include <fcntl.h>
#include <sys/file.h>
#include <unistd.h>

#include "Kit/Core/LXLogger.h"
#include "Kit/Core/ProcessWide.h"

namespace {

ProcessWide<FileLock::FaultInjector> faultInjector;
ProcessWide<std::set<int>> toldErrors;

// Runs a system call until no signal interrupts it. Returns its errno, or 0.
template <typename Call>
int errorOf(const char* name, Call call) {
  int error = 0;
  do {
    error = *faultInjector ? (*faultInjector)(name) : 0;
    if (error == 0 && call() == -1) {
      error = errno;
    }
  } while (error == EINTR);
  return error;
}

// Each error is told once, because it is the same for every lock that follows.
void tellOnce(const std::filesystem::path& file, int error) {
  if (toldErrors->insert(error).second) {
    LXLogger::debug(file.string() + " cannot be locked, going on without: " +
                    std::generic_category().message(error));
  }
}

}  // namespace

std::unique_ptr<FileLock> FileLock::acquire(const std::filesystem::path& file,
                                            std::chrono::milliseconds limit) {
  using Clock = std::chrono::steady_clock;
  std::unique_ptr<FileLock> lock(new FileLock(-1));
  if (const int error = errorOf("open", [&] {
        return lock->m_descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0600);
      })) {
    tellOnce(file, error);
    return lock;
  }
  constexpr std::chrono::milliseconds pause(10);
  const auto end = Clock::now() + limit;
  while (const int error =
             errorOf("flock", [&] { return ::flock(lock->m_descriptor, LOCK_EX | LOCK_NB); })) {
    if (error != EWOULDBLOCK) {
      tellOnce(file, error);
      return lock;
    }
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

void FileLock::setFaultInjector(FaultInjector injector) {
  *faultInjector = std::move(injector);
}
