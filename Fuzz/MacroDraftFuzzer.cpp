#include <algorithm>
#include <filesystem>
#include <string>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Edit/DraftFiles.h"
#include "Action/Edit/MacroDraft.h"
#include "Action/Library/SupportFolder.h"
#include "Fuzz/FuzzInput.h"
#include "Kit/Core/DurableFile.h"

// Any bytes as the draft of the macro editor: taken into the catalogue, kept again and taken anew.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = (fuzz::home(), NerinAction::getSysPath());
  NerinAction::macroStore->macroListArrs.clear();
  NerinAction::refreshMenuList();
  const auto file = draftfiles::pathOf("macros.xml");
  fuzz::putFile(file, fuzz::textOf(data, size));
  if (!NerinAction::restoreMacroDraft()) {
    return 0;
  }
  auto& macros = NerinAction::macroStore->macroListArrs;
  const auto shown = static_cast<std::size_t>(std::count_if(
      macros.begin(), macros.end(), [](const auto& macro) { return !macro->isNoDisplay(); }));
  std::filesystem::remove(file);
  NerinAction::beginMacroEdit();
  NerinAction::addMacorByName("of the fuzzer");
  NerinAction::keepMacroDraft();
  macros.clear();
  fuzz::require(NerinAction::restoreMacroDraft() && macros.size() == shown + 1);
  NerinAction::discardMacroDraft();
  return 0;
}
