#pragma once

#include <functional>
#include <string>

#include "Action/Library/ProfieController.h"
#include "CommandLine/Grammar.h"
#include "CommandLine/Session.h"

// The command that the user chose; run after the whole line was read.
using Command = std::function<void(Session&)>;

// Each adds a group of commands to the program. The chosen one ends up in `chosen`.
void addSlotCommands(GrammarCommand program, Command& chosen);
void addProfileCommands(GrammarCommand program, Command& chosen);
void addShowCommand(GrammarCommand program, Command& chosen);
void addSettingCommands(GrammarCommand program, Command& chosen);
void addMacroCommands(GrammarCommand program, Command& chosen);
void addBackupCommands(GrammarCommand program, Command& chosen);

// Adds a command with one word, or two, behind it.
void addWithWord(GrammarCommand group, Command& chosen, const std::string& name,
                 const std::string& description, const std::string& example,
                 const std::string& word, void (*action)(Session&, const std::string&));
void addWithWords(GrammarCommand group, Command& chosen, const std::string& name,
                  const std::string& description, const std::string& example,
                  const std::string& first, const std::string& second,
                  void (*action)(Session&, const std::string&, const std::string&));

// The slot 0..9 for a number as on the tabs, 1..10. Throws CommandError.
int slotOf(int number);
// The library's profile of that name, for an empty name the first one without any. Throws
// CommandError when there is none.
ProfieController::Profile profileNamed(const ProfieController& library, const std::string& name);
// Throws CommandError when the error is one.
void require(const std::error_code& error, const std::string& what);
// Throws CommandError unless a profile may be called that: 1 to 65 printable ASCII characters
// without "/" and ":", none of the factory names, and no name of another profile than `profile`.
void requireProfileName(const ProfieController& library, const std::string& name,
                        const ProfieController::Profile& profile);
// Throws CommandError unless the file can be read.
void requireReadableFile(const std::string& path);
// The profile in a file. Throws CommandError when there is no file, or none as long as a profile.
ProfieController::Profile profileInFile(const std::string& path);
// The mouse's active slot, 0..9. Throws CommandError when the mouse names another.
int activeSlotOf(Session& session);
