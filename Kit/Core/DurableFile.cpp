#include "Kit/Core/DurableFile.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <random>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "Kit/Core/FileLock.h"
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

// Runs one step that touches the disk. Like a system call, `call` returns -1 with errno.
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

// Some file systems cannot sync a folder and do not need to.
std::error_code syncFolder(const fs::path& folder) {
  const std::error_code error = sync(folder, O_RDONLY | O_DIRECTORY);
  const bool cannot = error == std::errc::invalid_argument || error == std::errc::not_supported ||
                      error == std::errc::bad_file_descriptor;
  return cannot ? std::error_code() : error;
}

// The new version is already in place, so a failed sync undoes nothing.
void syncAfterwards(const fs::path& folder) {
  if (const auto error = syncFolder(folder)) {
    LXLogger::warning(folder.string() + " was not synced: " + error.message());
  }
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

// Writes a new file that no reader knows yet, without syncing it.
std::error_code writeNew(const fs::path& path, std::string_view bytes) {
  Descriptor descriptor;
  if (const auto error = descriptor.open("create", path, O_WRONLY | O_CREAT | O_EXCL, 0666)) {
    return error;
  }
  return writeAll(descriptor.number(), bytes);
}

// The permissions of the file to be replaced; nothing if there is none.
std::optional<mode_t> modeOf(const fs::path& path) {
  struct stat status {};
  return ::stat(path.c_str(), &status) == 0 ? std::optional(status.st_mode & 07777U) : std::nullopt;
}

// open and mkdir apply the umask, which must not change the mode of an existing file.
void keepMode(const fs::path& fresh, const fs::path& old) {
  if (const auto mode = modeOf(old)) {
    static_cast<void>(::chmod(fresh.c_str(), *mode));
  }
}

void removeQuietly(const fs::path& path) {
  std::error_code ignored;
  fs::remove_all(path, ignored);
}

// Like removeQuietly, for a folder of ours: one that was read-only, as the folder that it replaced,
// cannot be emptied before.
void removeFolder(const fs::path& folder) {
  std::error_code ignored;
  if (fs::is_directory(fs::symlink_status(folder, ignored))) {
    fs::permissions(folder, fs::perms::owner_all, fs::perm_options::add, ignored);
  }
  removeQuietly(folder);
}

// Where a path finally leads, whether or not that exists; nothing for a cycle of links.
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

constexpr std::string_view temporaryPrefix = ".nerin-";
constexpr std::string_view temporarySuffix = ".new";

// Unique, and independent of the file's name, so that a name of 255 bytes works too.
std::string temporaryName() {
  std::random_device random;
  return std::string(temporaryPrefix) + std::to_string(::getpid()) + "-" +
         std::to_string(random()) + std::string(temporarySuffix);
}

fs::path lockOf(const fs::path& folder) {
  return sibling(folder, ".lock");
}

// The new folder while it is written, then the old one while it is removed.
fs::path newFolderOf(const fs::path& folder) {
  return sibling(folder, ".new");
}

// The old folder between the two renames, on file systems that cannot exchange folders.
fs::path oldFolderOf(const fs::path& folder) {
  return sibling(folder, ".old");
}

// A folder that cannot be removed, because it holds what belongs to someone else, must not be in
// the way of later saves for ever.
constexpr std::string_view leftoverSuffix = ".left-";

bool isFree(const fs::path& path) {
  std::error_code error;
  return fs::symlink_status(path, error).type() == fs::file_type::not_found;
}

// Frees a path beside the folder. What stays there in spite of it is told by the next step.
void clearAway(const fs::path& path) {
  removeFolder(path);
  for (int n = 1; n < 1000 && !isFree(path); ++n) {
    fs::path leftover = path;
    leftover += std::string(leftoverSuffix) + std::to_string(n);
    if (isFree(leftover) && std::rename(path.c_str(), leftover.c_str()) != 0) {
      return;
    }
  }
}

// Perhaps now they can be removed.
void sweepLeftovers(const fs::path& folder) {
  const std::string start = "." + folder.filename().string() + ".";
  std::vector<fs::path> leftovers;
  std::error_code error;
  for (fs::directory_iterator entry(parentOf(folder), error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (name.starts_with(start) && name.find(leftoverSuffix) != std::string::npos) {
      leftovers.push_back(entry->path());
    }
  }
  for (const fs::path& leftover : leftovers) {
    removeFolder(leftover);
  }
}

std::error_code renameFolder(const char* stepName, const fs::path& from, const fs::path& to) {
  return step(stepName, [&] { return std::rename(from.c_str(), to.c_str()); });
}

// For file systems that cannot exchange two folders. Between the two renames the folder is missing;
// recoverFolder completes an interrupted replacement.
std::error_code takePlaceInTwoSteps(const fs::path& fresh, const fs::path& folder) {
  const fs::path old = oldFolderOf(folder);
  if (const auto error = renameFolder("set aside", folder, old)) {
    return error;
  }
  if (const auto error = renameFolder("take place", fresh, folder)) {
    std::rename(old.c_str(), folder.c_str());
    return error;
  }
  removeFolder(old);
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

// Restores what an interrupted replacement left beside the folder, and removes the rest. Removes
// nothing unless the folder certainly exists.
std::error_code finishInterrupted(const fs::path& folder) {
  std::error_code error;
  const fs::path fresh = newFolderOf(folder);
  const fs::path old = oldFolderOf(folder);
  const auto status = fs::status(folder, error);
  if (status.type() == fs::file_type::not_found && fs::exists(old, error)) {
    // Interrupted between the two renames; the new folder was already complete.
    LXLogger::warning("recovering the interrupted replacement of " + folder.string());
    if (const auto failed =
            renameFolder("recover", fs::exists(fresh, error) ? fresh : old, folder)) {
      LXLogger::error(folder.string() + " was not recovered: " + failed.message());
      return failed;
    }
  } else if (status.type() != fs::file_type::not_found && !fs::is_directory(status)) {
    return error ? error : std::make_error_code(std::errc::not_a_directory);
  }
  clearAway(fresh);
  clearAway(old);
  sweepLeftovers(folder);
  return {};
}

// Links an unchanged file into the new folder, because writing it again and freeing the old one is
// what makes saving a large library slow. False if it could not be linked.
bool linkUnchanged(const fs::path& folder, const fs::path& oldFolder,
                   const durable::FolderEntry& entry) {
  const fs::path old = oldFolder / entry.name;
  std::error_code ignored;
  return fs::is_regular_file(fs::symlink_status(old, ignored)) &&
         durable::readFile(old, entry.bytes.size()) == entry.bytes &&
         !step("link", [&] { return ::link(old.c_str(), (folder / entry.name).c_str()); });
}

std::error_code writeFolder(const fs::path& folder, const fs::path& oldFolder,
                            std::span<const durable::FolderEntry> entries) {
  if (const auto error = step("make folder", [&] { return ::mkdir(folder.c_str(), 0777); })) {
    return error;
  }
  std::vector<fs::path> written;
  for (const auto& entry : entries) {
    if (linkUnchanged(folder, oldFolder, entry)) {
      continue;
    }
    written.push_back(folder / entry.name);
    if (const auto error = writeNew(written.back(), entry.bytes)) {
      return error;
    }
  }
  // Syncing after all files are written lets the disk handle them together.
  for (const auto& file : written) {
    if (const auto error = syncFile(file)) {
      return error;
    }
  }
  return syncFolder(folder);
}

std::error_code linkOrCopy(const fs::path& file, const fs::path& target) {
  if (!step("link a copy", [&] { return ::link(file.c_str(), target.c_str()); })) {
    return {};
  }
  const auto bytes = durable::readFile(file);
  return bytes ? writeNew(target, *bytes) : std::make_error_code(std::errc::io_error);
}

std::error_code fillCopy(const fs::path& folder, const fs::path& copy) {
  std::error_code error = step("make a copy", [&] { return ::mkdir(copy.c_str(), 0777); });
  if (error) {
    return error;
  }
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    if (!fs::is_regular_file(entry->symlink_status(ignored))) {
      continue;
    }
    if (const auto failed = linkOrCopy(entry->path(), copy / entry->path().filename())) {
      return failed;
    }
  }
  return error;
}

}  // namespace

void durable::setFaultInjector(FaultInjector injector) {
  faultInjector() = std::move(injector);
}

std::optional<std::string> durable::readFile(const fs::path& path, std::size_t limit) {
  Descriptor descriptor;
  struct stat status {};
  // Without O_NONBLOCK, opening a pipe would wait for a writer.
  if (descriptor.open("open to read", path, O_RDONLY | O_NONBLOCK | O_NOCTTY) ||
      ::fstat(descriptor.number(), &status) != 0 || !S_ISREG(status.st_mode)) {
    return std::nullopt;
  }
  std::string bytes;
  constexpr std::size_t blockSize = std::size_t{64} * 1024;
  // With the block that finds the end.
  bytes.reserve(std::min(static_cast<std::size_t>(status.st_size), limit) + blockSize);
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
  const auto leadsTo = withoutLinks(path);
  if (!leadsTo) {
    return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  }
  const fs::path& target = *leadsTo;
  std::error_code ignored;
  if (fs::exists(target, ignored) && !fs::is_regular_file(target, ignored)) {
    // A device or a folder must not be replaced.
    return std::make_error_code(fs::is_directory(target, ignored) ? std::errc::is_a_directory
                                                                  : std::errc::invalid_argument);
  }
  const fs::path fresh = parentOf(target) / temporaryName();
  std::error_code error = writeNew(fresh, bytes);
  if (!error) {
    keepMode(fresh, target);
    error = syncFile(fresh);
  }
  if (!error) {
    error = step("rename", [&] { return std::rename(fresh.c_str(), target.c_str()); });
  }
  if (error) {
    removeQuietly(fresh);
    return error;
  }
  syncAfterwards(parentOf(target));
  return {};
}

void durable::sweepTemporaries(const fs::path& folder) {
  std::error_code error;
  const auto now = fs::file_time_type::clock::now();
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code ignored;
    const std::string name = entry->path().filename().string();
    const bool isOurs = name.starts_with(temporaryPrefix) && name.ends_with(temporarySuffix);
    // Another process may still be writing a recent file.
    if (isOurs && now - entry->last_write_time(ignored) > std::chrono::hours(1)) {
      removeQuietly(entry->path());
    }
  }
}

