#include "View/Windows/FailureMessage.h"

#include "Kit/Core/LXAction.h"
#include "View/Screen/ControlFactory.h"
#include "View/Windows/NestedLoop.h"

namespace {

const char* wordsFor(const Failure& failure) {
  if (failure.error == std::errc::device_or_resource_busy) {
    return "Another program is using the mouse. Try again.";
  }
  switch (failure.step) {
    case SlotStep::ReadActiveSlot:
    case SlotStep::ReadName:
    case SlotStep::ReadImage:
    case SlotStep::ReadMacro:
      return "The mouse did not answer.";
    case SlotStep::SaveLibrary:
      return "The profile library could not be saved.";
    case SlotStep::SavePreferences:
      return "The settings could not be saved.";
    case SlotStep::SelectSlot:
    case SlotStep::WriteName:
    case SlotStep::WriteMacro:
    case SlotStep::WriteImage:
    case SlotStep::WriteButton:
    case SlotStep::WriteSetting:
    case SlotStep::Refresh:
      break;
  }
  return "The mouse did not take all of it. Try again.";
}

void show(const char* key) {
  const NestedLoop scope;
  LXAction::showInfoMessage(NerinAction::tooltipText(key).toStdString());
}

}  // namespace

void failuremessage::tell(const Outcome& outcome) {
  if (const auto& failure = outcome.failure()) {
    show(wordsFor(*failure));
  }
}

void failuremessage::tellMacrosNotSaved() {
  show("The macros could not be saved.");
}
