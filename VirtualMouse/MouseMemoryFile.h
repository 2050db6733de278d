#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>

// The file that keeps the memory of a virtual mouse: eight bytes "NERINMEM", the version as 32 bits
// little-endian, four zeros, then the memory. Several processes can have it open; they take turns.
class MouseMemoryFile {
 public:
  // Reads an existing file into `contents`. Creates a missing one from `contents`, completely or
  // not at all. Throws std::system_error if the file cannot be opened for reading and writing,
  // cannot be created, or stays in use for a second (EWOULDBLOCK); std::runtime_error if it is not
  // the memory of a mouse, which leaves it untouched.
  MouseMemoryFile(const std::filesystem::path& path, std::span<std::uint8_t> contents);
  ~MouseMemoryFile();
  MouseMemoryFile(const MouseMemoryFile&) = delete;
  MouseMemoryFile& operator=(const MouseMemoryFile&) = delete;

  // Begins and ends a turn, between which no other process reads or writes the memory. The first
  // waits up to a second and fills `contents`; it throws std::system_error, and then no turn has
  // begun.
  void begin(std::span<std::uint8_t> contents);
  void end();

  // Writes bytes of the memory at `offset` from its start. Throws std::system_error.
  void write(std::size_t offset, std::span<const std::uint8_t> bytes);

 private:
  bool openExisting();
  bool createFrom(std::span<const std::uint8_t> contents);
  void load(std::span<std::uint8_t> contents) const;
  void lock() const;
  void closeFile();

  std::filesystem::path m_path;
  int m_descriptor = -1;
};
