#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Fuzz/FuzzInput.h"

// Any answer to a read of a slot's image and of the macros that it names: stored in the record,
// shown, and converted back for the mouse.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::home();
  NerinAction::startListenDev();
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::refreshMenuList();
  fuzz::answerReadsWith({data, size});
  static_cast<void>(NerinAction::getFWProfileDataPro(0));
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    NerinAction::getBtnCaption(editState->currFWProfile().btnInfo[index], index);
    static_cast<void>(
        NerinAction::setBtnInfoToDevicePro(index, editState->currFWProfile().btnInfo[index]));
  }
  static_cast<void>(NerinAction::setFWProfileDataPro(0));
  return 0;
}
