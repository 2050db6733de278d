#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

// Lets programs of this product take turns: what two of them read, change and write back at once
// would otherwise lose one of the changes. Held until the object goes, or the process ends in
// whatever way.
class FileLock {
 public:
  // Waits at most `limit` for the lock that `file` stands for, which is made when it is missing;
  // null when another holder keeps it for longer. Where no file can be made nothing can be changed
  // either, and the answer is a lock that holds nothing.
  static std::unique_ptr<FileLock> acquire(const std::filesystem::path& file,
                                           std::chrono::milliseconds limit);

  ~FileLock();
  FileLock(const FileLock&) = delete;
  FileLock& operator=(const FileLock&) = delete;

 private:
  explicit FileLock(int descriptor) : m_descriptor(descriptor) {}

  int m_descriptor;
};
