#include "CommandLine/BackupFiles.h"

#include <algorithm>
#include <cstdio>

#include "Action/NerinAction.h"
#include "CommandLine/CommandError.h"
#include "CommandLine/Commands.h"
#include "Kit/Core/LXAction.h"

namespace fs = std::filesystem;

namespace {

using backupfiles::SlotBackup;

std::string slotFile(int slot, const char* extension) {
  char name[32];
  std::snprintf(name, sizeof name, "slot-%02d.%s", slot + 1, extension);
  return name;
}

std::string macroFile(int slot, int button) {
  char name[48];
  std::snprintf(name, sizeof name, "slot-%02d-button-%02d.mac", slot + 1, button + 1);
  return name;
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

// Keeps equivalent parameters of the image, so that the files alone give the same bytes.
void keepRepeat(_BTN_INFO& button, const NerinAction::MacroStream& stream) {
  std::uint8_t type = 0;
  std::uint8_t count = 0;
  NerinAction::getMacroRepeatType(type, count, button);
  if (type != stream.repeatType || count != stream.repeatCount) {
    button.KeyBit[0] = NerinAction::getMacroRepeatTypeFromFW(stream.repeatType, stream.repeatCount);
    button.KeyBit[1] = NerinAction::getMacroRepeatCountFromFW(stream.repeatCount);
  }
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

// From the profile and the macro files.
void loadRecords(const fs::path& folder, int slot, SlotBackup& backup) {
  backup.profile = *profileInFile((folder / slotFile(slot, "pro")).string());
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (backupfiles::playsMacro(backup.profile.profileData().btnInfo[index])) {
      if (auto macro = loadMacro(folder / macroFile(slot, index))) {
        backup.macros[index] = std::move(macro);
      }
    }
  }
}

}  // namespace

std::string backupfiles::place(int slot, int button) {
  return "slot " + std::to_string(slot + 1) + ", button " + std::to_string(button + 1);
}

bool backupfiles::playsMacro(const _BTN_INFO& button) {
  return button.FuncTableId == NerinAction::FunctionMacro && button.btnType == ButtonTypeMacro;
}

backupfiles::SlotBackup backupfiles::fromReports(int slot, const NerinAction::SlotReports& reports,
                                                 std::vector<std::string>& notes) {
  SlotBackup backup;
  backup.reports = reports;
  const auto name = NerinAction::decodeNameReport(reports.name);
  if (!name) {
    notes.push_back("slot " + std::to_string(slot + 1) +
                    ": its name is not ASCII and is left out of the profile file");
  }
  backup.profile.setName(name.value_or(""));
  _Nerin_PROFILE record{};
  const auto buttons =
      NerinAction::decodeProfileImage(reports.image, record, NerinAction::singleFunctionIdOf);
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    if (!buttons[static_cast<std::size_t>(index)]) {
      continue;
    }
    const auto held = reports.macros.find(index);
    const auto stream =
        held != reports.macros.end() ? NerinAction::decodeMacroReport(held->second) : std::nullopt;
    if (!stream) {
      notes.push_back(place(slot, index) + ": the mouse holds no macro for it");
      continue;
    }
    keepRepeat(record.btnInfo[index], *stream);
    backup.macros[index] = macroOf(*stream);
  }
  backup.profile.setProfileData(record);
  return backup;
}

std::vector<durable::FolderEntry> backupfiles::filesOf(int slot, SlotBackup& backup) {
  const ConfigBytes bytes = backup.profile.fileBytes();
  std::vector<durable::FolderEntry> files;
  files.reserve(2 + backup.macros.size());
  if (backup.reports) {
    files.push_back({slotFile(slot, "raw"), NerinAction::encodeSlotFile(*backup.reports)});
  }
  files.push_back({slotFile(slot, "pro"), std::string(bytes.data(), bytes.size())});
  for (const auto& [index, macro] : backup.macros) {
    files.push_back({macroFile(slot, index), keyedarchive::archive(*macro)});
  }
  return files;
}

std::unique_ptr<backupfiles::SlotBackup> backupfiles::load(const fs::path& folder, int slot,
                                                           std::vector<std::string>& notes) {
  std::error_code error;
  const std::string rawFile = slotFile(slot, "raw");
  const bool hasBytes = fs::exists(folder / rawFile, error);
  const bool hasProfile = fs::exists(folder / slotFile(slot, "pro"), error);
  if (!hasBytes && !hasProfile) {
    return nullptr;
  }
  auto backup = std::make_unique<SlotBackup>();
  if (const auto bytes = durable::readFile(folder / rawFile)) {
    backup->reports = NerinAction::decodeSlotFile(*bytes, static_cast<std::uint8_t>(slot));
  }
  if (backup->reports) {
    return backup;
  }
  const std::string why = rawFile + (hasBytes ? " is damaged" : " is missing");
  if (!hasProfile) {
    throw CommandError(ExitCode::Failed, printable((folder / rawFile).string()) +
                                             " is damaged, and there is no profile file for slot " +
                                             std::to_string(slot + 1));
  }
  loadRecords(folder, slot, *backup);
  notes.push_back("slot " + std::to_string(slot + 1) + ": written from " + slotFile(slot, "pro") +
                  ", since " + why + "; bytes that only the mouse knows are not restored");
  return backup;
}
