#include <algorithm>
#include <memory>

#include "Action/Edit/Differences.h"
#include "Action/Edit/Drafts.h"
#include "Action/Edit/FinishApply.h"
#include "Action/Edit/PrimaryClick.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "CommandLine/RecordOutput.h"
#include "Kit/Bus/CompanionAddress.h"
#include "Kit/Core/LXPlatform.h"

namespace {

std::string shownName(const std::optional<std::string>& name) {
  return name && !name->empty() ? printable(*name) : "(no profile)";
}

Json nameJson(const std::optional<std::string>& name) {
  return name && !name->empty() ? Json(*name) : Json(nullptr);
}

bool isInLibrary(const ProfieController& library, const std::optional<std::string>& name) {
  return library.getProfileByName(name) != nullptr;
}

std::string offerToFinish(int slot) {
  return "an Apply was interrupted; finish it with: nerinctl finish " + std::to_string(slot + 1);
}

void offerToFinish(int slot, std::vector<std::string>& lines) {
  if (NerinAction::isApplyUnfinished(slot)) {
    lines.push_back(offerToFinish(slot));
  }
}

// Why the mouse has its slot. Nothing if no companion works with this mouse.
std::optional<std::string> companionsWordOn(const Session& session) {
  const auto mouse = askCompanion(companionaddress::mouse);
  if (!mouse || *mouse != session.virtualFile()) {
    return std::nullopt;
  }
  return askCompanion(companionaddress::explanation);
}

std::string placeOf(const UserFolders& folders) {
  return printable(folders.support.string()) +
         (folders.layout == UserFolders::Layout::Xdg ? "" : " (where it was already)");
}

Json foldersJson(const UserFolders& folders) {
  return {{"layout", folders.layout == UserFolders::Layout::Xdg ? "xdg" : "library"},
          {"support", nameJson(folders.support.string())},
          {"preferences", nameJson(folders.preferences.string())},
          {"drafts", nameJson(folders.drafts.string())},
          {"log", nameJson(folders.log.string())}};
}

void status(Session& session) {
  ProfieController& library = session.openLibrary();
  session.openMouse();
  const int slot = activeSlotOf(session);
  const auto [outcome, name] = NerinAction::getFWProfileName(static_cast<std::uint8_t>(slot));
  session.require(outcome);
  const std::size_t macros = NerinAction::macroStore->macroNode->children().size();
  std::vector<std::vector<std::string>> rows{
      {"mouse", session.isVirtual() ? "virtual" : "USB"},
      {"active slot", std::to_string(slot + 1) + " " + shownName(name)},
      {"in the library", isInLibrary(library, name) ? "yes" : "no"},
      {"profiles", std::to_string(library.getProfileCount())},
      {"macros", std::to_string(macros)}};
  Json unfinished = Json::array();
  for (int each = 0; each < ProfieController::slotCount; ++each) {
    if (NerinAction::isApplyUnfinished(each)) {
      rows.push_back({"slot " + std::to_string(each + 1), offerToFinish(each)});
      unfinished.push_back(each + 1);
    }
  }
  const UserFolders& folders = LXPlatform::current().userFolders;
  rows.push_back({"files", placeOf(folders)});
  const auto explanation = companionsWordOn(session);
  if (explanation) {
    rows.push_back({"why", printable(*explanation)});
  }
  session.output.print(table(rows), {{"mouse", session.isVirtual() ? "virtual" : "usb"},
                                     {"activeSlot", slot + 1},
                                     {"name", nameJson(name)},
                                     {"inLibrary", isInLibrary(library, name)},
                                     {"profiles", library.getProfileCount()},
                                     {"macros", macros},
                                     {"why", explanation ? Json(*explanation) : Json(nullptr)},
                                     {"files", foldersJson(folders)},
                                     {"unfinished", unfinished}});
}

void slots(Session& session) {
  ProfieController& library = session.openLibrary();
  session.openMouse();
  auto [outcome, active] = NerinAction::getProfileIndexByDevice();
  std::vector<std::vector<std::string>> rows;
  Json document = Json::array();
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    const auto [nameOutcome, name] = NerinAction::getFWProfileName(static_cast<std::uint8_t>(slot));
    outcome += nameOutcome;
    rows.push_back({slot == active ? "*" : " ", std::to_string(slot + 1), shownName(name),
                    isInLibrary(library, name) ? "in the library" : "",
                    NerinAction::isApplyUnfinished(slot) ? offerToFinish(slot) : ""});
    document.push_back({{"slot", slot + 1},
                        {"active", slot == active},
                        {"name", nameJson(name)},
                        {"inLibrary", isInLibrary(library, name)},
                        {"unfinished", NerinAction::isApplyUnfinished(slot)}});
  }
  session.require(outcome);
  session.output.print(table(rows), document);
}

