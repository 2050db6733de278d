#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Fuzz/FuzzInput.h"

// Any answer to a read of a slot's image and of the macros that it names: stored in the record,
// shown, and converted back for the mouse.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::home();
  NerinAction::startListenDev();
  NerinAction::macroListArrs.clear();
  NerinAction::refreshMenuList();
  fuzz::answerReadsWith({data, size});
  NerinAction::getFWProfileDataPro(0);
  for (int index = 0; index < static_cast<int>(buttonCount); ++index) {
    NerinAction::getBtnCaption(currFWProfile.btnInfo[index], index);
    NerinAction::setBtnInfoToDevicePro(index, currFWProfile.btnInfo[index]);
  }
  NerinAction::setFWProfileDataPro(0);
  return 0;
}
