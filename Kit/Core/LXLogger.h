#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

// The calling line, captured where a parameter of this type has its default.
struct LXSourcePlace {
  const char* file = "";
  int line = 0;

  static constexpr LXSourcePlace current(const char* file = __builtin_FILE(),
                                         int line = __builtin_LINE()) {
    return {file, line};
  }
};

// The program's log, for one thread. Every line shows its source file and line number. Until a file
// is set, lines go nowhere except to the observer. No line may hold what the user typed: no keys of
// macros or buttons.
class LXLogger {
 public:
  enum class Level { Debug, Warning, Error };
  using Observer = std::function<void(Level, std::string_view line)>;

  static void debug(std::string_view line, LXSourcePlace where = LXSourcePlace::current());
  static void warning(std::string_view line, LXSourcePlace where = LXSourcePlace::current());
  static void error(std::string_view line, LXSourcePlace where = LXSourcePlace::current());

  // Lines below this level are dropped. The initial level is Debug.
  static void setLevel(Level level);
  // Logs to this file, rotated at 1 MiB with two old ones kept, readable by the user alone; an
  // empty path stops logging. A line is in the file when the call returns, so that a kill loses
  // none. Ignores a file that cannot be opened, because a missing log is no reason to stop.
  static void setFile(const std::filesystem::path& file);
  // Receives every line, whatever its level: for tests, and for a program that keeps no log; an
  // empty function turns this off.
  static void setObserver(Observer observer);
};
