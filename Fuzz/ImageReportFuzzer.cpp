#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/ProfileImage.h"
#include "Fuzz/FuzzInput.h"

// Any answer to the read of a slot's image, and to the reads of the macros that it names: taken
// into the record, shown, and put back into the mouse's form.
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
