#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <map>
#include <memory>

#include "Action/NerinAction.h"
#include "Action/Record/EditState.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"

namespace fs = std::filesystem;

namespace {

// The content of one slot of the mouse, and its files.
struct SlotBackup {
  ProfileValue profile;
  std::map<int, std::shared_ptr<MacroInfo>> macros;  // by button index
};

std::string profileFile(int slot) {
  char name[32];
  std::snprintf(name, sizeof name, "slot-%02d.pro", slot + 1);
  return name;
}

std::string macroFile(int slot, int button) {
  char name[48];
  std::snprintf(name, sizeof name, "slot-%02d-button-%02d.mac", slot + 1, button + 1);
  return name;
}

std::string place(int slot, int button) {
  return "slot " + std::to_string(slot + 1) + ", button " + std::to_string(button + 1);
}

bool playsMacro(const _BTN_INFO& button) {
  return button.FuncTableId == NerinAction::FunctionMacro && button.btnType == ButtonTypeMacro;
}

// A backup keeps mouse buttons, unlike reading a slot for editing. They get the codes that macros
// of the library use.
std::shared_ptr<MacroInfo> macroOf(const NerinAction::MacroStream& stream) {
  auto macro = std::make_shared<MacroInfo>();
  macro->setNameStr(stream.name.value_or(NerinAction::generatedMacroName));
  for (const auto& event : stream.events) {
    const bool isMouse = event.isMouseButton();
    const std::int32_t code =
        isMouse ? event.code : static_cast<std::int32_t>(NerinAction::GetKeyCodeByFW(event.code));
    const std::int32_t press = isMouse ? MacroKeyInfo::MousePress : MacroKeyInfo::KeyPress;
    macro->keyInfoArr().push_back(
        std::make_shared<MacroKeyInfo>(code, press + (event.isRelease ? 1 : 0), event.delay));
  }
  return macro;
}

bool isKept(const NerinAction::MacroStreamEvent& event) {
  return event.isMouseButton() ||
         NerinAction::GetFWKeyCode(NerinAction::GetKeyCodeByFW(event.code)) == event.code;
}

Outcome readMacro(int slot, int index, _BTN_INFO& button, SlotBackup& backup,
                  std::vector<std::string>& notes) {
  const auto [outcome, stream] =
      NerinAction::readMacroStream(static_cast<std::uint8_t>(slot), index);
  if (!stream) {
    notes.push_back(place(slot, index) + ": the mouse holds no macro for it");
    return outcome;
  }
  // Keep equivalent parameters of the image, so that a restore writes the same bytes.
  std::uint8_t type = 0;
  std::uint8_t count = 0;
  NerinAction::getMacroRepeatType(type, count, button);
  if (type != stream->repeatType || count != stream->repeatCount) {
    button.KeyBit[0] =
        NerinAction::getMacroRepeatTypeFromFW(stream->repeatType, stream->repeatCount);
    button.KeyBit[1] = NerinAction::getMacroRepeatCountFromFW(stream->repeatCount);
  }
  if (!std::all_of(stream->events.begin(), stream->events.end(), isKept)) {
    notes.push_back(place(slot, index) + ": its macro has keys that a macro file cannot name");
  }
  backup.macros[index] = macroOf(*stream);
  return outcome;
}

NerinAction::ReadResult<SlotBackup> readSlotBackup(int slot, std::vector<std::string>& notes) {
  const auto number = static_cast<std::uint8_t>(slot);
  NerinAction::ReadResult<SlotBackup> result;
  SlotBackup& backup = result.value;
  const auto [nameOutcome, name] = NerinAction::getFWProfileName(number);
  result.outcome += nameOutcome;
  if (!name) {
    notes.push_back("slot " + std::to_string(slot + 1) + ": its name is not ASCII and is left out");
  }
  backup.profile.setName(name.value_or(""));
  _Nerin_PROFILE record{};
  const auto [imageOutcome, image] = NerinAction::readProfileImage(number);
  result.outcome += imageOutcome;
  const auto macros =
      NerinAction::decodeProfileImage(image, record, NerinAction::singleFunctionIdOf);
  for (std::size_t index = 0; index < buttonCount; ++index) {
    if (macros[index]) {
      result.outcome +=
          readMacro(slot, static_cast<int>(index), record.btnInfo[index], backup, notes);
    }
  }
  backup.profile.setProfileData(record);
  return result;
}

std::vector<durable::FolderEntry> filesOf(int slot, SlotBackup& backup) {
  const ConfigBytes bytes = backup.profile.fileBytes();
  std::vector<durable::FolderEntry> files{
      {profileFile(slot), std::string(bytes.data(), bytes.size())}};
  for (const auto& [index, macro] : backup.macros) {
    files.push_back({macroFile(slot, index), keyedarchive::archive(*macro)});
  }
  return files;
}

// Writes all files to the folder, or none.
void writeFiles(const fs::path& folder, const std::vector<durable::FolderEntry>& files) {
  std::vector<fs::path> written;
  for (const auto& file : files) {
    written.push_back(folder / file.name);
    if (const auto failure = durable::writeFile(written.back(), file.bytes)) {
      for (const fs::path& path : written) {
        std::error_code ignored;
        fs::remove(path, ignored);
      }
      require(failure, "the backup could not be written to " + printable(folder.string()));
    }
  }
}

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

void backup(Session& session, const std::string& folder) {
  session.openMouse();
  requireEmptyFolder(folder);
  std::vector<durable::FolderEntry> files;
  std::vector<std::string> notes;
  std::size_t macros = 0;
  Outcome outcome;
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    auto [slotOutcome, slotBackup] = readSlotBackup(slot, notes);
    outcome += slotOutcome;
    macros += slotBackup.macros.size();
    for (auto& file : filesOf(slot, slotBackup)) {
      files.push_back(std::move(file));
    }
  }
  session.require(outcome);
  writeFiles(folder, files);
  std::vector<std::string> lines{"10 slots and " + std::to_string(macros) + " macros are in " +
                                 printable(folder)};
  lines.insert(lines.end(), notes.begin(), notes.end());
  session.output.print(lines,
                       {{"folder", folder}, {"slots", 10}, {"macros", macros}, {"notes", notes}});
}

