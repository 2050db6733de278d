#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// Files that are either the old one or the new one, whole, whatever interrupts the writing.
namespace durable {

// What readFile reads at the most unless told otherwise; more is no file of ours.
inline constexpr std::size_t maximumFileSize = std::size_t{16} << 20U;

// The whole file, or nothing when it cannot be read, is larger than `limit` bytes or is no ordinary
// file: a device has no end, and a pipe may never begin.
std::optional<std::string> readFile(const std::filesystem::path& path,
                                    std::size_t limit = maximumFileSize);

// Writes the bytes to a new file beside `path`, syncs it, and puts it in the place of `path`. On
// an error nothing is left behind and the old file is untouched. Its permissions are kept, and a
// symbolic link stays one. What is there and is no regular file is an error.
[[nodiscard]] std::error_code writeFile(const std::filesystem::path& path, std::string_view bytes);

// Removes what a kill left of writeFile in the folder, once it is an hour old.
void sweepTemporaries(const std::filesystem::path& folder);

// One file of a folder that replaceFolder writes.
struct FolderEntry {
  std::string name;  // one path component
  std::string bytes;
};

// Makes the folder hold exactly these files: writes and syncs a new folder beside it and lets it
// take the place of the old one in one step. A file that is there already with the same bytes is
// taken over as it is. On an error the old folder is untouched. Another process that replaces the
// same folder is waited for.
[[nodiscard]] std::error_code replaceFolder(const std::filesystem::path& folder,
                                            std::span<const FolderEntry> entries);

// Cleans up after a replaceFolder that was interrupted: the folder is the old one or the new one
// afterwards, and nothing of the other is left. Call it before the folder is read. While another
// process replaces the folder, it is left alone.
void recoverFolder(const std::filesystem::path& folder);

// For tests: called before each step that touches the disk, with the step's name; a non-zero
// answer is the errno with which that step fails. An empty function ends it.
using FaultInjector = std::function<int(const char* step)>;
void setFaultInjector(FaultInjector injector);

}  // namespace durable
