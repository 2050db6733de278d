#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "Kit/Core/LXLogger.h"

// A temporary folder for one test.
class Scratch {
 public:
  Scratch();
  ~Scratch();
  Scratch(const Scratch&) = delete;
  Scratch& operator=(const Scratch&) = delete;

  const std::filesystem::path& folder() const { return m_folder; }
  std::filesystem::path operator/(const std::string& name) const { return m_folder / name; }

 private:
  std::filesystem::path m_folder;
};

void putFile(const std::filesystem::path& path, std::string_view bytes);
std::string contentsOf(const std::filesystem::path& path);
// The names of the folder's entries, including hidden ones, in byte order.
std::vector<std::string> namesIn(const std::filesystem::path& folder);

// Collects all log lines while it exists.
class LogLines {
 public:
  LogLines();
  ~LogLines();
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  const std::vector<std::string>& lines() const { return m_lines; }
  bool has(std::string_view part) const;

 private:
  std::vector<std::string> m_lines;
};

// Runs a command of property_lists.py on a file: "write-xml" and "write-binary" create it, "check"
// compares its content. The script describes the other commands.
bool python(const std::string& command, const std::filesystem::path& file);

// Runs a job again and again on a failing disk: first its first step fails, then its second one,
// and so on until no step is left.
struct FailingDisk {
  int error = 0;             // the errno of the failing step; 0 for a step that never returns
  bool staysBroken = false;  // every later step fails, too
  bool canExchange = true;   // whether the file system can exchange two folders in one step

  // Thrown by a step that never returns.
  struct PowerCut {};

  // Calls `prepare` before each run of `job` and `check` after it. Returns the number of steps.
  int failEachStep(const std::function<void()>& prepare, const std::function<void()>& job,
                   const std::function<void(const std::string& step)>& check) const;
};
