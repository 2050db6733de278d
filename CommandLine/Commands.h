#pragma once

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "Action/Library/ProfieController.h"
#include "CommandLine/Grammar.h"
#include "CommandLine/Session.h"

// The command that the user chose. It runs after the whole line was read.
using Command = std::function<void(Session&)>;

// Each adds a group of commands to the program and stores the user's choice in `chosen`.
void addSlotCommands(GrammarCommand program, Command& chosen);
void addProfileCommands(GrammarCommand program, Command& chosen);
void addShowCommand(GrammarCommand program, Command& chosen);
void addSettingCommands(GrammarCommand program, Command& chosen);
void addMacroCommands(GrammarCommand program, Command& chosen);
void addBackupCommands(GrammarCommand program, Command& chosen);
void addCompanionCommands(GrammarCommand program, Command& chosen);

// A text of the companion (Kit/Bus/CompanionAddress.h); nothing if it does not run.
std::optional<std::string> askCompanion(const char* property);

// One thing that was looked at.
struct Finding {
  std::string subject;
  bool isFine = false;
  std::string text;  // what is so, and what to do about it
};
// What keeps things from working, and what works.
std::vector<Finding> findingsOf(Session& session);
void addReportCommand(GrammarCommand program, Command& chosen);

// Adds a command with one or two arguments.
void addWithWord(GrammarCommand group, Command& chosen, const std::string& name,
                 const std::string& description, const std::string& example,
                 const std::string& word, void (*action)(Session&, const std::string&));
void addWithWords(GrammarCommand group, Command& chosen, const std::string& name,
                  const std::string& description, const std::string& example,
                  const std::string& first, const std::string& second,
                  void (*action)(Session&, const std::string&, const std::string&));

// Converts a slot number, 1..10 as on the tabs, to 0..9. Throws CommandError.
int slotOf(int number);
// The library's profile of that name; an empty name finds the first profile without a name. Throws
// CommandError when there is none.
ProfieController::Profile profileNamed(const ProfieController& library, const std::string& name);
// Throws CommandError if there is an error.
void require(const std::error_code& error, const std::string& what);
// Throws CommandError unless the profile may have the name: 1 to 65 printable ASCII characters
// without "/" and ":", not a factory name, and not the name of another profile.
void requireProfileName(const ProfieController& library, const std::string& name,
                        const ProfieController::Profile& profile);
// Throws CommandError unless the file can be read.
void requireReadableFile(const std::string& path);
// The profile in a file. Throws CommandError if the file is missing or too short.
ProfieController::Profile profileInFile(const std::string& path);
// The mouse's active slot, 0..9. Throws CommandError if the mouse reports any other slot.
int activeSlotOf(Session& session);
