#pragma once

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

// How to run the program, except its arguments. Its environment has only these variables and the
// few that every program needs, none of the tester's.
struct RunSettings {
  std::filesystem::path home;
  std::map<std::string, std::string> environment;
  std::filesystem::path workingFolder = "/";
  // The maximum size of a file in bytes, as on a full disk.
  std::optional<std::uint64_t> fileSizeLimit;
  // Makes the program obey permissions even when the tests run as root.
  bool obeysPermissions = false;
  bool hasTerminal = false;  // for its standard error
  bool hasOutput = true;     // false: its standard output is closed
};

struct RunResult {
  // The exit code, or a negative value if a signal ended the program.
  int exitCode = -SIGKILL;
  std::string output;
  std::string errors;
};

// Runs the real nerinctl with standard input closed and waits for it. Kills it after a minute.
RunResult runProgram(const std::vector<std::string>& arguments, const RunSettings& settings);
