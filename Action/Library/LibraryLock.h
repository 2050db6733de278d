#pragma once

#include <chrono>
#include <memory>

#include "Kit/Core/FileLock.h"

// The programs of this product take turns with the library, the macros and their history: whoever
// reads, changes and writes them holds this lock meanwhile.
namespace librarylock {

// Releases the lock when the last copy is destroyed.
using Handle = std::shared_ptr<FileLock>;

// The longest that a window may wait.
inline constexpr std::chrono::milliseconds windowLimit(200);

// Waits up to `limit` for the lock. A process that holds it gets it again at once. Null if another
// process keeps it longer.
[[nodiscard]] Handle acquire(std::chrono::milliseconds limit = windowLimit);

}  // namespace librarylock
