#include "Action/Library/SupportFolder.h"
#include "Action/Texts/TooltipManager.h"
#include "Fuzz/FuzzInput.h"

// Any bytes as the text catalogue.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = (fuzz::home(), NerinAction::getSysPath());
  fuzz::emptyFolder(folder);
  fuzz::putFile(folder + "/Tooltip.xml", fuzz::textOf(data, size));
  TooltipManager manager;
  manager.getTooltip("Disable");
  manager.getTooltip(1, "3");
  for (const auto& language : manager.infoList()) {
    manager.setLanByname(language->name);
    manager.getTooltip("NoTooltip");
    TooltipManager::getBtnIdBy(*language, "Disable", "", 1);
  }
  return 0;
}
