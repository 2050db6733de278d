#pragma once

#include <stdexcept>
#include <string>

// The exit codes of the program.
enum class ExitCode { Done = 0, Failed = 1, Usage = 2, NoMouse = 3, NotFound = 4 };

// Ends a command with one line for the user.
class CommandError : public std::runtime_error {
 public:
  CommandError(ExitCode code, const std::string& message)
      : std::runtime_error(message), m_code(code) {}
  ExitCode code() const { return m_code; }

 private:
  ExitCode m_code;
};
