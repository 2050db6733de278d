#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/Wire/ProfileImage.h"
#include "Fuzz/FuzzInput.h"

// Any answer to a read of a slot's name, which is then processed like any other name.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::home();
  NerinAction::startListenDev();
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::refreshMenuList();
  fuzz::answerReadsWith({data, size});
  const auto name = NerinAction::getFWProfileName(0).value;
  fuzz::require(!name || name->size() <= limits::nameCharacters);
  fuzz::answerReadsWith({data, size});
  static_cast<void>(NerinAction::loadSlot(9));
  static_cast<void>(NerinAction::setFWProfileName(9, name));
  return 0;
}
