#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Action/Catalogue/MacroMerge.h"
#include "Action/Record/Records.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXTreeNode.h"
#include "Kit/Core/ProcessWide.h"

namespace pugi {
class xml_node;
}

// The user's macros: kept in memory during the run and stored in a section of "MenuInfo.xml".
namespace NerinAction {

struct MacroStore {
  // All macros, including hidden ones: first in file order, then in order of creation.
  std::vector<std::shared_ptr<MacroInfo>> macroListArrs;
  // The root of the macro menu: one child per macro that is shown. Null until refreshMenuList.
  std::shared_ptr<LXTreeNode> macroNode;
  macromerge::KnownMacros known;
  // refreshMenuList calls this with the new menu, so that the open pop-up list can show it.
  std::function<void(const std::shared_ptr<LXTreeNode>&)> macroMenuRebuilt;
};
inline ProcessWide<MacroStore> macroStore;

void initMacroList(const pugi::xml_node& macroList);
void addMacroInfoByEle(const pugi::xml_node& item);
// The macro of such an element, outside the catalogue.
std::shared_ptr<MacroInfo> macroOf(const pugi::xml_node& item);

// The first macro with that id, or with that exact name; otherwise null.
std::shared_ptr<MacroInfo> getMacroById(std::int32_t id);
std::shared_ptr<MacroInfo> getMacroByName(const std::string& name);
std::optional<std::string> getMacroNameById(std::int32_t id);
// The maximum id plus 1, counting hidden macros; 1 for an empty catalogue.
std::int32_t getNewMacorId();
// Whether the name is free. Hidden macros do not count.
bool checkMacroName(const std::string& name);
std::string getNewMacroName();
// Adds an empty macro; null when the menu already shows 100. Does not check the name or rebuild the
// menu.
std::shared_ptr<MacroInfo> addMacorByName(const std::string& name);

void SaveMacroInfoToEle(pugi::xml_node item, const MacroInfo& selData);
// Appends an element for the macro; its name is "Item" by default.
pugi::xml_node addElementByNode(const MacroInfo& macro, pugi::xml_node parNode,
                                const std::string& itemName = {});
// The macro as its element: equal for macros that are the same in the file.
std::string elementText(const MacroInfo& macro);
// Writes the macros that are not hidden to their section and keeps the rest of the file, after what
// other programs did in the section was taken in. False when the file or the section is missing,
// when another program keeps the library, or when writing fails, which is logged.
[[nodiscard]] bool saveMenuList();
void refreshMenuList();

// The macro as the mouse plays it for that button. Combinations become their keys; the button sets
// how the macro repeats.
MacroStream streamOf(const MacroInfo& macro, const _BTN_INFO& btnInfo);
// One event of it: none for a combination that the catalogue does not have, several for another.
std::vector<MacroStreamEvent> streamEventsOf(const MacroKeyInfo& event);
// The events of a macro that was read. Mouse buttons get key code 0: only the event's kind shows
// that it is a mouse button.
MacroInfo::Events eventsOf(const MacroStream& stream);

}  // namespace NerinAction
