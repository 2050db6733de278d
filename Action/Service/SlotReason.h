#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "Action/Texts/FilledText.h"
#include "Kit/Core/LXNotificationCenter.h"

// Why the mouse has its slot. The background service knows, and tells every program that asks; each
// says it in the words of its user.
struct SlotReason {
  enum Kind : std::int32_t {
    NoMouse = 0,
    // No program is linked to a slot, so that there is nothing to explain.
    NothingLinked = 1,
    SwitchedOff = 2,
    InFront = 3,
    Running = 4,
    ByHand = 5,
    // A person chose another slot while the linked program is in front.
    ByHandMeanwhile = 6,
    WindowHasEdits = 7,
    Locked = 8,
    // The desktop tells nothing of programs.
    Untold = 9,
    // It does not tell which window is in front, but which programs run.
    InsteadRunning = 10,
    TriedAgain = 11,
  };

  Kind kind = NoMouse;
  int slot = 0;         // from 0
  int otherSlot = 0;    // the one that is tried again
  std::string program;  // its name for a person

  bool operator==(const SlotReason&) const = default;
};

namespace slotreason {

// Tells the reason: the object is the program's name.
inline constexpr const char* notification = "NerinSlotReason";
// Asks the service to tell it.
inline constexpr const char* question = "NerinSlotReasonAsked";

LXUserInfo userInfoOf(const SlotReason& reason);
// Nothing for what is no reason.
std::optional<SlotReason> reasonOf(const std::string& object, const LXUserInfo& userInfo);

// The reason in one sentence without a line break. Its words are asked for by their English text.
std::string sentenceOf(const SlotReason& reason, const Words& words);
// The same in English.
std::string sentenceOf(const SlotReason& reason);
// Whether a person who looks at the screen wants to know: it concerns a program.
bool concernsProgram(const SlotReason& reason);

}  // namespace slotreason
