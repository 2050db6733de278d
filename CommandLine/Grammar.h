#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "CommandLine/CommandError.h"

// What may stand on the command line. The library that reads it is expensive to compile, so only
// Grammar.cpp knows it.
namespace CLI {
class App;
class Option;
}  // namespace CLI

// An option, or a word that stands alone.
class GrammarOption {
 public:
  explicit GrammarOption(CLI::Option* option) : m_option(option) {}

  GrammarOption& required();
  // What the help calls its value.
  GrammarOption& typeName(const std::string& name);
  GrammarOption& oneOf(const std::vector<std::string>& values);

 private:
  CLI::Option* m_option;
};

// A command, a group of commands, or the whole program.
class GrammarCommand {
 public:
  explicit GrammarCommand(CLI::App* command) : m_command(command) {}

  // A command of this group with its example, which its help shows.
  GrammarCommand addCommand(const std::string& name, const std::string& description,
                            const std::string& example);
  // Makes this a group: one of its commands has to follow.
  void requireCommand();
  // The value is filled when the line is read. There is one for int, std::string, both of them in a
  // std::optional, and std::vector<std::string>.
  template <typename Value>
  GrammarOption addOption(const std::string& name, Value& value,
                          const std::string& description = "");
  void addFlag(const std::string& name, bool& value, const std::string& description);
  // Called when the line has this command, and was read.
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
  // Reads the line. Answers how the program ends when that was all, after help or a word about a
  // wrong line. Throws CommandError when there is no such command.
  std::optional<ExitCode> parse(int argc, const char* const* argv);

 private:
  std::unique_ptr<CLI::App> m_program;
};