void switchSlot(Session& session, int slot) {
  session.openMouse();
  session.require(NerinAction::changeSlot(slot));
  std::vector<std::string> lines{"slot " + std::to_string(slot + 1) + " is active"};
  offerToFinish(slot, lines);
  session.output.print(
      lines, {{"activeSlot", slot + 1}, {"unfinished", NerinAction::isApplyUnfinished(slot)}});
}

bool hasMacro(const _BTN_INFO& button) {
  return NerinAction::getMacroById(static_cast<std::int32_t>(button.MacroID)) != nullptr;
}

std::size_t macrosOf(const _Nerin_PROFILE& profile) {
  return static_cast<std::size_t>(std::count_if(
      std::begin(profile.btnInfo), std::end(profile.btnInfo), [](const _BTN_INFO& button) {
        return button.FuncTableId == NerinAction::FunctionMacro && hasMacro(button);
      }));
}

// The parts of the profile that the mouse cannot store.
std::vector<std::string> lossesOf(const std::string& name, const std::string& given,
                                  const _Nerin_PROFILE& profile) {
  std::vector<std::string> losses;
  if (given != name) {
    losses.push_back("it is called " + given + " now, since the mouse holds up to " +
                     std::to_string(limits::nameCharacters) + " plain letters");
  }
  if (NerinAction::primaryClicksOf(profile) == 0) {
    losses.emplace_back("no button has the left click");
  }
  for (std::size_t index = 0; index < buttonCount; ++index) {
    const _BTN_INFO& button = profile.btnInfo[index];
    if (button.FuncTableId == NerinAction::FunctionMacro && !hasMacro(button)) {
      losses.push_back("button " + std::to_string(index + 1) +
                       " is disabled, since there is no such macro");
    }
  }
  return losses;
}

void apply(Session& session, const std::string& name, int slot) {
  ProfieController& library = session.openLibraryWithMacros();
  const auto profile = profileNamed(library, name);
  if (name.empty()) {
    throw CommandError(ExitCode::Failed, "a profile needs a name before a slot can have it");
  }
  session.openMouse();
  NerinAction::beginSlot(slot);
  NerinAction::bindSlot(profile->profileId());
  session.showProgress(macrosOf(editState->selProfile()));
  session.require(NerinAction::applySlot());
  const auto losses =
      lossesOf(name, library.currFWProfileName().value_or(""), editState->selProfile());
  std::vector<std::string> lines{printable(name) + " is in slot " + std::to_string(slot + 1)};
  lines.insert(lines.end(), losses.begin(), losses.end());
  session.output.print(lines, {{"profile", name}, {"slot", slot + 1}, {"notes", losses}});
}

void finish(Session& session, int slot) {
  const ProfieController& library = session.openLibraryWithMacros();
  const std::string place = "slot " + std::to_string(slot + 1);
  if (!NerinAction::isApplyUnfinished(slot)) {
    throw CommandError(ExitCode::NotFound, "no Apply to " + place + " was interrupted");
  }
  const auto intent = NerinAction::unfinishedApply(slot);
  if (!intent) {
    throw CommandError(ExitCode::NotFound,
                       "what " + place + " was to get cannot be read; apply a profile to it");
  }
  session.openMouse();
  session.showProgress(intent->macros.size());
  session.require(NerinAction::finishApply(slot));
  const auto name = library.currFWProfileName();
  session.output.print({shownName(name) + " is in " + place},
                       {{"profile", nameJson(name)}, {"slot", slot + 1}});
}

[[noreturn]] void failWithoutProfile(int slot) {
  throw CommandError(ExitCode::NotFound, "slot " + std::to_string(slot + 1) + " holds no profile");
}

void saveReadProfile(const std::string& file, const std::string& name) {
  ProfileValue profile;
  profile.setName(name);
  profile.setProfileData(editState->currFWProfile());
  require(profile.saveToPath(file), "the profile could not be written to " + printable(file));
}

void read(Session& session, int slot, const std::optional<std::string>& file) {
  ProfieController& library = session.openLibrary();
  session.openMouse();
  const auto [outcome, hasProfile] = NerinAction::readSlot(slot);
  session.require(outcome);
  if (!hasProfile) {
    failWithoutProfile(slot);
  }
  const std::string name = library.currFWProfileName().value_or("");
  if (file) {
    saveReadProfile(*file, name);
  }
  std::vector<std::string> lines =
      table({{"slot", std::to_string(slot + 1)}, {"name", printable(name)}});
  offerToFinish(slot, lines);
  const auto words = linesOf(
      descriptions::describe(editState->currFWProfile(), descriptions::RecordSource::Mouse));
  lines.insert(lines.end(), words.begin(), words.end());
  Json document{
      {"slot", slot + 1}, {"name", name}, {"unfinished", NerinAction::isApplyUnfinished(slot)}};
  document.update(asJson(editState->currFWProfile(), descriptions::RecordSource::Mouse));
  session.output.print(lines, document);
}

std::string shownValue(const std::string& value) {
  return value.empty() ? "-" : printable(value);
}

Json valueJson(const std::string& value) {
  return value.empty() ? Json(nullptr) : Json(value);
}

