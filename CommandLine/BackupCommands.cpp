#include <algorithm>
#include <filesystem>
#include <map>
#include <memory>
#include <set>
#include <string>

#include "Action/Device/SlotReportTransfer.h"
#include "Action/Edit/Drafts.h"
#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "CommandLine/BackupFiles.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"

namespace fs = std::filesystem;

namespace {

using backupfiles::place;
using backupfiles::SlotBackup;
using Slots = std::map<int, std::unique_ptr<SlotBackup>>;

void requireEmptyFolder(const fs::path& folder) {
  std::error_code error;
  if (fs::exists(folder, error) && !fs::is_directory(folder, error)) {
    throw CommandError(ExitCode::Failed, "not a folder: " + printable(folder.string()));
  }
  if (!LXAction::creatDirectoryPro(folder)) {
    throw CommandError(ExitCode::Failed,
                       "the folder cannot be made: " + printable(folder.string()));
  }
  if (!fs::is_empty(folder, error) || error) {
    throw CommandError(ExitCode::Failed, "the folder is not empty: " + printable(folder.string()));
  }
}

// The folder of a backup. Unless it is kept, what was written into it goes again, and the folder
// itself if it is new: half a backup is none.
class BackupFolder {
 public:
  explicit BackupFolder(fs::path folder) : m_folder(std::move(folder)) {
    std::error_code error;
    m_isNew = !fs::exists(m_folder, error);
    requireEmptyFolder(m_folder);
  }
  ~BackupFolder() {
    std::error_code ignored;
    if (!m_isKept) {
      for (const fs::path& file : m_written) {
        fs::remove(file, ignored);
      }
      if (m_isNew) {
        fs::remove(m_folder, ignored);
      }
    }
  }
  BackupFolder(const BackupFolder&) = delete;
  BackupFolder& operator=(const BackupFolder&) = delete;

  void write(const std::vector<durable::FolderEntry>& files) {
    for (const auto& file : files) {
      m_written.push_back(m_folder / file.name);
      require(durable::writeFile(m_written.back(), file.bytes),
              "the backup could not be written to " + printable(m_folder.string()));
    }
  }
  void keep() { m_isKept = true; }

 private:
  fs::path m_folder;
  std::vector<fs::path> m_written;
  bool m_isNew = false;
  bool m_isKept = false;
};

void backup(Session& session, const std::string& folder) {
  session.openMouse();
  BackupFolder target(folder);
  std::vector<durable::FolderEntry> files;
  std::vector<std::string> notes;
  std::size_t macros = 0;
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    const auto read = NerinAction::readSlotReports(static_cast<std::uint8_t>(slot));
    session.require(read.outcome);
    SlotBackup slotBackup = backupfiles::fromReports(slot, read.value, notes);
    macros += slotBackup.macroCount();
    for (auto& file : backupfiles::filesOf(slot, slotBackup)) {
      files.push_back(std::move(file));
    }
  }
  target.write(files);
  target.keep();
  std::vector<std::string> lines{"10 slots and " + std::to_string(macros) + " macros are in " +
                                 printable(folder)};
  lines.insert(lines.end(), notes.begin(), notes.end());
  session.output.print(lines,
                       {{"folder", folder}, {"slots", 10}, {"macros", macros}, {"notes", notes}});
}

// Adds the macros to the catalogue as hidden for this run, so that the slot's buttons can refer to
// them.
Outcome writeRecords(int slot, const SlotBackup& backup) {
  _Nerin_PROFILE record = backup.profile.profileData();
  for (_BTN_INFO& button : record.btnInfo) {
    if (backupfiles::playsMacro(button)) {
      button.MacroID = ~std::uint32_t{0};
    }
  }
  for (const auto& [index, macro] : backup.macros) {
    macro->setMacroId(NerinAction::getNewMacorId());
    macro->setIsNoDisplay(true);
    NerinAction::macroStore->macroListArrs.push_back(macro);
    record.btnInfo[index].MacroID = static_cast<std::uint32_t>(macro->macroId());
  }
  const NerinAction::TransferSeries series;
  const auto number = static_cast<std::uint8_t>(slot);
  editState->currFWProfile() = record;
  Outcome outcome = NerinAction::setFWProfileName(number, backup.profile.name());
  outcome += NerinAction::setFWProfileDataPro(number);
  outcome += NerinAction::refreshDeviceData();
  return outcome;
}

void noteMissingMacros(int slot, const SlotBackup& backup, std::vector<std::string>& notes) {
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (backupfiles::playsMacro(backup.profile.profileData().btnInfo[index]) &&
        !backup.macros.contains(index)) {
      notes.push_back(place(slot, index) + ": disabled, since the backup has no macro for it");
    }
  }
}

// Notes each byte of a report that the mouse holds otherwise.
template <typename Report>
void compare(const std::string& what, const Report& kept, const Report& held,
             std::vector<std::string>& notes) {
  std::string bytes;
  for (std::size_t at = 0; at < kept.size(); ++at) {
    if (kept[at] != held[at]) {
      bytes += (bytes.empty() ? "" : ", ") + std::to_string(at);
    }
  }
  if (!bytes.empty()) {
    notes.push_back(what + ": the mouse did not take these bytes: " + bytes);
  }
}

