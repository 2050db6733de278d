#pragma once

#include <filesystem>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Library/ProfileValue.h"
#include "Action/Wire/SlotReports.h"
#include "Kit/Core/DurableFile.h"

// The files of a backup: for each slot the mouse's own bytes, and the same as a profile and macros
// that the library takes.
namespace backupfiles {

struct SlotBackup {
  // Nothing in a backup without the mouse's bytes; what follows then counts.
  std::optional<NerinAction::SlotReports> reports;
  ProfileValue profile;
  std::map<int, std::shared_ptr<MacroInfo>> macros;  // by button index

  std::size_t macroCount() const { return reports ? reports->macros.size() : macros.size(); }
};

// "slot 2, button 3", both counted from 0 here.
std::string place(int slot, int button);
bool playsMacro(const _BTN_INFO& button);

// The backup of what was read. `notes` gets what a profile and macro files cannot hold.
SlotBackup fromReports(int slot, const NerinAction::SlotReports& reports,
                       std::vector<std::string>& notes);
std::vector<durable::FolderEntry> filesOf(int slot, SlotBackup& backup);

// The backup of a slot; null when the folder has none. `notes` gets why it is not the mouse's bytes
// that count. Throws CommandError if the files cannot be used.
std::unique_ptr<SlotBackup> load(const std::filesystem::path& folder, int slot,
                                 std::vector<std::string>& notes);

}  // namespace backupfiles
