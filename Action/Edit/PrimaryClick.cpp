#include "Action/Edit/PrimaryClick.h"

#include <algorithm>
#include <iterator>

bool NerinAction::isPrimaryClick(const _BTN_INFO& button) {
  return button.FuncID == 1 && button.FuncTableId == 1 && button.KeyBit[0] == 1;
}

int NerinAction::primaryClicksOf(const _Nerin_PROFILE& profile) {
  return static_cast<int>(
      std::count_if(std::begin(profile.btnInfo), std::end(profile.btnInfo), isPrimaryClick));
}

bool NerinAction::canReassignButton(const _Nerin_PROFILE& profile, int index) {
  return index >= 0 && index < static_cast<int>(buttonCount) &&
         (!isPrimaryClick(profile.btnInfo[index]) || primaryClicksOf(profile) >= 2);
}
