#include <cstdlib>
#include <exception>
#include <iostream>
#include <sstream>
#include <string>

#include <fcntl.h>
#include <unistd.h>

#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/Session.h"
#include "CommandLine/Warnings.h"
#include "Kit/Core/LXPlatform.h"

namespace {

constexpr const char* exitCodes =
    "Exit codes: 0 done, 1 failed, 2 usage, 3 no mouse, 4 no such profile, macro or slot.\n"
    "Slots are 1 to 10, as on the tabs.";

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
  Grammar program(
      "Configures the NERIN gaming mouse: its ten slots, profiles, macros and settings.",
      "nerinctl", exitCodes);
  SessionOptions options;
  bool isJson = false;
  program
      .addOption("--virtual", options.virtualFile,
                 "Use a virtual mouse whose memory is this file, made when missing, or one that "
                 "answers as in this report or trace")
      .typeName("FILE");
  program
      .addOption("--scenario", options.scenario,
                 "How the virtual mouse misbehaves: healthy, absent, unplugged-after=N, slow, "
                 "short, random, garbage")
      .typeName("NAME");
  program.addOption("--trace", options.traceFile, "Write every transfer and pause to this file")
      .typeName("FILE");
  program.addFlag("--json", isJson, "Answer in JSON");
  program.addVersion(NERIN_VERSION);
  program.requireCommand();

  Command chosen;
  addSlotCommands(program, chosen);
  addProfileCommands(program, chosen);
  addShowCommand(program, chosen);
  addSettingCommands(program, chosen);
  addMacroCommands(program, chosen);
  addBackupCommands(program, chosen);
  addCompanionCommands(program, chosen);
  if (const auto code = program.parse(argc, argv)) {
    return static_cast<int>(*code);
  }

  Session session;
  session.output.setJson(isJson);
  session.begin(options);
  chosen(session);
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
