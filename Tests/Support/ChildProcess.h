#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include <sys/types.h>

// A program that a test started, with its standard output and error read by the test. It does not
// outlive the test.
class ChildProcess {
 public:
  explicit ChildProcess(const std::vector<std::string>& command);
  ~ChildProcess();
  ChildProcess(const ChildProcess&) = delete;
  ChildProcess& operator=(const ChildProcess&) = delete;

  void send(int signal) const;
  // What it wrote since the last read; empty after `limit`, or when it will write no more.
  std::string read(std::chrono::milliseconds limit);
  // Its exit code, nothing when it is still running after `limit` or died by a signal.
  std::optional<int> exitCode(std::chrono::milliseconds limit);

 private:
  pid_t m_process = -1;
  int m_output = -1;
};