std::shared_ptr<MacroInfo> loadMacro(const fs::path& file) {
  std::error_code error;
  if (!fs::exists(file, error)) {
    return nullptr;
  }
  auto macro = LXAction::CopyObject<MacroInfo>(file);
  if (!macro) {
    throw CommandError(ExitCode::Failed, "no macro file: " + printable(file.string()));
  }
  return macro;
}

// The backup of a slot; null when the folder has none.
std::unique_ptr<SlotBackup> loadSlotBackup(const fs::path& folder, int slot) {
  const fs::path file = folder / profileFile(slot);
  std::error_code error;
  if (!fs::exists(file, error)) {
    return nullptr;
  }
  const auto profile = profileInFile(file.string());
  auto backup = std::make_unique<SlotBackup>();
  backup->profile = *profile;
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (playsMacro(profile->profileData().btnInfo[index])) {
      if (auto macro = loadMacro(folder / macroFile(slot, index))) {
        backup->macros[index] = std::move(macro);
      }
    }
  }
  return backup;
}

// Adds the macros to the catalogue as hidden for this run, so that the slot's buttons can refer to
// them.
Outcome writeSlotBackup(int slot, const SlotBackup& backup) {
  _Nerin_PROFILE record = backup.profile.profileData();
  for (_BTN_INFO& button : record.btnInfo) {
    if (playsMacro(button)) {
      button.MacroID = ~std::uint32_t{0};
    }
  }
  for (const auto& [index, macro] : backup.macros) {
    macro->setMacroId(NerinAction::getNewMacorId());
    macro->setIsNoDisplay(true);
    NerinAction::macroStore->macroListArrs.push_back(macro);
    record.btnInfo[index].MacroID = static_cast<std::uint32_t>(macro->macroId());
  }
  const auto number = static_cast<std::uint8_t>(slot);
  editState->currFWProfile() = record;
  Outcome outcome = NerinAction::setFWProfileName(number, backup.profile.name());
  outcome += NerinAction::setFWProfileDataPro(number);
  outcome += NerinAction::refreshDeviceData();
  return outcome;
}

std::vector<std::string> missingMacros(int slot, const SlotBackup& backup) {
  std::vector<std::string> notes;
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (playsMacro(backup.profile.profileData().btnInfo[index]) && !backup.macros.contains(index)) {
      notes.push_back(place(slot, index) + ": disabled, since the backup has no macro for it");
    }
  }
  return notes;
}

void restore(Session& session, const std::string& folder) {
  session.openLibrary();
  std::error_code error;
  if (!fs::is_directory(folder, error)) {
    throw CommandError(ExitCode::Failed, "no such folder: " + printable(folder));
  }
  // Read everything before writing anything.
  std::map<int, std::unique_ptr<SlotBackup>> slots;
  std::size_t macros = 0;
  for (int slot = 0; slot < ProfieController::slotCount; ++slot) {
    if (auto slotBackup = loadSlotBackup(folder, slot)) {
      macros += slotBackup->macros.size();
      slots[slot] = std::move(slotBackup);
    }
  }
  if (slots.empty()) {
    throw CommandError(ExitCode::Failed, "no backup in " + printable(folder));
  }
  session.openMouse();
  session.showProgress(macros);
  std::vector<std::string> notes;
  Outcome outcome;
  for (const auto& [slot, slotBackup] : slots) {
    outcome += writeSlotBackup(slot, *slotBackup);
    const auto missing = missingMacros(slot, *slotBackup);
    notes.insert(notes.end(), missing.begin(), missing.end());
  }
  session.require(outcome);
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
