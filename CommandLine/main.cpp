#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "CommandLine/CommandError.h"
#include "CommandLine/CommandLine.h"
#include "CommandLine/Output.h"
#include "CommandLine/Session.h"
#include "CommandLine/Warnings.h"

namespace {

// A file that is opened while a standard stream is closed would get its descriptor and its output.
void occupyStandardStreams() {
  int descriptor = 0;
  do {
    descriptor = ::open("/dev/null", O_RDONLY);
  } while (descriptor >= STDIN_FILENO && descriptor <= STDERR_FILENO);
  if (descriptor > STDERR_FILENO) {
    ::close(descriptor);
  }
}

// Only the program's own text has line breaks; printable() removes all others.
void complain(const std::string& message) {
  std::istringstream lines("nerinctl: " + message);
  for (std::string line; std::getline(lines, line);) {
    std::cerr << printable(line) << '\n';
  }
}

int run(int argc, char** argv) {
  CommandLine line;
  if (const auto code = line.parse(argc, argv)) {
    return static_cast<int>(*code);
  }
  Session session;
  session.output.setJson(line.isJson);
  session.begin(line.options);
  line.chosen(session);
  session.end();
  return static_cast<int>(ExitCode::Done);
}

}  // namespace

int main(int argc, char** argv) {
  occupyStandardStreams();
  const Warnings warnings;
  std::string message;
  int code = static_cast<int>(ExitCode::Failed);
  try {
    code = run(argc, argv);
  } catch (const CommandError& error) {
    message = error.what();
    code = static_cast<int>(error.code());
  } catch (const std::exception& error) {
    message = error.what();
  }
  warnings.print(message);
  if (!message.empty()) {
    complain(message);
  }
  return code;
}
