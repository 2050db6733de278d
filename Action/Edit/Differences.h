#pragma once

#include <string>
#include <vector>

#include "Action/Record/Records.h"

// What would Apply change? One place of a profile that is not as it was, in the words of
// Descriptions: what it is, what holds now and what would hold. A level that is not in use has no
// value, which is an empty text.
struct Difference {
  std::string about;
  std::string before;
  std::string after;
};

// The places in which the profiles differ, in the order in which they are described. Two buttons
// that read the same and are stored differently are a difference, too.
std::vector<Difference> differencesBetween(const _Nerin_PROFILE& before,
                                           const _Nerin_PROFILE& after);

namespace NerinAction {

// The same between the slot as it was read and the edited profile. Nothing while it is not known
// what the slot holds.
std::vector<Difference> pendingDifferences();

}  // namespace NerinAction
