#pragma once

#include <chrono>
#include <filesystem>
#include <functional>
#include <memory>

// Lets the programs of this product take turns when they read, change and write back the same data,
// because otherwise a change could be lost. Held until the object is destroyed or the process ends
// in any way.
class FileLock {
 public:
  // Waits up to `limit` for the lock that `file` represents; the file is created if missing. Null
  // only if another holder keeps the lock longer. Where the file cannot be created or the file
  // system knows no locks, the result is a lock that holds nothing: the work of one user alone
  // must not end there. The log tells each such error once.
  static std::unique_ptr<FileLock> acquire(const std::filesystem::path& file,
                                           std::chrono::milliseconds limit);

  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

  // Asked before each system call, "open" or "flock": the errno that it shall fail with, or 0. For
  // tests; an empty function turns this off.
  using FaultInjector = std::function<int(const char* step)>;
  static void setFaultInjector(FaultInjector injector);

 private:
  explicit FileLock(int descriptor) : m_descriptor(descriptor) {}

  int m_descriptor;
};
