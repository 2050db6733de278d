#include "Action/Library/LibraryLock.h"

#include <filesystem>

#include "Action/Library/SupportFolder.h"
#include "Kit/Core/BusyScope.h"
#include "Kit/Core/ProcessWide.h"

namespace {

struct BusyLock {
  BusyScope busy;
  std::shared_ptr<FileLock> lock;
};

// Two descriptors of one process exclude each other too, so that all holders share one.
ProcessWide<std::weak_ptr<FileLock>> held;

}  // namespace

librarylock::Handle librarylock::acquire(std::chrono::milliseconds limit) {
  if (Handle lock = held->lock()) {
    return lock;
  }
  // The disk may be slow: the program stands still until the lock is let go.
  auto busy = std::make_shared<BusyLock>();
  busy->lock = FileLock::acquire(std::filesystem::path(NerinAction::getSysPath()) / ".lock", limit);
  Handle lock = busy->lock ? Handle(busy, busy->lock.get()) : nullptr;
  *held = lock;
  return lock;
}
