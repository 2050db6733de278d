#pragma once

#include "Action/Record/Records.h"

// Without a button for the primary click, the desktop is almost unusable.
namespace NerinAction {

bool isPrimaryClick(const _BTN_INFO& button);
int primaryClicksOf(const _Nerin_PROFILE& profile);
// Whether a primary click remains when the button (0..15) gets another function. False for any
// other index.
bool canReassignButton(const _Nerin_PROFILE& profile, int index);

}  // namespace NerinAction
