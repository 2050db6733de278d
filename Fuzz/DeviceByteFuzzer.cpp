#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Edit/SlotOperations.h"
#include "Action/Library/ProfieController.h"
#include "Action/Wire/ProfileImage.h"
#include "Fuzz/FuzzInput.h"

// Any answers to reads of single bytes, including short ones, and the slot that they name.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::home();
  NerinAction::startListenDev();
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::refreshMenuList();
  fuzz::answerReadsWith({data, size});
  static_cast<void>(NerinAction::resetDevPro());
  const int slot = NerinAction::getProfileIndexByDevice().value;
  fuzz::require(slot >= 0 && slot <= 15);
  static_cast<void>(NerinAction::loadSlot(slot));
  fuzz::require(ProfieController::getShareProCon().currFWProfileIndex() < 10);
  static_cast<void>(NerinAction::getAdrrDataWithAddr(NerinAction::getOffsetAdrBy(255, 10)).value);
  return 0;
}
