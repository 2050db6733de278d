#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "Action/Catalogue/MenuInfo.h"
#include "Action/Record/Records.h"
#include "Kit/Core/LXTreeNode.h"
#include "Kit/Core/ProcessWide.h"

namespace pugi {
class xml_node;
}

// The functions that a button can have, as "MenuInfo.xml" describes them. Each menu is a root node
// whose children carry one MenuInfo each, in file order.
namespace NerinAction {

using MenuRoot = std::shared_ptr<LXTreeNode>;

// The roots of the menus. A root is null until a catalogue with its section is loaded.
struct FunctionMenus {
  MenuRoot keyAssignMenuNode;
  MenuRoot singleMenuNode;
  MenuRoot macroInsertMenuNode;
  MenuRoot repeatMenuNode;
  MenuRoot sensitivityMenuNode;
  MenuRoot levelMenuNode;
};
inline ProcessWide<FunctionMenus> functionMenus;

// Loads the menus and the macros. Copies the file that came with the program into the support
// folder first when there is none. A file that is not XML leaves everything empty.
void initMenuList();
// Loads the menus again, in the language of now. The macros stay as they are.
void reloadFunctionMenus();
void initMacroInsertMenulist(const pugi::xml_node& section);
void initKeyAssignMenulist(const pugi::xml_node& section);
void initSingleMenulist(const pugi::xml_node& section);
void initRepeatMenulist(const pugi::xml_node& section);
void initSensitivityMenulist(const pugi::xml_node& section);
void initLevelMenulist(const pugi::xml_node& section);
// Fills a root from the items of a section and translates the titles.
void initMenuPro(LXTreeNode& root, const pugi::xml_node& selElem, bool isTooltip);
std::shared_ptr<LXTreeNode> addNodeByEle(const pugi::xml_node& item, LXTreeNode& parNode);
void initNodeTooltip(LXTreeNode& root);

// Lookups return the first match in menu order. A null root has no entries.
std::shared_ptr<MenuInfo> getMenuInfoByFunId(std::int32_t id, const MenuRoot& parNode);
std::optional<std::string> getMenuNameByFunId(std::int32_t id, const MenuRoot& parNode);
std::shared_ptr<MenuInfo> getMenuInfoByFunTableId(std::int32_t code, const MenuRoot& parNode);
std::optional<std::string> getMenuNameByFunTableId(std::int32_t code, const MenuRoot& parNode);
std::shared_ptr<MenuInfo> getSingleById(std::int32_t id);
std::optional<std::string> getSingleNameById(std::int32_t id);
// The mouse function with the button's code and its exact four key bits.
std::shared_ptr<MenuInfo> getSingleByBtnInfo(const _BTN_INFO& btnInfo);
// The id of that function.
std::optional<std::uint32_t> singleFunctionIdOf(const _BTN_INFO& btnInfo);
// Converts a button, as the mouse sent it, to the record's form, in place, with the functions of
// this catalogue.
void setFunIDAndBtnType(_BTN_INFO* btnInfo);
std::shared_ptr<MenuInfo> getMacroMenuByFunid(std::int32_t id);
std::optional<std::string> getMacroMenuNameById(std::int32_t id);

// The caption of a button of the current slot; empty for a button without a function.
std::string getBtnCaption(const _BTN_INFO& btnInfo, int getIndex);

}  // namespace NerinAction
