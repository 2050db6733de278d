#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Device/DeviceLink.h"
#include "Action/Device/SlotTransfer.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/MacroImage.h"
#include "Fuzz/FuzzInput.h"

// Any answer to a read of a macro: added to the catalogue and written back to the mouse.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::home();
  NerinAction::startListenDev();
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::refreshMenuList();
  for (const int button : {0, 15}) {
    fuzz::answerReadsWith({data, size});
    static_cast<void>(NerinAction::getFWMacroData(0, button));
    static_cast<void>(NerinAction::setFWMacroData(0, button).value);
  }
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    fuzz::require(macro->keyInfoArr().size() <= 2000);
  }
  return 0;
}
