#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "Kit/Core/LXLogger.h"
#include "Tests/Support/Scratch.h"

// Every line that is logged while this lives.
class LogLines {
 public:
  LogLines();
  ~LogLines();
  LogLines(const LogLines&) = delete;
  LogLines& operator=(const LogLines&) = delete;

  const std::vector<std::string>& lines() const { return m_lines; }
  bool has(std::string_view part) const { return count(part) > 0; }
  // How many lines contain the part.
  std::size_t count(std::string_view part) const;

 private:
  std::vector<std::string> m_lines;
};

// Runs a command of property_lists.py on a file: "write-xml" and "write-binary" make the file,
// "check" tells whether it holds the same. See there for the others.
bool python(const std::string& command, const std::filesystem::path& file);

// What a failing disk does to a job: the job runs again and again, with its first step failing,
// then its second one, and so on until none is left to fail.
struct FailingDisk {
  int error = 0;             // the errno of the failing step, 0 for one that never returns
  bool staysBroken = false;  // every later step fails as well
  bool canExchange = true;   // whether the file system can exchange two folders in one step

  // What a step that never returns ends in.
  struct PowerCut {};

  // `prepare` comes before each run of `job`, `check` after it. Answers the number of steps.
  int failEachStep(const std::function<void()>& prepare, const std::function<void()>& job,
                   const std::function<void(const std::string& step)>& check) const;
};
