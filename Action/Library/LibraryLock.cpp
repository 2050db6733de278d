#include "Action/Library/LibraryLock.h"

#include <filesystem>

#include "Action/Library/SupportFolder.h"
#include "Kit/Core/ProcessWide.h"

namespace {

// Two descriptors of one process exclude each other too, so that all holders share one.
ProcessWide<std::weak_ptr<FileLock>> held;

}  // namespace

librarylock::Handle librarylock::acquire(std::chrono::milliseconds limit) {
  if (Handle lock = held->lock()) {
    return lock;
  }
  Handle lock =
      FileLock::acquire(std::filesystem::path(NerinAction::getSysPath()) / ".lock", limit);
  *held = lock;
  return lock;
}
