#include "CommandLine/CommandLine.h"

#include <iostream>
#include <string_view>

#include "CommandLine/Grammar.h"

namespace {

constexpr const char* exitCodes =
    "Exit codes: 0 done, 1 failed, 2 usage, 3 no mouse, 4 no such profile, macro or slot.\n"
    "Slots are 1 to 10, as on the tabs.";

}  // namespace

std::optional<ExitCode> CommandLine::parse(int argc, const char* const* argv) {
  Grammar program(
      "Configures the NERIN gaming mouse: its ten slots, profiles, macros and settings.",
      "nerinctl", exitCodes);
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

  addSlotCommands(program, chosen);
  addProfileCommands(program, chosen);
  addShowCommand(program, chosen);
  addSettingCommands(program, chosen);
  addMacroCommands(program, chosen);
  addBackupCommands(program, chosen);
  addCompanionCommands(program, chosen);
  // For the build, which makes completion and the manual page of it.
  if (argc == 2 && std::string_view(argv[1]) == "--grammar") {
    std::cout << program.describe() << '\n';
    return ExitCode::Done;
  }
  return program.parse(argc, argv);
}