std::error_code durable::replaceFolder(const fs::path& folder, std::span<const FolderEntry> entries,
                                       std::chrono::milliseconds limit) {
  const auto leadsTo = withoutLinks(folder);
  if (!leadsTo) {
    return std::make_error_code(std::errc::too_many_symbolic_link_levels);
  }
  const fs::path& target = *leadsTo;
  const auto lock = FileLock::acquire(lockOf(target), limit);
  if (!lock) {
    return std::make_error_code(std::errc::device_or_resource_busy);
  }
  if (const auto error = finishInterrupted(target)) {
    return error;
  }
  const fs::path fresh = newFolderOf(target);
  std::error_code error = writeFolder(fresh, target, entries);
  if (!error) {
    keepMode(fresh, target);
    error = takePlace(fresh, target);
  }
  if (!error) {
    syncAfterwards(parentOf(target));
  }
  removeFolder(fresh);
  return error;
}

std::error_code durable::copyFolder(const fs::path& folder, const fs::path& copy) {
  const fs::path fresh = parentOf(copy) / temporaryName();
  std::error_code error = fillCopy(folder, fresh);
  if (!error) {
    error = renameFolder("name a copy", fresh, copy);
  }
  if (error) {
    removeFolder(fresh);
  }
  return error;
}

void durable::recoverFolder(const fs::path& folder) {
  const auto target = withoutLinks(folder);
  if (!target) {
    return;
  }
  // Another holder of the lock is at work there and will leave the folder complete.
  if (const auto lock = FileLock::acquire(lockOf(*target), std::chrono::milliseconds(0))) {
    finishInterrupted(*target);
  }
}
