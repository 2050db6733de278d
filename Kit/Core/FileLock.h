#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

// Lets the programs of this product take turns when they read, change and write back the same data,
// because otherwise a change could be lost. Held until the object is destroyed or the process ends
// in any way.
class FileLock {
 public:
  // Waits up to `limit` for the lock that `file` represents; the file is created if missing. Null
  // if another holder keeps the lock longer. Where no file can be created nothing can be changed
  // either, so the result is then a lock that holds nothing.
  static std::unique_ptr<FileLock> acquire(const std::filesystem::path& file,
                                           std::chrono::milliseconds limit);

  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  explicit FileLock(int descriptor) : m_descriptor(descriptor) {}

  int m_descriptor;
};
