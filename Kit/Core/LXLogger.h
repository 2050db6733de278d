#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

// The line that calls, taken where a parameter of this type has its default.
struct LXSourcePlace {
  const char* file = "";
  int line = 0;

  static constexpr LXSourcePlace current(const char* file = __builtin_FILE(),
                                         int line = __builtin_LINE()) {
    return {file, line};
  }
};

// The program's log, for one thread. Every line carries the file and line that wrote it. Until a
// file is set, lines go nowhere, except to the observer of a test.
class LXLogger {
 public:
  enum class Level { Debug, Warning, Error };
  using Observer = std::function<void(Level, std::string_view line)>;

  static void debug(std::string_view line, LXSourcePlace where = LXSourcePlace::current());
  static void warning(std::string_view line, LXSourcePlace where = LXSourcePlace::current());
  static void error(std::string_view line, LXSourcePlace where = LXSourcePlace::current());

  // Lines below this level are dropped. Debug at first.
  static void setLevel(Level level);
  // Logs into this file, rotated at 1 MiB with two old ones kept; an empty path stops it. A file
  // that cannot be opened is passed over: no log is no reason to stop.
  static void setFile(const std::filesystem::path& file);
  // Sees every line, whatever the level; an empty function ends it.
  static void setObserver(Observer observer);
};
