#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

// A program that a test starts and whose output and errors it reads. Killed at the end of the test
// at the latest.
class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string>& command);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void send(int signal) const;
  // The output since the last read; empty after `limit`, or at the end of the output.
  std::string read(std::chrono::milliseconds limit);
  // The exit code; no value if it is still running after `limit` or a signal ended it.
  std::optional<int> exitCode(std::chrono::milliseconds limit);

 private:
  pid_t m_process = -1;
  int m_output = -1;
};
