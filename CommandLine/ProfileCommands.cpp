#include <filesystem>
#include <memory>

#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/RecordOutput.h"

namespace {

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
  profileInFile(file);
  if (library.addByPath(file, true) != ProfieController::Added) {
    throw CommandError(ExitCode::Failed, "Profile data destruction");
  }
  const auto profile = library.profileArr().back();
  save(library);
  report(session, "imported", *profile);
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
}

void addShowCommand(GrammarCommand program, Command& chosen) {
  addWithWord(program, chosen, "show", "Everything that a profile says, in words", "show Office",
              "profile", show);
}
