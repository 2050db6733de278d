#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Wire/KeyCodes.h"
#include "Fuzz/FuzzInput.h"

// Any bytes as the function catalogue: loaded, searched, and its macros written and read again.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = (fuzz::home(), NerinAction::getSysPath());
  fuzz::emptyFolder(folder);
  fuzz::putFile(folder + "/MenuInfo.xml", fuzz::textOf(data, size));
  NerinAction::initMenuList();
  NerinAction::getSingleById(1);
  NerinAction::getMacroMenuByFunid(1);
  _BTN_INFO leftClick{};
  leftClick.FuncID = 1;
  leftClick.FuncTableId = NerinAction::FunctionMouse;
  leftClick.btnType = ButtonTypeSingle;
  NerinAction::getBtnCaption(leftClick, 0);
  NerinAction::refreshMenuList();
  const std::size_t macros = NerinAction::macroStore->macroListArrs.size();
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    macro->getMacroCount();
  }
  if (NerinAction::saveMenuList()) {
    NerinAction::initMenuList();
    fuzz::require(NerinAction::macroStore->macroListArrs.size() == macros);
  }
  return 0;
}
