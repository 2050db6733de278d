#include "CommandLine/Grammar.h"

#include <utility>

#include <CLI/CLI.hpp>

#include "CommandLine/Output.h"

namespace {

// The word in place of a command; empty when there is none.
std::string unknownCommand(const CLI::App& program) {
  const CLI::App* group = &program;
  while (!group->get_subcommands().empty()) {
    group = group->get_subcommands().front();
  }
  const auto words = program.remaining(true);
  return group->get_require_subcommand_min() > 0 && !words.empty() ? words.front() : std::string();
}

Json describeOption(const CLI::Option& option) {
  Json names = Json::array();
  for (const std::string& name : option.get_snames()) {
    names.push_back("-" + name);
  }
  for (const std::string& name : option.get_lnames()) {
    names.push_back("--" + name);
  }
  if (option.get_positional()) {
    names.push_back(option.get_name(true));
  }
  return {{"names", names},
          {"isArgument", option.get_positional()},
          {"takesValue", option.get_expected_max() > 0},
          {"isRepeated", option.get_expected_max() > 1},
          {"isRequired", option.get_required()},
          // With the allowed values, where only some are.
          {"value", option.get_type_name()},
          {"description", option.get_description()}};
}

Json describeCommand(const CLI::App& command) {
  Json options = Json::array();
  for (const CLI::Option* option : command.get_options()) {
    options.push_back(describeOption(*option));
  }
  Json commands = Json::array();
  for (const CLI::App* each : command.get_subcommands([](const CLI::App*) { return true; })) {
    commands.push_back(describeCommand(*each));
  }
  return {{"name", command.get_name()},
          {"description", command.get_description()},
          {"footer", command.get_footer()},
          {"options", options},
          {"commands", commands}};
}

}  // namespace

GrammarOption& GrammarOption::required() {
  m_option->required();
  return *this;
}

GrammarOption& GrammarOption::typeName(const std::string& name) {
  m_option->type_name(name);
  return *this;
}

GrammarOption& GrammarOption::oneOf(const std::vector<std::string>& values) {
  m_option->check(CLI::IsMember(values));
  return *this;
}

GrammarCommand GrammarCommand::addCommand(const std::string& name, const std::string& description,
                                          const std::string& example) {
  CLI::App* command = m_command->add_subcommand(name, description);
  command->fallthrough();
  command->footer("Example:\n  nerinctl " + example);
  return GrammarCommand(command);
}

void GrammarCommand::requireCommand() {
  m_command->require_subcommand(1);
}

template <typename Value>
GrammarOption GrammarCommand::addOption(const std::string& name, Value& value,
                                        const std::string& description) {
  return GrammarOption(m_command->add_option(name, value, description));
}

template GrammarOption GrammarCommand::addOption(const std::string&, int&, const std::string&);
template GrammarOption GrammarCommand::addOption(const std::string&, std::optional<int>&,
                                                 const std::string&);
template GrammarOption GrammarCommand::addOption(const std::string&, std::string&,
                                                 const std::string&);
template GrammarOption GrammarCommand::addOption(const std::string&, std::optional<std::string>&,
                                                 const std::string&);
template GrammarOption GrammarCommand::addOption(const std::string&, std::vector<std::string>&,
                                                 const std::string&);

void GrammarCommand::addFlag(const std::string& name, bool& value, const std::string& description) {
  m_command->add_flag(name, value, description);
}

void GrammarCommand::onGiven(std::function<void()> action) {
  m_command->callback(std::move(action));
}

Grammar::Grammar(const std::string& description, const std::string& name, const std::string& footer)
    : GrammarCommand(nullptr), m_program(std::make_unique<CLI::App>(description, name)) {
  m_command = m_program.get();
  m_command->footer(footer);
}

Grammar::~Grammar() = default;

void Grammar::addVersion(const std::string& version) {
  m_program->set_version_flag("--version", version);
}

std::string Grammar::describe() const {
  return describeCommand(*m_program).dump(2);
}

std::optional<ExitCode> Grammar::parse(int argc, const char* const* argv) {
  try {
    m_program->parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    if (const std::string word = unknownCommand(*m_program); !word.empty()) {
      throw CommandError(ExitCode::Usage,
                         "no such command: " + printable(word) + " (see nerinctl --help)");
    }
    return m_program->exit(error) == 0 ? ExitCode::Done : ExitCode::Usage;
  }
  return std::nullopt;
}
