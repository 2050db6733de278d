#include <filesystem>
#include <memory>

#include "Action/NerinAction.h"
#include "Action/Record/Limits.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/RecordOutput.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/Utf8.h"

namespace {

std::shared_ptr<MacroInfo> macroNamed(const std::string& name) {
  auto macro = NerinAction::getMacroByName(name);
  if (!macro || macro->isNoDisplay()) {
    throw CommandError(ExitCode::NotFound, "no such macro: " + printable(name));
  }
  return macro;
}

void requireMacroName(const std::string& name) {
  if (name.empty() || !utf8::isValid(name) || printable(name) != name) {
    throw CommandError(ExitCode::Usage, "a macro's name is a text of at least one character");
  }
  if (!NerinAction::checkMacroName(name)) {
    throw CommandError(ExitCode::Failed, "A macro of this name already exists.");
  }
}

void save() {
  NerinAction::refreshMenuList();
  if (!NerinAction::saveMenuList()) {
    throw CommandError(ExitCode::Failed, "the macros could not be saved and are as they were");
  }
}

Json summary(const MacroInfo& macro) {
  return {{"id", macro.macroId()},
          {"name", macro.nameStr().value_or("")},
          {"events", macro.keyInfoArr().size()}};
}

void list(Session& session) {
  session.openLibraryWithMacros();
  std::vector<std::vector<std::string>> rows;
  Json document = Json::array();
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    rows.push_back({std::to_string(macro->macroId()), printable(descriptions::macroTitle(*macro)),
                    std::to_string(macro->keyInfoArr().size()) + " events"});
    document.push_back(summary(*macro));
  }
  session.output.print(table(rows), document);
}

void show(Session& session, const std::string& name) {
  session.openLibraryWithMacros();
  const auto macro = macroNamed(name);
  session.output.print(linesOf(descriptions::describe(*macro)), asJson(*macro));
}

void import(Session& session, const std::string& file) {
  session.openLibraryWithMacros();
  requireReadableFile(file);
  const auto macro = LXAction::CopyObject<MacroInfo>(std::filesystem::path(file));
  if (!macro) {
    throw CommandError(ExitCode::Failed, "no macro file: " + printable(file));
  }
  const std::string name = std::filesystem::path(file).stem().string();
  requireMacroName(name);
  if (NerinAction::macroStore->macroNode->children().size() >= limits::macros) {
    throw CommandError(ExitCode::Failed, "Maximum number of macros reached");
  }
  // Scripts refer to the macro by its id. A hidden macro would not be saved.
  macro->setNameStr(name);
  macro->setMacroId(NerinAction::getNewMacorId());
  macro->setIsNoDisplay(false);
  NerinAction::macroStore->macroListArrs.push_back(macro);
  save();
  session.output.print({"imported " + printable(name)}, summary(*macro));
}

void exportTo(Session& session, const std::string& name, const std::string& file) {
  session.openLibraryWithMacros();
  const auto macro = macroNamed(name);
  if (!LXAction::SaveObject(*macro, file)) {
    throw CommandError(ExitCode::Failed, "the macro could not be written to " + printable(file));
  }
  session.output.print({"exported " + printable(name)}, {{"name", name}, {"file", file}});
}

void rename(Session& session, const std::string& oldName, const std::string& newName) {
  session.openLibraryWithMacros();
  const auto macro = macroNamed(oldName);
  requireMacroName(newName);
  macro->setNameStr(newName);
  save();
  session.output.print({"renamed to " + newName}, summary(*macro));
}

void remove(Session& session, const std::string& name) {
  session.openLibraryWithMacros();
  const auto macro = macroNamed(name);
  std::erase(NerinAction::macroStore->macroListArrs, macro);
  save();
  session.output.print({"deleted " + printable(name)}, summary(*macro));
}

}  // namespace

void addMacroCommands(GrammarCommand program, Command& chosen) {
  GrammarCommand group = program.addCommand("macros", "The macros", "macros list");
  group.requireCommand();
  group.addCommand("list", "All macros", "macros list --json").onGiven([&chosen] {
    chosen = list;
  });
  addWithWord(group, chosen, "show", "The events of a macro", "macros show Reload", "name", show);
  addWithWord(group, chosen, "import", "Add a macro file, under the file's name",
              "macros import Reload.mac", "file", import);
  addWithWords(group, chosen, "export", "Write a macro to a file",
               "macros export Reload Reload.mac", "name", "file", exportTo);
  addWithWords(group, chosen, "rename", "Give a macro another name", "macros rename Reload Fire",
               "old", "new", rename);
  addWithWord(group, chosen, "delete", "Remove a macro", "macros delete Reload", "name", remove);
}
