#pragma once

#include <optional>

#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/Session.h"

// What the user asks for, read from the words of the command line.
struct CommandLine {
  SessionOptions options;
  bool isJson = false;
  Command chosen;

  // Returns an exit code if nothing is left to do, after help or a usage error; nothing is run.
  // Throws CommandError for an unknown command.
  std::optional<ExitCode> parse(int argc, const char* const* argv);
};
