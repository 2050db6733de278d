#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CommandLine/CommandError.h"

// The grammar of the command line. Only Grammar.cpp includes the parser library, because it is slow
// to compile.
namespace CLI {
class App;
class Option;
}  // namespace CLI

// An option or an argument.
class GrammarOption {
 public:
  explicit GrammarOption(CLI::Option* option) : m_option(option) {}

  GrammarOption& required();
  // The name of its value in the help.
  GrammarOption& typeName(const std::string& name);
  GrammarOption& oneOf(const std::vector<std::string>& values);

 private:
  CLI::Option* m_option;
};

// A command, a group of commands, or the whole program.
class GrammarCommand {
 public:
  explicit GrammarCommand(CLI::App* command) : m_command(command) {}

  // Adds a command with an example for its help.
  GrammarCommand addCommand(const std::string& name, const std::string& description,
                            const std::string& example);
  // Makes this a group: the user must give one of its commands.
  void requireCommand();
  // Parsing fills the value. Supports int, std::string, std::optional of both, and
  // std::vector<std::string>.
  template <typename Value>
  GrammarOption addOption(const std::string& name, Value& value,
                          const std::string& description = "");
  void addFlag(const std::string& name, bool& value, const std::string& description);
  // Called after parsing a line with this command.
  void onGiven(std::function<void()> action);

 protected:
  CLI::App* m_command;
};

class Grammar : public GrammarCommand {
 public:
  Grammar(const std::string& description, const std::string& name, const std::string& footer);
  ~Grammar();
  Grammar(const Grammar&) = delete;
  Grammar& operator=(const Grammar&) = delete;

  void addVersion(const std::string& version);
  // All commands, arguments and options, in JSON: what completion and the manual page are made of.
  std::string describe() const;
  // Parses the line. Returns an exit code if nothing is left to do, after help or a usage error.
  // Throws CommandError for an unknown command.
  std::optional<ExitCode> parse(int argc, const char* const* argv);

 private:
  std::unique_ptr<CLI::App> m_program;
};
