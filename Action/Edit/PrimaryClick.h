#pragma once

#include "Action/Record/Records.h"

// The primary click: without a button that gives it, the desktop can hardly be used.
namespace NerinAction {

bool isPrimaryClick(const _BTN_INFO& button);
int primaryClicksOf(const _Nerin_PROFILE& profile);
// Whether the button (0..15) can get another function and a primary click remains. False for an
// index that no button has.
bool canReassignButton(const _Nerin_PROFILE& profile, int index);

}  // namespace NerinAction
