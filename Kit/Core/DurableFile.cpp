#include "Kit/Core/DurableFile.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Kit/Core/LXLogger.h"

namespace fs = std::filesystem;

namespace {

durable::FaultInjector& faultInjector() {
  static durable::FaultInjector injector;
  return injector;
}

std::error_code lastError() {
  return {errno, std::generic_category()};
}

// Runs one step that touches the disk: `call` answers as a system call does, -1 with errno.
template <typename Call>
std::error_code step(const char* name, Call call) {
  if (faultInjector()) {
    if (const int fault = faultInjector()(name); fault != 0) {
      return {fault, std::generic_category()};
    }
  }
  int result = -1;
  do {
    result = static_cast<int>(call());
  } while (result == -1 && errno == EINTR);
  return result == -1 ? lastError() : std::error_code();
}

// A descriptor that closes itself.
class Descriptor {
 public:
  Descriptor() = default;
  ~Descriptor() {
    if (m_number >= 0) {
      ::close(m_number);
    }
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;

  std::error_code open(const char* stepName, const fs::path& path, int flags, mode_t mode = 0) {
    return step(stepName, [&] { return m_number = ::open(path.c_str(), flags | O_CLOEXEC, mode); });
  }
  int number() const { return m_number; }

 private:
  int m_number = -1;
};

std::error_code sync(const fs::path& path, int flags) {
  Descriptor descriptor;
  if (const auto error = descriptor.open("open to sync", path, flags)) {
    return error;
  }
  return step("sync", [&] { return ::fsync(descriptor.number()); });
}

std::error_code syncFile(const fs::path& path) {
  return sync(path, O_RDONLY);
}

std::error_code syncFolder(const fs::path& folder) {
  return sync(folder, O_RDONLY | O_DIRECTORY);
}

fs::path parentOf(const fs::path& path) {
  return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

std::error_code writeAll(int descriptor, std::string_view bytes) {
  while (!bytes.empty()) {
    ssize_t written = 0;
    if (const auto error = step("write", [&] {
          written = ::write(descriptor, bytes.data(), bytes.size());
          return written < 0 ? -1 : 0;
        })) {
      return error;
    }
    bytes.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

// Writes a new file that nobody reads yet. It is not synced.
std::error_code writeNew(const fs::path& path, std::string_view bytes, mode_t mode) {
  Descriptor descriptor;
  if (const auto error = descriptor.open("create", path, O_WRONLY | O_CREAT | O_EXCL, mode)) {
    return error;
  }
  return writeAll(descriptor.number(), bytes);
}

mode_t modeFor(const fs::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? status.st_mode & 0777U : 0666U;
}

void removeQuietly(const fs::path& path) {
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

// Where a path leads in the end, which need not exist; nothing for links in a circle.
std::optional<fs::path> withoutLinks(fs::path path) {
  std::error_code error;
  for (int links = 0; links < 40; ++links) {
    const fs::path next = fs::read_symlink(path, error);
    if (error) {
      return path;
    }
    path = parentOf(path) / next;
  }
  return std::nullopt;
}

fs::path sibling(const fs::path& path, const char* suffix) {
  return parentOf(path) / ("." + path.filename().string() + suffix);
}

// The new folder while it is written, and afterwards the old one while it is removed.
fs::path newFolderOf(const fs::path& folder) {
  return sibling(folder, ".new");
}

// The old folder for the moment between two renames, on file systems that cannot exchange.
fs::path oldFolderOf(const fs::path& folder) {
  return sibling(folder, ".old");
}

std::error_code renameFolder(const char* stepName, const fs::path& from, const fs::path& to) {
  return step(stepName, [&] { return std::rename(from.c_str(), to.c_str()); });
}

// For file systems that cannot exchange two folders: between the two renames there is no folder of
// that name, and recoverFolder finishes what an interruption leaves.
std::error_code takePlaceInTwoSteps(const fs::path& fresh, const fs::path& folder) {
  const fs::path old = oldFolderOf(folder);
  if (const auto error = renameFolder("set aside", folder, old)) {
    return error;
  }
  if (const auto error = renameFolder("take place", fresh, folder)) {
    std::rename(old.c_str(), folder.c_str());
    return error;
  }
  removeQuietly(old);
  return {};
}

std::error_code takePlace(const fs::path& fresh, const fs::path& folder) {
  std::error_code ignored;
  if (!fs::exists(folder, ignored)) {
    return renameFolder("take place", fresh, folder);
  }
#ifdef RENAME_EXCHANGE
  const auto error = step("exchange", [&] {
    return ::renameat2(AT_FDCWD, fresh.c_str(), AT_FDCWD, folder.c_str(), RENAME_EXCHANGE);
  });
  if (error.value() != EINVAL && error.value() != ENOSYS) {
    return error;
  }
#endif
  return takePlaceInTwoSteps(fresh, folder);
}

std::error_code writeFolder(const fs::path& folder, std::span<const durable::FolderEntry> entries) {
  if (const auto error = step("make folder", [&] { return ::mkdir(folder.c_str(), 0777); })) {
    return error;
  }
  for (const auto& entry : entries) {
    if (const auto error = writeNew(folder / entry.name, entry.bytes, 0666)) {
      return error;
    }
  }
  // Syncing after all are written lets the disk take them together.
  for (const auto& entry : entries) {
    if (const auto error = syncFile(folder / entry.name)) {
      return error;
    }
  }
  return syncFolder(folder);
}

}  // namespace

void durable::setFaultInjector(FaultInjector injector) {
  faultInjector() = std::move(injector);
}

std::optional<std::string> durable::readFile(const fs::path& path, std::size_t limit) {
  Descriptor descriptor;
  struct stat status {};
  // Without O_NONBLOCK a pipe of that name would make this wait for a writer.
  if (descriptor.open("open to read", path, O_RDONLY | O_NONBLOCK | O_NOCTTY) ||
      ::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  std::string bytes;
  constexpr std::size_t blockSize = std::size_t{64} * 1024;
  while (bytes.size() <= limit) {
    const std::size_t before = bytes.size();
    bytes.resize(before + blockSize);
    ssize_t got = 0;
    if (step("read", [&] {
          got = ::read(descriptor.number(), bytes.data() + before, blockSize);
          return got < 0 ? -1 : 0;
        })) {
      return std::nullopt;
    }
    bytes.resize(before + static_cast<std::size_t>(got));
    if (got == 0) {
      return bytes;
    }
  }
  return std::nullopt;
}

std::error_code durable::writeFile(const fs::path& path, std::string_view bytes) {
  const auto resolved = withoutLinks(path);
  if (!resolved) {
    return {ELOOP, std::generic_category()};
  }
  const fs::path& target = *resolved;
  // Not made from the name of the file, so that a name of 255 bytes has room too.
  const fs::path fresh = parentOf(target) / (".nerin-" + std::to_string(::getpid()) + ".new");
  removeQuietly(fresh);
  std::error_code error = writeNew(fresh, bytes, modeFor(target));
  if (!error) {
    error = syncFile(fresh);
  }
  if (!error) {
    error = step("rename", [&] { return std::rename(fresh.c_str(), target.c_str()); });
  }
  if (error) {
    removeQuietly(fresh);
    return error;
  }
  return syncFolder(parentOf(target));
}

std::error_code durable::replaceFolder(const fs::path& folder,
                                       std::span<const FolderEntry> entries) {
  recoverFolder(folder);
  const fs::path fresh = newFolderOf(folder);
  std::error_code error = writeFolder(fresh, entries);
  if (!error) {
    error = takePlace(fresh, folder);
  }
  if (!error) {
    error = syncFolder(parentOf(folder));
  }
  removeQuietly(fresh);
  return error;
}

void durable::recoverFolder(const fs::path& folder) {
  std::error_code error;
  const fs::path fresh = newFolderOf(folder);
  const fs::path old = oldFolderOf(folder);
  if (!fs::exists(folder, error) && fs::exists(old, error)) {
    // Interrupted between the two renames: the new folder was complete by then.
    const fs::path& whole = fs::exists(fresh, error) ? fresh : old;
    LXLogger::warning("recovering the interrupted replacement of " + folder.string());
    std::rename(whole.c_str(), folder.c_str());
  }
  removeQuietly(fresh);
  removeQuietly(old);
}
