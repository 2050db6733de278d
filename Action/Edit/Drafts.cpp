#include "Action/Edit/Drafts.h"

#include <algorithm>
#include <filesystem>
#include <map>
#include <string>
#include <utility>

#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Edit/DraftFiles.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Record/Limits.h"
#include "Action/Wire/KeyCodes.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/ProcessWide.h"

namespace {

struct DraftStore {
  bool isLoaded = false;
  std::map<int, SlotDraft> drafts;
  std::map<int, std::string> written;  // the documents on disk
  // The slot whose draft is only the working copy of an open window; -1 for none.
  int undecided = -1;
  bool isLeftAlone = false;
};
ProcessWide<DraftStore> store;

ProfieController& library() {
  return ProfieController::getShareProCon();
}

bool isSlot(int slot) {
  return slot >= 0 && slot < limits::slotCount;
}

std::string fileOf(const char* kind, int slot) {
  return kind + std::to_string(slot + 1) + ".xml";
}

std::string editFile(int slot) {
  return fileOf("slot-", slot);
}

std::string applyFile(int slot) {
  return fileOf("applying-", slot);
}

std::optional<SlotDraft> readDraft(const std::string& file, int slot) {
  const auto document = durable::readFile(draftfiles::pathOf(file));
  if (!document) {
    return std::nullopt;
  }
  auto draft = draftIn(*document);
  if (!draft || draft->slot != slot) {
    LXLogger::warning(draftfiles::pathOf(file).string() + " holds no draft");
    return std::nullopt;
  }
  return draft;
}

DraftStore& loaded() {
  if (!store->isLoaded) {
    store->isLoaded = true;
    for (int slot = 0; slot < limits::slotCount; ++slot) {
      if (auto draft = readDraft(editFile(slot), slot)) {
        store->written[slot] = documentOf(*draft);
        store->drafts.emplace(slot, std::move(*draft));
      }
    }
  }
  return *store;
}

void forget(int slot) {
  DraftStore& all = loaded();
  all.drafts.erase(slot);
  all.undecided = all.undecided == slot ? -1 : all.undecided;
  if (all.written.erase(slot) > 0) {
    draftfiles::remove(editFile(slot));
  }
}

bool playsMacro(const _BTN_INFO& button) {
  return button.FuncTableId == NerinAction::FunctionMacro;
}

std::shared_ptr<MacroInfo> copyOf(const MacroInfo& macro) {
  auto copy = LXAction::CopyObject(macro);
  copy->setMacroId(macro.macroId());
  copy->setIsEdited(macro.isEdited());
  return copy;
}

// The macro of the catalogue that the draft means: by its name, since ids last for one run only. A
// macro that is unknown, or whose unapplied changes the catalogue has lost, comes from the draft.
std::shared_ptr<MacroInfo> macroFor(const std::shared_ptr<MacroInfo>& drafted, bool isNewer) {
  auto known = NerinAction::getMacroByName(drafted->nameStr().value_or(""));
  if (!known) {
    auto copy = copyOf(*drafted);
    copy->setMacroId(NerinAction::getNewMacorId());
    return NerinAction::macroStore->macroListArrs.emplace_back(std::move(copy));
  }
  if (isNewer && !known->isEdited()) {
    known->setKeyInfoArr(copyOf(*drafted)->keyInfoArr());
    known->setIsEdited(true);
  }
  return known;
}

void takeMacros(_Nerin_PROFILE& record, const SlotDraft& draft, bool isApply) {
  std::map<std::uint32_t, std::uint32_t> ids;
  for (const auto& drafted : draft.macros) {
    const auto macro = macroFor(drafted, isApply || drafted->isEdited());
    ids[static_cast<std::uint32_t>(drafted->macroId())] =
        static_cast<std::uint32_t>(macro->macroId());
  }
  for (_BTN_INFO& button : record.btnInfo) {
    const auto id = ids.find(button.MacroID);
    if (playsMacro(button) && id != ids.end()) {
      button.MacroID = id->second;
    }
  }
  NerinAction::refreshMenuList();
}

void take(const SlotDraft& draft, bool isApply) {
  _Nerin_CONFIG content = draft.content;
  takeMacros(content.profile, draft, isApply);
  const std::string name(textOf(content.profileName));
  if (isApply && !name.empty() && !library().getProValueByProid(content.profileId)) {
    // The library may have got the profile of an Apply that failed: its name was free before.
    if (const auto named = library().getProfileByName(name)) {
      content.profileId = named->profileId();
    }
  }
  NerinAction::takeContent(draft.slot, content);
}

}  // namespace

