#pragma once

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <vector>

// How the program is run, apart from its arguments. Its environment holds what is named here and
// the few variables that every program needs, nothing of the tester's own.
struct RunSettings {
  std::filesystem::path home;
  std::map<std::string, std::string> environment;
  std::filesystem::path workingFolder = "/";
  // Files cannot grow beyond this many bytes, as on a disk that is full.
  std::optional<std::uint64_t> fileSizeLimit;
  // Permissions count for the program even when the tests run as root.
  bool obeysPermissions = false;
  bool hasTerminal = false;  // as its standard error
  bool hasOutput = true;     // or else standard output is closed
};

struct RunResult {
  // As the program ended by itself; less than 0 when a signal ended it.
  int exitCode = -SIGKILL;
  std::string output;
  std::string errors;
};

// Runs the real nerinctl with its standard input closed, and waits for it; a run that takes longer
// than a minute is killed.
RunResult runProgram(const std::vector<std::string>& arguments, const RunSettings& settings);
