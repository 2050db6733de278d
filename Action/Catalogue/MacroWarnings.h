#pragma once

#include <cstdint>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"

// One thing about a macro that the mouse will do otherwise than its commands say.
struct MacroWarning {
  enum class Kind {
    CannotSend,     // the mouse has no code for the key, or for one of the combination
    LostButton,     // the command does not say which mouse button it is
    NotReadBack,    // a slot that is read gives the button's command back as a LostButton; stands
                    // at the first of them
    NotReleased,    // the key or button is still down when the macro ends
    LongPause,      // the pause after the command is longer than the mouse can store
    NoRoom,         // the command is the first that does not wholly fit into the mouse
    TooManyEvents,  // more than the editor records
  };
  static constexpr int wholeMacro = -1;

  Kind kind = Kind::CannotSend;
  int row = wholeMacro;  // of the command, from 0
  // LongPause: the milliseconds that the mouse waits. TooManyEvents: the events.
  std::int32_t value = 0;

  bool operator==(const MacroWarning&) const = default;
};

namespace NerinAction {

// What to say about the commands before they are applied: first of the macro as a whole, then by
// row. Asks the catalogue for the keys of combinations.
std::vector<MacroWarning> warningsOf(const MacroInfo::Events& commands);

}  // namespace NerinAction
