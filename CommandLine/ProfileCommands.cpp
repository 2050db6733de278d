#include <algorithm>
#include <ctime>
#include <filesystem>
#include <memory>
#include <optional>

#include "Action/Edit/SlotOperations.h"
#include "Action/Library/LibraryHistory.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/RecordOutput.h"

namespace {

constexpr const char* brokenProfile = "Profile data destruction";

Json summary(const ProfileValue& profile) {
  return {{"id", profile.profileId()},
          {"name", profile.name().value_or("")},
          {"factory", profile.isDefault()}};
}

void requireRoom(const ProfieController& library) {
  if (library.getProfileCount() >= limits::profiles) {
    throw CommandError(ExitCode::Failed, "Maximum number of profiles reached");
  }
}

void save(ProfieController& library) {
  const auto error = library.saveToSys();
  if (error == std::errc::device_or_resource_busy) {
    throw CommandError(ExitCode::Failed, "the library is in use by another program");
  }
  require(error, "the library could not be saved and is as it was");
}

void report(Session& session, const std::string& what, const ProfileValue& profile) {
  session.output.print({what + " " + printable(profile.name().value_or(""))}, summary(profile));
}

void list(Session& session) {
  std::vector<std::vector<std::string>> rows;
  Json document = Json::array();
  for (const auto& profile : session.openLibrary().profileArr()) {
    rows.push_back({std::to_string(profile->profileId()), printable(profile->name().value_or("")),
                    profile->isDefault() ? "factory" : ""});
    document.push_back(summary(*profile));
  }
  session.output.print(table(rows), document);
}

void add(Session& session, const std::string& name) {
  ProfieController& library = session.openLibrary();
  requireProfileName(library, name, nullptr);
  requireRoom(library);
  const auto profile = library.addProfileByName(name, nullptr);
  save(library);
  report(session, "added", *profile);
}

void copy(Session& session, const std::string& name) {
  ProfieController& library = session.openLibrary();
  const auto source = profileNamed(library, name);
  requireRoom(library);
  const auto profile = library.addProfileByName(library.getNewProfileNameByData(*source), source);
  save(library);
  report(session, "added", *profile);
}

void rename(Session& session, const std::string& oldName, const std::string& newName) {
  ProfieController& library = session.openLibrary();
  const auto profile = profileNamed(library, oldName);
  requireProfileName(library, newName, profile);
  profile->setName(newName);
  save(library);
  report(session, "renamed to", *profile);
}

void remove(Session& session, const std::string& name) {
  ProfieController& library = session.openLibrary();
  const auto profile = profileNamed(library, name);
  library.delProfile(profile);
  save(library);
  report(session, "deleted", *profile);
}

void import(Session& session, const std::string& file) {
  ProfieController& library = session.openLibrary();
  try {
    profileInFile(file);
  } catch (const CommandError& error) {
    throw CommandError(error.code(), std::string(brokenProfile) + ": " + error.what());
  }
  requireRoom(library);
  const auto imported = NerinAction::importProfile(file);
  if (imported.result != ProfieController::Added) {
    throw CommandError(ExitCode::Failed, brokenProfile);
  }
  const auto profile = library.profileArr().back();
  save(library);
  std::vector<std::string> lines{"imported " + printable(profile->name().value_or(""))};
  Json document = summary(*profile);
  if (imported.name != imported.wanted) {
    lines.push_back("its name was " + printable(imported.wanted) + ", which the mouse cannot hold");
    document["wanted"] = imported.wanted;
  }
  session.output.print(lines, document);
}

void exportTo(Session& session, const std::string& name, const std::string& file) {
  const auto profile = profileNamed(session.openLibrary(), name);
  require(profile->saveToPath(file), "the profile could not be written to " + printable(file));
  session.output.print({"exported " + printable(name)}, {{"name", name}, {"file", file}});
}

void show(Session& session, const std::string& nameOrFile) {
  ProfieController& library = session.openLibrary();
  auto profile = library.getProfileByName(nameOrFile);
  std::error_code error;
  if (!profile && std::filesystem::exists(nameOrFile, error)) {
    profile = profileInFile(nameOrFile);
  }
  if (!profile) {
    throw CommandError(ExitCode::NotFound, "no such profile or file: " + printable(nameOrFile));
  }
  std::vector<std::string> lines = table({
      {"name", printable(profile->name().value_or(""))},
      {"id", std::to_string(profile->profileId())},
      {"factory profile", profile->isDefault() ? "yes" : "no"},
      {"linked program", profile->isActiveApp() ? printable(profile->activeAppPath().value_or(""))
                                                : std::string("none")},
  });
  const auto words =
      linesOf(descriptions::describe(profile->profileData(), descriptions::RecordSource::Library));
  lines.insert(lines.end(), words.begin(), words.end());
  Json document = summary(*profile);
  document["linkActive"] = profile->isActiveApp();
  document["linkedProgram"] = profile->activeAppPath().value_or("");
  document.update(asJson(profile->profileData(), descriptions::RecordSource::Library));
  session.output.print(lines, document);
}

// --- The history -------------------------------------------------------------------------------

std::string timeText(std::time_t time, const char* format,
                     std::tm* (*split)(const std::time_t*, std::tm*)) {
  std::tm parts{};
  split(&time, &parts);
  char text[32];
  return {text, std::strftime(text, sizeof text, format, &parts)};
}

std::string shortly(const LibraryHistory::Differences& differences) {
  std::string text;
  const auto append = [&](char sign, const std::vector<std::string>& names) {
    for (const std::string& name : names) {
      text += (text.empty() ? "" : " ") + (sign + printable(name));
    }
  };
  append('+', differences.added);
  append('-', differences.removed);
  append('~', differences.changed);
  return text.empty() ? "as now" : text;
}

void history(Session& session) {
  const ProfieController& library = session.openLibrary();
  std::vector<std::vector<std::string>> rows;
  Json document = Json::array();
  for (const auto& state : LibraryHistory(library.sysProPath()).states()) {
    const auto profiles = LibraryHistory::profilesIn(state);
    const auto differences = LibraryHistory::differences(profiles, library.profileArr());
    rows.push_back(
        {std::to_string(state.number), timeText(state.time, "%Y-%m-%d %H:%M:%S", ::localtime_r),
         std::to_string(profiles.size()) + (profiles.size() == 1 ? " profile" : " profiles"),
         shortly(differences)});
    document.push_back({{"number", state.number},
                        {"time", timeText(state.time, "%Y-%m-%dT%H:%M:%SZ", ::gmtime_r)},
                        {"profiles", profiles.size()},
                        {"added", differences.added},
                        {"removed", differences.removed},
                        {"changed", differences.changed}});
  }
  session.output.print(table(rows), document);
}

LibraryHistory::State stateOfNumber(const ProfieController& library, int number) {
  const auto states = LibraryHistory(library.sysProPath()).states();
  const auto found = std::find_if(states.begin(), states.end(), [&](const auto& state) {
    return number > 0 && state.number == static_cast<std::uint64_t>(number);
  });
  if (found == states.end()) {
    throw CommandError(ExitCode::NotFound,
                       "no such state of the library: " + std::to_string(number) +
                           " (see nerinctl profiles history)");
  }
  return *found;
}

void recoverAll(Session& session, int number) {
  ProfieController& library = session.openLibrary();
  const auto profiles = LibraryHistory::profilesIn(stateOfNumber(library, number));
  library.replaceProfiles(profiles);
  save(library);
  Json document = Json::array();
  for (const auto& profile : library.profileArr()) {
    document.push_back(summary(*profile));
  }
  session.output.print({"recovered " + std::to_string(document.size()) +
                        (document.size() == 1 ? " profile" : " profiles")},
                       document);
}

void recoverOne(Session& session, int number, const std::string& name) {
  ProfieController& library = session.openLibrary();
  const auto profiles = LibraryHistory::profilesIn(stateOfNumber(library, number));
  const auto found = std::find_if(profiles.begin(), profiles.end(), [&](const auto& profile) {
    return profile->name().value_or("") == name;
  });
  if (found == profiles.end()) {
    throw CommandError(ExitCode::NotFound,
                       "no such profile in this state of the library: " + printable(name));
  }
  requireRoom(library);
  library.restoreProfile(*found);
  save(library);
  report(session, "recovered", **found);
}

void addHistoryCommands(GrammarCommand group, Command& chosen) {
  group.addCommand("history", "The last ten states of the library", "profiles history")
      .onGiven([&chosen] { chosen = history; });
  GrammarCommand command = group.addCommand(
      "recover", "Bring back a state of the library, or one profile of it", "profiles recover 12");
  struct Words {
    int number = 0;
    std::optional<std::string> name;
  };
  auto words = std::make_shared<Words>();
  command.addOption("number", words->number).required();
  command.addOption("name", words->name);
  command.onGiven([&chosen, words] {
    chosen = [words](Session& session) {
      if (words->name) {
        recoverOne(session, words->number, *words->name);
      } else {
        recoverAll(session, words->number);
      }
    };
  });
}

}  // namespace

void addProfileCommands(GrammarCommand program, Command& chosen) {
  GrammarCommand group = program.addCommand("profiles", "The library of profiles", "profiles list");
  group.requireCommand();
  group.addCommand("list", "All profiles", "profiles list --json").onGiven([&chosen] {
    chosen = list;
  });
  addWithWord(group, chosen, "add", "A new profile with the factory's settings",
              "profiles add Office", "name", add);
  addWithWord(group, chosen, "copy", "A copy under the next free name", "profiles copy Office",
              "name", copy);
  addWithWords(group, chosen, "rename", "Give a profile another name",
               "profiles rename Office Work", "old", "new", rename);
  addWithWord(group, chosen, "delete", "Remove a profile from the library",
              "profiles delete Office", "name", remove);
  addWithWord(group, chosen, "import", "Add a profile file to the library",
              "profiles import office.pro", "file", import);
  addWithWords(group, chosen, "export", "Write a profile to a file",
               "profiles export Office office.pro", "name", "file", exportTo);
  addHistoryCommands(group, chosen);
}

void addShowCommand(GrammarCommand program, Command& chosen) {
  addWithWord(program, chosen, "show", "Everything that a profile says, in words", "show Office",
              "profile", show);
}
