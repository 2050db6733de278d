#include "CommandLine/Commands.h"

#include <algorithm>
#include <filesystem>
#include <memory>
#include <utility>

#include <unistd.h>

#include "Action/Library/ProfileNames.h"
#include "Action/NerinAction.h"
#include "CommandLine/CommandError.h"

int slotOf(int number) {
  if (number < 1 || number > ProfieController::slotCount) {
    throw CommandError(ExitCode::NotFound, "no such slot: " + std::to_string(number) +
                                               " (the mouse has slots 1 to 10)");
  }
  return number - 1;
}

ProfieController::Profile profileNamed(const ProfieController& library, const std::string& name) {
  // A profile from a file may have no valid name.
  const auto& profiles = library.profileArr();
  const auto found = std::find_if(profiles.begin(), profiles.end(), [&](const auto& profile) {
    return profile->name().value_or("") == name;
  });
  if (found == profiles.end()) {
    throw CommandError(ExitCode::NotFound, "no such profile: " + printable(name));
  }
  return *found;
}

void require(const std::error_code& error, const std::string& what) {
  if (error) {
    throw CommandError(ExitCode::Failed, what + ": " + error.message());
  }
}

void requireProfileName(const ProfieController& library, const std::string& name,
                        const ProfieController::Profile& profile) {
  if (!profilenames::isStorable(name)) {
    const std::string spelled = profilenames::forMouse(name);
    throw CommandError(ExitCode::Usage,
                       "a profile's name has 1 to 65 ASCII characters, as the mouse keeps it, and "
                       "neither / nor :" +
                           (spelled != name && profilenames::isStorable(spelled)
                                ? " (the nearest is " + spelled + ")"
                                : std::string()));
  }
  if (profilenames::isFactoryName(name)) {
    throw CommandError(ExitCode::Failed, name + " is the name of a factory profile");
  }
  if (!library.checkProfileName(name, profile)) {
    throw CommandError(ExitCode::Failed, "there is a profile of this name already: " + name);
  }
}

void requireReadableFile(const std::string& path) {
  std::error_code error;
  if (!std::filesystem::exists(path, error)) {
    throw CommandError(ExitCode::Failed, "no such file: " + printable(path));
  }
  if (std::filesystem::is_directory(path, error)) {
    throw CommandError(ExitCode::Failed, "a folder, not a file: " + printable(path));
  }
  if (::access(path.c_str(), R_OK) != 0) {
    throw CommandError(ExitCode::Failed, "the file cannot be read: " + printable(path));
  }
}

ProfieController::Profile profileInFile(const std::string& path) {
  requireReadableFile(path);
  auto profile = ProfileValue::initWithWholeFile(path);
  if (!profile) {
    throw CommandError(ExitCode::Failed, "no profile file: " + printable(path));
  }
  return profile;
}

int activeSlotOf(Session& session) {
  const auto active = NerinAction::getProfileIndexByDevice();
  session.require(active.outcome);
  const int slot = active.value;
  if (slot >= ProfieController::slotCount) {
    throw CommandError(ExitCode::Failed, "the mouse is on a slot that it does not have");
  }
  return slot;
}

void addWithWord(GrammarCommand group, Command& chosen, const std::string& name,
                 const std::string& description, const std::string& example,
                 const std::string& word, void (*action)(Session&, const std::string&)) {
  GrammarCommand command = group.addCommand(name, description, example);
  auto value = std::make_shared<std::string>();
  command.addOption(word, *value).required();
  command.onGiven(
      [&chosen, value, action] { chosen = [=](Session& session) { action(session, *value); }; });
}

void addWithWords(GrammarCommand group, Command& chosen, const std::string& name,
                  const std::string& description, const std::string& example,
                  const std::string& first, const std::string& second,
                  void (*action)(Session&, const std::string&, const std::string&)) {
  GrammarCommand command = group.addCommand(name, description, example);
  auto values = std::make_shared<std::pair<std::string, std::string>>();
  command.addOption(first, values->first).required();
  command.addOption(second, values->second).required();
  command.onGiven([&chosen, values, action] {
    chosen = [=](Session& session) { action(session, values->first, values->second); };
  });
}