void NerinAction::takeContent(int slot, const _Nerin_CONFIG& content) {
  editState->edit() = content.profile;
  const std::string_view name = textOf(content.profileName);
  library().setCurrFWProfileName(name.empty() ? std::nullopt
                                              : std::optional<std::string>(std::string(name)));
  std::uint64_t& link = library().fwProfileID()[static_cast<std::size_t>(slot)];
  link = content.profileId;
  if (!library().getProValueByProid(link)) {
    link = ProfieController::notLinked;
  }
  library().setCurrProfile(library().getProfileByFWProIndex(slot));
  library().setCurrActivePath(std::string(textOf(content.activeAppPath)));
  library().setCurrIsActive(content.isActiveApp != 0);
}

SlotDraft NerinAction::currentDraft(int slot) {
  SlotDraft draft;
  draft.slot = slot;
  draft.content.profile = editState->selProfile();
  draft.content.profileId = isSlot(slot) ? library().fwProfileID()[static_cast<std::size_t>(slot)]
                                         : ProfieController::notLinked;
  setText(draft.content.profileName, library().currFWProfileName().value_or(""));
  draft.content.isActiveApp = library().currIsActive() ? 1 : 0;
  setText(draft.content.activeAppPath, library().currActivePath().value_or(""));
  for (const _BTN_INFO& button : draft.content.profile.btnInfo) {
    const auto macro =
        playsMacro(button) ? getMacroById(static_cast<std::int32_t>(button.MacroID)) : nullptr;
    if (macro && std::find(draft.macros.begin(), draft.macros.end(), macro) == draft.macros.end()) {
      draft.macros.push_back(macro);
    }
  }
  return draft;
}

void NerinAction::keepDraft(const _Nerin_PROFILE* working) {
  const int slot = library().currFWProfileIndex();
  if (!isSlot(slot) || store->isLeftAlone) {
    return;
  }
  DraftStore& all = loaded();
  if (!editState->isEdited() && working == nullptr) {
    if (all.undecided == slot) {
      forget(slot);
    }
    return;
  }
  SlotDraft draft = currentDraft(slot);
  all.undecided = working != nullptr && !editState->isEdited() ? slot : -1;
  if (working != nullptr) {
    draft.content.profile = *working;
  }
  std::string document = documentOf(draft);
  // The catalogue's macros go on changing.
  for (auto& macro : draft.macros) {
    macro = copyOf(*macro);
  }
  all.drafts[slot] = std::move(draft);
  if (all.written[slot] != document && draftfiles::write(editFile(slot), document)) {
    all.written[slot] = std::move(document);
  }
}

bool NerinAction::hasDraft(int slot) {
  return loaded().drafts.contains(slot);
}

bool NerinAction::isAnyDraftOnDisk() {
  for (int slot = 0; slot < limits::slotCount; ++slot) {
    std::error_code error;
    if (std::filesystem::exists(draftfiles::pathOf(editFile(slot)), error)) {
      return true;
    }
  }
  return false;
}

std::optional<SlotDraft> NerinAction::draftOf(int slot) {
  const auto draft = loaded().drafts.find(slot);
  return draft != store->drafts.end() ? std::optional(draft->second) : std::nullopt;
}

void NerinAction::leaveDraftsAlone() {
  store->isLeftAlone = true;
}

bool NerinAction::restoreDraft(int slot) {
  if (const auto draft = loaded().drafts.find(slot); draft != store->drafts.end()) {
    take(SlotDraft(draft->second), false);
    return true;
  }
  if (const auto draft = unfinishedApply(slot); draft && !draft->isDiscarded) {
    take(*draft, true);
    return true;
  }
  return false;
}

void NerinAction::dropDraft(int slot) {
  forget(slot);
  if (slot == library().currFWProfileIndex()) {
    editState->clearNeedSave();
  }
}

void NerinAction::discardDraft(int slot) {
  dropDraft(slot);
  if (auto draft = unfinishedApply(slot)) {
    draft->isDiscarded = true;
    draftfiles::write(applyFile(slot), documentOf(*draft));
  }
}

bool NerinAction::isApplyUnfinished(int slot) {
  std::error_code error;
  return isSlot(slot) && std::filesystem::exists(draftfiles::pathOf(applyFile(slot)), error);
}

std::optional<SlotDraft> NerinAction::unfinishedApply(int slot) {
  return isSlot(slot) ? readDraft(applyFile(slot), slot) : std::nullopt;
}

bool NerinAction::restoreApply(int slot) {
  const auto draft = unfinishedApply(slot);
  if (draft) {
    take(*draft, true);
  }
  return draft.has_value();
}

void NerinAction::beginApply(const SlotDraft& draft) {
  draftfiles::write(applyFile(draft.slot), documentOf(draft));
}

void NerinAction::endApply(int slot) {
  if (!store->isLeftAlone) {
    forget(slot);
  }
  forgetApply(slot);
}

void NerinAction::forgetApply(int slot) {
  if (isApplyUnfinished(slot)) {
    draftfiles::remove(applyFile(slot));
  }
}
