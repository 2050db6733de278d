#pragma once

#include <chrono>
#include <cstddef>
#include <filesystem>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

// Replaces files so that each is completely the old or completely the new one after any
// interruption.
namespace durable {

// The default limit of readFile. No file of this program is larger.
inline constexpr std::size_t maximumFileSize = std::size_t{16} << 20U;

// The whole file. Nothing if it cannot be read, is larger than `limit` bytes or is not a regular
// file: a device has no end, and a pipe may never begin.
std::optional<std::string> readFile(const std::filesystem::path& path,
                                    std::size_t limit = maximumFileSize);

// Writes a new file beside `path`, syncs it and moves it to `path`. On an error the old file is
// untouched and nothing else is left behind. Keeps the permissions, and a symbolic link stays a
// link. It is an error if `path` exists and is not a regular file.
[[nodiscard]] std::error_code writeFile(const std::filesystem::path& path, std::string_view bytes);

// Removes what a killed writeFile left in the folder, once it is an hour old.
void sweepTemporaries(const std::filesystem::path& folder);

// One file of a folder that replaceFolder writes.
struct FolderEntry {
  std::string name;  // one path component
  std::string bytes;
};

// Makes the folder contain exactly these files. Writes and syncs a new folder beside it, which then
// replaces the old one in one step. Reuses existing files with the same bytes. On an error the old
// folder is untouched. Waits up to `limit` for another process that is replacing the same folder,
// then fails with device_or_resource_busy.
[[nodiscard]] std::error_code replaceFolder(
    const std::filesystem::path& folder, std::span<const FolderEntry> entries,
    std::chrono::milliseconds limit = std::chrono::milliseconds(200));

// Cleans up after an interrupted replaceFolder: the folder is then either the old or the new one,
// and nothing of the other is left. Call it before reading the folder. Does nothing while another
// process is replacing the folder.
void recoverFolder(const std::filesystem::path& folder);

// Makes `copy` a folder with the files of `folder`, linked where the file system can do that. It is
// complete or, on an error, not there; it is not synced. Other things in the folder are left out.
[[nodiscard]] std::error_code copyFolder(const std::filesystem::path& folder,
                                         const std::filesystem::path& copy);

// For tests: called with the name of each step before the step touches the disk. A nonzero result
// is the errno with which the step fails. An empty function turns this off.
using FaultInjector = std::function<int(const char* step)>;
void setFaultInjector(FaultInjector injector);

}  // namespace durable
