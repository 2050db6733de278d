#include <cstdlib>
#include <exception>
#include <iostream>

#include <CLI/CLI.hpp>

#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/Session.h"
#include "Kit/Core/LXPlatform.h"

namespace {

constexpr const char* exitCodes =
    "Exit codes: 0 done, 1 failed, 2 usage, 3 no mouse, 4 no such profile, macro or slot.\n"
    "Slots are 1 to 10, as on the tabs.";

int run(int argc, char** argv) {
  CLI::App program(
      "Configures the NERIN gaming mouse: its ten slots, profiles, macros and settings.",
      "nerinctl");
  SessionOptions options;
  bool isJson = false;
  program
      .add_option("--virtual", options.virtualFile,
                  "Use a virtual mouse whose memory is this file, made when missing")
      ->type_name("FILE");
  program
      .add_option("--scenario", options.scenario,
                  "How the virtual mouse misbehaves: healthy, absent, unplugged-after=N, slow, "
                  "short, random, garbage")
      ->type_name("NAME");
  program.add_option("--trace", options.traceFile, "Write every transfer and pause to this file")
      ->type_name("FILE");
  program.add_flag("--json", isJson, "Answer in JSON");
  program.set_version_flag("--version", NERIN_VERSION);
  program.require_subcommand(1);
  program.footer(exitCodes);

  Command chosen;
  addSlotCommands(program, chosen);
  addProfileCommands(program, chosen);
  addShowCommand(program, chosen);
  addSettingCommands(program, chosen);
  addMacroCommands(program, chosen);
  addBackupCommands(program, chosen);
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    const int code = program.exit(error);
    return static_cast<int>(code == 0 ? ExitCode::Done : ExitCode::Usage);
  }

  Session session;
  session.output.setJson(isJson);
  session.begin(options);
  chosen(session);
  return static_cast<int>(ExitCode::Done);
}

}  // namespace

int main(int argc, char** argv) {
  ExitCode code = ExitCode::Failed;
  try {
    return run(argc, argv);
  } catch (const CommandError& error) {
    std::cerr << "nerinctl: " << error.what() << '\n';
    code = error.code();
  } catch (const std::exception& error) {
    std::cerr << "nerinctl: " << error.what() << '\n';
  }
  return static_cast<int>(code);
}
