#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Catalogue/MenuInfo.h"
#include "Action/Wire/MacroImage.h"
#include "Fuzz/FuzzInput.h"
#include "Kit/Core/KeyedArchive.h"
#include "Kit/Core/LXAction.h"

// Any bytes as an archive of a macro, or of a menu entry that holds one. What is read must survive
// writing and reading again, and must fit into the mouse.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const auto bytes = fuzz::textOf(data, size);
  MenuInfo entry;
  keyedarchive::unarchive(bytes, entry);
  MacroInfo macro;
  if (!keyedarchive::unarchive(bytes, macro)) {
    return 0;
  }
  const auto copy = LXAction::CopyObject(macro);
  fuzz::require(copy && copy->nameStr() == macro.nameStr());
  fuzz::require(copy->loopTime() == macro.loopTime());
  fuzz::require(copy->keyInfoArr().size() == macro.keyInfoArr().size());
  for (std::size_t i = 0; i < copy->keyInfoArr().size(); ++i) {
    fuzz::require(copy->keyInfoArr()[i]->keyCode() == macro.keyInfoArr()[i]->keyCode());
    fuzz::require(copy->keyInfoArr()[i]->delay() == macro.keyInfoArr()[i]->delay());
  }
  NerinAction::encodeMacroReport(0, NerinAction::streamOf(macro, _BTN_INFO{}));
  return 0;
}
