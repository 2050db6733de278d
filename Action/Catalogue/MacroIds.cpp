#include "Action/Catalogue/MacroIds.h"

#include <algorithm>
#include <iterator>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Library/ProfieController.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/KeyCodes.h"

namespace {

bool isNamedIn(const _Nerin_PROFILE& profile, std::int32_t id) {
  return std::any_of(std::begin(profile.btnInfo), std::end(profile.btnInfo),
                     [&](const _BTN_INFO& button) {
                       return button.FuncTableId == NerinAction::FunctionMacro &&
                              static_cast<std::int32_t>(button.MacroID) == id;
                     });
}

bool isNamedByAButton(std::int32_t id) {
  const auto& profiles = ProfieController::getShareProCon().profileArr();
  return isNamedIn(editState->selProfile(), id) ||
         std::any_of(profiles.begin(), profiles.end(),
                     [&](const auto& one) { return isNamedIn(one->profileData(), id); });
}

// A button can only mean a macro that was there with this id before.
bool isSavedWithItsId(const MacroInfo& macro) {
  const auto& known = NerinAction::macroStore->known;
  return std::any_of(known.begin(), known.end(), [&](const macromerge::KnownMacro& one) {
    return one.macro.get() == &macro && one.id == macro.macroId();
  });
}

}  // namespace

bool NerinAction::hasOwnId(const MacroInfo& macro) {
  return macro.macroId() > 0 && getMacroById(macro.macroId()).get() == &macro;
}

bool NerinAction::giveOwnId(MacroInfo& macro) {
  const bool isFirst = getMacroById(macro.macroId()).get() == &macro;
  const bool isMeant = isFirst && isSavedWithItsId(macro) && isNamedByAButton(macro.macroId());
  if (hasOwnId(macro) || isMeant) {
    return false;
  }
  macro.setMacroId(getNewMacorId());
  return true;
}

bool NerinAction::giveOwnIds() {
  bool isChanged = false;
  for (const auto& macro : macroStore->macroListArrs) {
    isChanged = giveOwnId(*macro) || isChanged;
  }
  return isChanged;
}
