#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Record/Records.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXTreeNode.h"
#include "Kit/Core/ProcessWide.h"

namespace pugi {
class xml_node;
}

// The user's macros: kept in memory for the run, stored in a section of "MenuInfo.xml".
namespace NerinAction {

struct MacroStore {
  // Every macro, hidden ones too, in file order and then in order of creation.
  std::vector<std::shared_ptr<MacroInfo>> macroListArrs;
  // The root of the macro menu: one child for each shown macro. Null until refreshMenuList.
  std::shared_ptr<LXTreeNode> macroNode;
  // Called by refreshMenuList with the rebuilt menu, for the pop-up list that shows it.
  std::function<void(const std::shared_ptr<LXTreeNode>&)> macroMenuRebuilt;
};
inline ProcessWide<MacroStore> macroStore;

void initMacroList(const pugi::xml_node& macroList);
void addMacroInfoByEle(const pugi::xml_node& item);

// The first macro with that id, or that exact name; null for none.
std::shared_ptr<MacroInfo> getMacroById(std::int32_t id);
std::shared_ptr<MacroInfo> getMacroByName(const std::string& name);
std::optional<std::string> getMacroNameById(std::int32_t id);
// The largest id plus 1, hidden macros included; 1 for an empty catalogue.
std::int32_t getNewMacorId();
// Whether no shown macro has that name.
bool checkMacroName(const std::string& name);
std::string getNewMacroName();
// An empty macro of that name, in the catalogue; null when the menu shows 100. The name is not
// checked and the menu not rebuilt.
std::shared_ptr<MacroInfo> addMacorByName(const std::string& name);

void SaveMacroInfoToEle(pugi::xml_node item, const MacroInfo& selData);
// Appends an element for the macro, named "Item" unless another name is given.
pugi::xml_node addElementByNode(const MacroInfo& macro, pugi::xml_node parNode,
                                const std::string& itemName = {});
// Writes the shown macros back into their section; the rest of the file stays. False when nothing
// was written: no file, no section, or a failure, which is logged.
[[nodiscard]] bool saveMenuList();
// Rebuilds the macro menu.
void refreshMenuList();

// The macro as the mouse plays it from that button: combinations of the macro-insert menu become
// their keys, and the button says how it repeats.
MacroStream streamOf(const MacroInfo& macro, const _BTN_INFO& btnInfo);
// The events of a macro that was read. Mouse buttons have no key code of their own: they get 0,
// and only the event's kind tells that it is a mouse button.
MacroInfo::Events eventsOf(const MacroStream& stream);

}  // namespace NerinAction