void printDifferences(Session& session, const std::vector<Difference>& differences, Json document) {
  std::vector<std::vector<std::string>> rows;
  rows.reserve(differences.size());
  Json changes = Json::array();
  for (const Difference& one : differences) {
    rows.push_back({one.about, shownValue(one.before), "->", shownValue(one.after)});
    changes.push_back(
        {{"about", one.about}, {"before", valueJson(one.before)}, {"after", valueJson(one.after)}});
  }
  document["changes"] = changes;
  session.output.print(rows.empty() ? std::vector<std::string>{"no difference"} : table(rows),
                       document);
}

// What applying the profile to the slot would change.
void diffProfile(Session& session, const std::string& name, std::optional<int> given) {
  ProfieController& library = session.openLibraryWithMacros();
  const auto profile = profileNamed(library, name);
  session.openMouse();
  const int slot = given ? *given : activeSlotOf(session);
  const auto [outcome, hasProfile] = NerinAction::readSlot(slot);
  session.require(outcome);
  if (!hasProfile) {
    failWithoutProfile(slot);
  }
  _Nerin_CONFIG before{};
  before.profile = editState->currFWProfile();
  setText(before.profileName, library.currFWProfileName().value_or(""));
  _Nerin_CONFIG wanted{};
  wanted.profile = profile->profileData();
  setText(wanted.profileName, name);
  printDifferences(session, differencesBetween(before, wanted),
                   {{"slot", slot + 1}, {"profile", name}});
}

// What was edited in the slot and not applied.
void diffDraft(Session& session, std::optional<int> given) {
  session.openLibraryWithMacros();
  session.openMouse();
  const int slot = given ? *given : activeSlotOf(session);
  const auto read = NerinAction::loadSlot(slot);
  session.require(read.outcome);
  if (!read.value) {
    failWithoutProfile(slot);
  }
  printDifferences(session, NerinAction::pendingDifferences(),
                   {{"slot", slot + 1}, {"profile", nullptr}});
}

}  // namespace

void addSlotCommands(GrammarCommand program, Command& chosen) {
  program.addCommand("status", "What the mouse and the library hold now", "status")
      .onGiven([&chosen] { chosen = status; });
  program.addCommand("slots", "The ten slots of the mouse", "slots --json").onGiven([&chosen] {
    chosen = slots;
  });

  GrammarCommand command =
      program.addCommand("switch", "Make another slot the active one", "switch 3");
  auto number = std::make_shared<int>();
  command.addOption("slot", *number, "The slot, 1 to 10").required();
  command.onGiven([&chosen, number] {
    chosen = [number](Session& session) { switchSlot(session, slotOf(*number)); };
  });

  command = program.addCommand("apply", "Write a profile of the library into a slot",
                               "apply Office --slot 2");
  auto name = std::make_shared<std::string>();
  auto applySlotNumber = std::make_shared<int>();
  command.addOption("name", *name, "The profile").required();
  command.addOption("--slot", *applySlotNumber, "The slot, 1 to 10").required();
  command.onGiven([&chosen, name, applySlotNumber] {
    chosen = [=](Session& session) { apply(session, *name, slotOf(*applySlotNumber)); };
  });

  command =
      program.addCommand("finish", "Write to a slot what an interrupted Apply did not", "finish 2");
  auto finishSlotNumber = std::make_shared<int>();
  command.addOption("slot", *finishSlotNumber, "The slot, 1 to 10").required();
  command.onGiven([&chosen, finishSlotNumber] {
    chosen = [=](Session& session) { finish(session, slotOf(*finishSlotNumber)); };
  });

  command = program.addCommand(
      "diff",
      "What applying a profile to a slot would change; without a profile, what the window "
      "has edited in the slot and not applied",
      "diff Office --slot 2");
  auto diffName = std::make_shared<std::optional<std::string>>();
  auto diffSlot = std::make_shared<std::optional<int>>();
  command.addOption("name", *diffName, "The profile");
  command.addOption("--slot", *diffSlot, "The slot, 1 to 10; otherwise the active one");
  command.onGiven([&chosen, diffName, diffSlot] {
    chosen = [=](Session& session) {
      const std::optional<int> slot = *diffSlot ? std::optional(slotOf(**diffSlot)) : std::nullopt;
      *diffName ? diffProfile(session, **diffName, slot) : diffDraft(session, slot);
    };
  });

  command = program.addCommand("read", "Show what a slot of the mouse holds",
                               "read --slot 2 --output office.pro");
  auto readSlotNumber = std::make_shared<int>();
  auto file = std::make_shared<std::optional<std::string>>();
  command.addOption("--slot", *readSlotNumber, "The slot, 1 to 10").required();
  command.addOption("--output", *file, "Write it to this profile file, too").typeName("FILE");
  command.onGiven([&chosen, readSlotNumber, file] {
    chosen = [=](Session& session) { read(session, slotOf(*readSlotNumber), *file); };
  });
}
