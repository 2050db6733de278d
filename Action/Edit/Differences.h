#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "Action/Record/Records.h"

// One change that Apply would make.
struct Difference {
  enum class Place { Rate, LiftHeight, Mode, Zone, Level, Button, Name, Program };

  Place place = Place::Rate;
  std::size_t index = 0;  // of the zone, level or button
  // In the words of Descriptions: the place, the value now and the new value. The value of an
  // unused level, of a missing name or of no linked program is an empty text.
  std::string about;
  std::string before;
  std::string after;
};

// The differences between the profiles, in the order of the descriptions. Two buttons that read the
// same but are stored differently count as a difference.
std::vector<Difference> differencesBetween(const _Nerin_PROFILE& before,
                                           const _Nerin_PROFILE& after);
// The same with the name, first, and the linked program, last.
std::vector<Difference> differencesBetween(const _Nerin_CONFIG& before, const _Nerin_CONFIG& after);

namespace NerinAction {

// The differences between the slot as it was read and the edited profile with its name and linked
// program. Empty while the content of the slot is not known.
std::vector<Difference> pendingDifferences();

// Gives that place of the edit the value that the slot holds. Levels that this puts out of use, or
// back into it, go with it. Does nothing while the content of the slot is not known.
void takeBack(const Difference& difference);

}  // namespace NerinAction
