#include <algorithm>
#include <string>
#include <string_view>
#include <utility>

#include "Action/Library/SupportFolder.h"
#include "Action/Texts/CatalogueUpdate.h"
#include "Fuzz/FuzzInput.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXPlatform.h"

namespace {

// Small ones, since the program's own take most of the time to write.
constexpr std::string_view menusOfNow = R"(<?xml version="1.0" encoding="utf-8"?>
<MenuInfo>
  <MacroList />
  <SingleMenu>
    <Item title="Left" type="1" functionID="1" functionTableID="1" KeyBit1="FF" />
    <Item title="Right" type="1" functionID="2" functionTableID="1" KeyBit1="FE" />
  </SingleMenu>
</MenuInfo>
)";
constexpr std::string_view textsOfNow = R"(<?xml version="1.0" encoding="utf-8"?>
<Tooltip>
  <Lan name="US"><Item name="OK" text="OK" viewID="0" btnID="" /></Lan>
  <Lan name="German"><Item name="OK" text="Gut" viewID="1" btnID="2" /></Lan>
</Tooltip>
)";

std::string preparedFolder() {
  const auto resources = fuzz::home() / "shipped";
  fuzz::putFile(resources / "MenuInfo.xml", menusOfNow);
  fuzz::putFile(resources / "Tooltip.xml", textsOfNow);
  LXPlatform platform = LXPlatform::current();
  platform.resourceFolder = resources;
  LXPlatform::install(std::move(platform));
  return NerinAction::getSysPath();
}

}  // namespace

// Any bytes as a user's catalogue and, behind a NUL, as the one that came with an older version:
// both are brought up to date with those of now, twice. Nothing is left to do at the second time.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::string folder = preparedFolder();
  fuzz::emptyFolder(folder);
  const std::string_view bytes = fuzz::textOf(data, size);
  const std::size_t middle = std::min(bytes.find('\0'), bytes.size());
  const std::string_view older = bytes.substr(std::min(middle + 1, bytes.size()));
  for (const char* name : {"MenuInfo.xml", "Tooltip.xml"}) {
    fuzz::putFile(folder + '/' + name, bytes.substr(0, middle));
    fuzz::putFile(folder + "/." + name + ".shipped", older);
  }
  NerinAction::bringCataloguesUpToDate();
  const auto menus = durable::readFile(folder + "/MenuInfo.xml");
  const auto texts = durable::readFile(folder + "/Tooltip.xml");
  NerinAction::bringCataloguesUpToDate();
  fuzz::require(durable::readFile(folder + "/MenuInfo.xml") == menus);
  fuzz::require(durable::readFile(folder + "/Tooltip.xml") == texts);
  return 0;
}
