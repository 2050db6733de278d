#pragma once

#include <array>
#include <cstdint>
#include <filesystem>

// What a mouse knows only while it has power, in a file beside its memory, so that all programs
// with that memory talk to one mouse: a long read that one of them announces is answered to the
// next that reads. Read and written in a turn at the memory. A file that cannot be used is no
// error: each program then has such knowledge of its own.
class MousePowerFile {
 public:
  using State = std::array<std::uint8_t, 16>;

  MousePowerFile() = default;
  ~MousePowerFile();
  MousePowerFile(const MousePowerFile&) = delete;
  MousePowerFile& operator=(const MousePowerFile&) = delete;

  // The file is made by the first write.
  void keepIn(const std::filesystem::path& file) { m_path = file; }
  // Leaves `state` as it is if there is no such file.
  void read(State& state);
  void write(const State& state);

 private:
  bool open(int flags);

  std::filesystem::path m_path;
  int m_descriptor = -1;
};
