#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <sys/resource.h>

// A folder for one test, which disappears with it.
class Scratch {
 public:
  // `parent` is the folder in which it is made; the system's folder for temporary files if empty.
  explicit Scratch(const std::filesystem::path& parent = {});
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::filesystem::path& folder() const { return m_folder; }
  std::filesystem::path operator/(const std::string& name) const { return m_folder / name; }

 private:
  std::filesystem::path m_folder;
};

// Writes a file, with the folders above it.
void writeText(const std::filesystem::path& path, std::string_view text);
// The bytes of a file; empty if there is none.
std::string textOfFile(const std::filesystem::path& path);
// The names of what the folder holds, hidden files too, in byte order.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

// While this lives, no file of the process can grow beyond the size. A write that tries fails, as
// it does on a full disk.
class FileSizeLimit {
 public:
  explicit FileSizeLimit(rlim_t bytes);
  ~FileSizeLimit();
  FileSizeLimit(const FileSizeLimit&) = delete;
  FileSizeLimit& operator=(const FileSizeLimit&) = delete;

 private:
  void (*m_handler)(int);
  rlimit m_before{};
};
