#pragma once

#include <chrono>
#include <filesystem>
#include <memory>

// Keeps other programs of this product from changing a folder while this one works on it. What two
// of them read, change and write back at once would otherwise lose one of the changes. Held until
// the object goes, or the process ends in whatever way.
class FolderLock {
 public:
  // Waits at most `limit` for the lock; null when another process holds it for longer. A folder in
  // which nothing can be written needs no lock and gives one that holds nothing.
  static std::unique_ptr<FolderLock> acquire(const std::filesystem::path& folder,
                                             std::chrono::milliseconds limit);

  ~FolderLock();
  FolderLock(const FolderLock&) = delete;
  FolderLock& operator=(const FolderLock&) = delete;

 private:
  explicit FolderLock(int descriptor) : m_descriptor(descriptor) {}

  int m_descriptor;
};