// Reads the slot again, because the mouse drops without an answer what it does not like.
Outcome verify(int slot, const NerinAction::SlotReports& kept, std::vector<std::string>& notes) {
  const auto read = NerinAction::readSlotReports(static_cast<std::uint8_t>(slot));
  if (!read.outcome.isDone()) {
    return read.outcome;
  }
  const std::string name = "slot " + std::to_string(slot + 1);
  compare(name + ", name", kept.name, read.value.name, notes);
  compare(name + ", image", kept.image, read.value.image, notes);
  for (const auto& [index, macro] : kept.macros) {
    const auto held = read.value.macros.find(index);
    if (held == read.value.macros.end()) {
      notes.push_back(place(slot, index) + ": the mouse did not take its macro");
    } else {
      compare(place(slot, index) + ", macro", macro, held->second, notes);
    }
  }
  for (const auto& [index, macro] : read.value.macros) {
    if (!kept.macros.contains(index)) {
      notes.push_back(place(slot, index) +
                      ": plays the macro that the mouse had there, since the backup has none");
    }
  }
  return {};
}

// What the slot is to get, for the disk: a slot whose restore is cut off holds a mixture, which
// must not become the content of a profile.
SlotDraft intentOf(int slot, const SlotBackup& backup) {
  std::vector<std::string> ignored;
  const SlotBackup records =
      backup.reports ? backupfiles::fromReports(slot, *backup.reports, ignored) : SlotBackup();
  const SlotBackup& source = backup.reports ? records : backup;
  SlotDraft intent;
  intent.slot = slot;
  intent.isMouseOnly = true;
  intent.content.profile = source.profile.profileData();
  intent.content.profileId = ProfieController::notLinked;
  setText(intent.content.profileName, source.profile.name().value_or(""));
  bool isActive = false;
  const ProfieController& library = ProfieController::getShareProCon();
  setText(intent.content.activeAppPath, library.getLinkAppPath(slot, isActive).value_or(""));
  intent.content.isActiveApp = isActive ? 1 : 0;
  // Macros of a draft are known by their names, and a backup can hold several of one name.
  std::set<std::string> names{NerinAction::generatedMacroName};
  for (const auto& [index, macro] : source.macros) {
    auto& copy = intent.macros.emplace_back(LXAction::CopyObject(*macro));
    if (!names.insert(macro->nameStr().value_or(NerinAction::generatedMacroName)).second) {
      copy->setNameStr(std::string(NerinAction::generatedMacroName) + "_" + std::to_string(slot) +
                       "_" + std::to_string(index));
    }
    copy->setMacroId(index + 1);
    copy->setIsNoDisplay(true);
    intent.content.profile.btnInfo[index].MacroID = static_cast<std::uint32_t>(index) + 1;
  }
  return intent;
}

Outcome writeReports(int slot, const SlotBackup& backup, std::vector<std::string>& notes) {
  if (!backup.reports) {
    noteMissingMacros(slot, backup, notes);
    return writeRecords(slot, backup);
  }
  Outcome outcome = NerinAction::writeSlotReports(static_cast<std::uint8_t>(slot), *backup.reports);
  if (outcome.isDone()) {
    outcome += verify(slot, *backup.reports, notes);
  }
  return outcome;
}

Outcome writeSlot(int slot, const SlotBackup& backup, std::vector<std::string>& notes) {
  NerinAction::beginApply(intentOf(slot, backup));
  Outcome outcome = writeReports(slot, backup, notes);
  if (outcome.isDone()) {
    NerinAction::forgetApply(slot);
  }
  return outcome;
}

// Everything is read before anything is written.
Slots loadSlots(const fs::path& folder, std::vector<std::string>& notes) {
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    throw CommandError(ExitCode::Failed, "no such folder: " + printable(folder.string()));
  }
  Slots slots;
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    if (auto slotBackup = backupfiles::load(folder, slot, notes)) {
      slots[slot] = std::move(slotBackup);
    }
  }
  if (slots.empty()) {
    throw CommandError(ExitCode::Failed, "no backup in " + printable(folder.string()));
  }
  return slots;
}

void restore(Session& session, const std::string& folder) {
  session.openLibrary();
  std::vector<std::string> notes;
  const Slots slots = loadSlots(folder, notes);
  std::size_t macros = 0;
  for (const auto& [slot, slotBackup] : slots) {
    macros += slotBackup->macroCount();
  }
  session.openMouse();
  session.showProgress(macros);
  for (const auto& [slot, slotBackup] : slots) {
    session.require(writeSlot(slot, *slotBackup, notes));
  }
  NerinAction::sendMessageToDaemon(NerinAction::MessageProfileApplied);
  std::vector<std::string> lines{std::to_string(slots.size()) + " slots and " +
                                 std::to_string(macros) + " macros are on the mouse again"};
  lines.insert(lines.end(), notes.begin(), notes.end());
  session.output.print(
      lines, {{"folder", folder}, {"slots", slots.size()}, {"macros", macros}, {"notes", notes}});
}

}  // namespace

void addBackupCommands(GrammarCommand program, Command& chosen) {
  addWithWord(program, chosen, "backup",
              "Keep all ten slots with their names and macros as files in an empty folder",
              "backup mouse-before-update", "folder", backup);
  addWithWord(program, chosen, "restore", "Write the slots of a backup to the mouse",
              "restore mouse-before-update", "folder", restore);
}
