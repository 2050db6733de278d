#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

// The file that keeps the memory of a virtual mouse: eight bytes "NERINMEM", the version as 32 bits
// little-endian, four zeros, then the memory. Held open and locked as long as this lives, so that
// no two mice share one memory.
class MouseMemoryFile {
 public:
  // An existing file is read into `contents`; a missing one is made from it and is there whole or
  // not at all. Throws std::system_error when the file can be neither opened for reading and
  // writing nor made, or when it is in use (EWOULDBLOCK); std::runtime_error when it is no memory
  // of a mouse, which leaves it untouched.
  MouseMemoryFile(const std::filesystem::path& path, std::span<std::uint8_t> contents);
  ~MouseMemoryFile();
  MouseMemoryFile(const MouseMemoryFile&) = delete;
  MouseMemoryFile& operator=(const MouseMemoryFile&) = delete;

  // Writes bytes of the memory, `offset` counted from its start. Throws std::system_error.
  void write(std::size_t offset, std::span<const std::uint8_t> bytes);

 private:
  bool openExisting();
  bool createFrom(std::span<const std::uint8_t> contents);
  void load(std::span<std::uint8_t> contents) const;
  void closeFile();

  std::filesystem::path m_path;
  int m_descriptor = -1;
};
