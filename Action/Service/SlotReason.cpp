#include "Action/Service/SlotReason.h"

#include <algorithm>

namespace {

constexpr int slotCount = 10;

std::optional<std::int32_t> numberIn(const LXUserInfo& userInfo, const char* key) {
  const auto entry = userInfo.find(key);
  const auto* number =
      entry != userInfo.end() ? std::get_if<std::int32_t>(&entry->second) : nullptr;
  return number != nullptr ? std::optional(*number) : std::nullopt;
}

bool isSlot(std::int32_t number) {
  return number >= 0 && number < slotCount;
}

// The name of the text for each kind; its %1 is the slot, %2 the program or the other slot.
const char* textOf(SlotReason::Kind kind) {
  switch (kind) {
    case SlotReason::NoMouse:
      return "No mouse is there";
    case SlotReason::SwitchedOff:
      return "Slot %1: slots do not follow programs, because this is switched off";
    case SlotReason::InFront:
      return "Slot %1, because %2 is in front";
    case SlotReason::Running:
      return "Slot %1, because %2 is running";
    case SlotReason::ByHandMeanwhile:
      return "Slot %1, chosen by hand while %2 is in front";
    case SlotReason::WindowHasEdits:
      return "Slot %1: slots do not follow programs while the window has edits that are not "
             "applied";
    case SlotReason::Locked:
      return "Slot %1: slots do not follow programs while the session is locked";
    case SlotReason::Untold:
      return "Slot %1: this desktop does not tell programs which window is in front";
    case SlotReason::InsteadRunning:
      return "This desktop does not tell programs which window is in front: switching while the "
             "program runs instead";
    case SlotReason::TriedAgain:
      return "Slot %1: slot %2 could not be chosen and is tried again";
    case SlotReason::NothingLinked:
    case SlotReason::ByHand:
      break;
  }
  return "Slot %1, the last one chosen by hand";
}

}  // namespace

LXUserInfo slotreason::userInfoOf(const SlotReason& reason) {
  return {{"kind", static_cast<std::int32_t>(reason.kind)},
          {"slot", static_cast<std::int32_t>(reason.slot)},
          {"otherSlot", static_cast<std::int32_t>(reason.otherSlot)}};
}

std::optional<SlotReason> slotreason::reasonOf(const std::string& object,
                                               const LXUserInfo& userInfo) {
  const auto kind = numberIn(userInfo, "kind");
  const auto slot = numberIn(userInfo, "slot");
  const auto otherSlot = numberIn(userInfo, "otherSlot");
  if (!kind || *kind < SlotReason::NoMouse || *kind > SlotReason::TriedAgain || !slot ||
      !isSlot(*slot) || !otherSlot || !isSlot(*otherSlot)) {
    return std::nullopt;
  }
  return SlotReason{static_cast<SlotReason::Kind>(*kind), *slot, *otherSlot, object};
}

std::string slotreason::sentenceOf(const SlotReason& reason, const Words& words) {
  const std::string second =
      reason.kind == SlotReason::TriedAgain ? std::to_string(reason.otherSlot + 1) : reason.program;
  std::string text =
      filledText(words(textOf(reason.kind)), {std::to_string(reason.slot + 1), second});
  std::replace_if(
      text.begin(), text.end(),
      [](char character) { return static_cast<unsigned char>(character) < ' '; }, ' ');
  return text;
}

std::string slotreason::sentenceOf(const SlotReason& reason) {
  return sentenceOf(reason, [](const std::string& name) { return name; });
}

bool slotreason::concernsProgram(const SlotReason& reason) {
  switch (reason.kind) {
    case SlotReason::NoMouse:
    case SlotReason::NothingLinked:
    case SlotReason::SwitchedOff:
    case SlotReason::Locked:
      return false;
    default:
      return true;
  }
}
