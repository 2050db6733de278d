#pragma once

#include <string>
#include <vector>

#include "Action/Record/Records.h"

// One change that Apply would make, in the words of Descriptions: the place, the value now and the
// new value. The value of an unused level is an empty text.
struct Difference {
  std::string about;
  std::string before;
  std::string after;
};

// The differences between the profiles, in the order of the descriptions. Two buttons that read the
// same but are stored differently count as a difference.
std::vector<Difference> differencesBetween(const _Nerin_PROFILE& before,
                                           const _Nerin_PROFILE& after);

namespace NerinAction {

// The differences between the slot as it was read and the edited profile. Empty while the content
// of the slot is not known.
std::vector<Difference> pendingDifferences();

}  // namespace NerinAction
