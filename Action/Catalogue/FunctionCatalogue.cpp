#include "Action/Catalogue/FunctionCatalogue.h"

#include <filesystem>
#include <utility>

#include <pugixml.hpp>

#include "Action/Catalogue/CatalogueFile.h"
#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Library/ProfieController.h"
#include "Action/Texts/TooltipManager.h"
#include "Action/Texts/UserCatalogue.h"
#include "Action/Wire/KeyCodes.h"
#include "Action/Wire/MacroImage.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXKey.h"
#include "Kit/Core/LXPlatform.h"

namespace {

std::shared_ptr<MenuInfo> entryOf(const LXTreeNode& node) {
  return std::dynamic_pointer_cast<MenuInfo>(node.nodeData());
}

template <typename Matches>
std::shared_ptr<MenuInfo> firstEntry(const NerinAction::MenuRoot& root, Matches matches) {
  if (!root) {
    return nullptr;
  }
  for (const auto& child : root->children()) {
    auto entry = entryOf(*child);
    if (entry && matches(*entry)) {
      return entry;
    }
  }
  return nullptr;
}

std::optional<std::string> titleOf(const std::shared_ptr<MenuInfo>& entry) {
  return entry ? std::optional(entry->titleStr()) : std::nullopt;
}

std::string attribute(const pugi::xml_node& item, const char* name) {
  return LXAction::getNonullStr(LXAction::getNodeAtrValue(item, name));
}

std::int32_t hexAttribute(const pugi::xml_node& item, const char* name) {
  return LXAction::getIntValueByHex(attribute(item, name));
}

std::int32_t decimalAttribute(const pugi::xml_node& item, const char* name) {
  return LXAction::getIntValue(attribute(item, name));
}

void loadMenu(NerinAction::MenuRoot& root, const pugi::xml_node& section, bool isTooltip) {
  root = std::make_shared<LXTreeNode>();
  NerinAction::initMenuPro(*root, section, isTooltip);
}

void loadSection(CatalogueFile& file, const char* name, void (*load)(const pugi::xml_node&)) {
  if (const pugi::xml_node section = file.section(name)) {
    load(section);
  }
}

void loadFunctionMenus(CatalogueFile& file) {
  loadSection(file, "MacroInsertMenu", NerinAction::initMacroInsertMenulist);
  loadSection(file, "KeyAssignMenu", NerinAction::initKeyAssignMenulist);
  loadSection(file, "SingleMenu", NerinAction::initSingleMenulist);
  loadSection(file, "MacroRepeatMenu", NerinAction::initRepeatMenulist);
  loadSection(file, "SensitivityMenu", NerinAction::initSensitivityMenulist);
  loadSection(file, "LevelMenu", NerinAction::initLevelMenulist);
}

std::string textOfKey(const std::string& key) {
  return LXAction::getNonullStr(TooltipManager::shareTooltipManager().getTooltip(key));
}

std::string macroCaption(const _BTN_INFO& btnInfo) {
  const auto name =
      NerinAction::getMacroNameById(static_cast<std::int32_t>(btnInfo.MacroID)).value_or("");
  return name.starts_with(NerinAction::generatedMacroName) ? textOfKey("MACRO KEY") : name;
}

std::string singleCaption(const _BTN_INFO& btnInfo) {
  if (btnInfo.FuncTableId == NerinAction::FunctionKey) {
    return LXKey::getStrByKeycode(static_cast<std::int32_t>(btnInfo.KeyBit[0]));
  }
  const auto entry = NerinAction::getSingleByBtnInfo(btnInfo);
  return titleOf(entry ? entry
                       : NerinAction::getSingleById(static_cast<std::int32_t>(btnInfo.FuncID)))
      .value_or("");
}

std::string programName(const std::string& path) {
  return LXPlatform::current().programName(path);
}

std::string launchCaption(const _BTN_INFO& btnInfo, int index) {
  if (std::string name = programName(std::string(textOf(btnInfo.app_path))); !name.empty()) {
    return name;
  }
  // The mouse cannot store a path, so a button that was read from it has none.
  const ProfieController& library = ProfieController::getShareProCon();
  const auto path = library.getLaunchPath(library.currFWProfileIndex(), index);
  if (std::string name = programName(path.value_or("")); !name.empty()) {
    return name;
  }
  return NerinAction::getMenuNameByFunId(ButtonTypeLaunch,
                                         NerinAction::functionMenus->keyAssignMenuNode)
      .value_or("");
}

}  // namespace

void NerinAction::initMenuList() {
  macroStore->macroListArrs.clear();
  macroStore->known.clear();
  *functionMenus = {};
  usercatalogue::provide("MenuInfo.xml");
  CatalogueFile file;
  if (!file.load()) {
    return;
  }
  loadSection(file, "MacroList", initMacroList);
  macromerge::remember();
  loadFunctionMenus(file);
}

void NerinAction::reloadFunctionMenus() {
  CatalogueFile file;
  if (file.load()) {
    *functionMenus = {};
    loadFunctionMenus(file);
  }
}

void NerinAction::initMacroInsertMenulist(const pugi::xml_node& section) {
  loadMenu(functionMenus->macroInsertMenuNode, section, true);
}

void NerinAction::initKeyAssignMenulist(const pugi::xml_node& section) {
  loadMenu(functionMenus->keyAssignMenuNode, section, true);
}

void NerinAction::initSingleMenulist(const pugi::xml_node& section) {
  loadMenu(functionMenus->singleMenuNode, section, true);
}

void NerinAction::initRepeatMenulist(const pugi::xml_node& section) {
  loadMenu(functionMenus->repeatMenuNode, section, true);
}

void NerinAction::initSensitivityMenulist(const pugi::xml_node& section) {
  loadMenu(functionMenus->sensitivityMenuNode, section, true);
}

void NerinAction::initLevelMenulist(const pugi::xml_node& section) {
  loadMenu(functionMenus->levelMenuNode, section, false);
}

void NerinAction::initMenuPro(LXTreeNode& root, const pugi::xml_node& selElem, bool isTooltip) {
  for (const pugi::xml_node& item : selElem.children("Item")) {
    addNodeByEle(item, root);
  }
  if (isTooltip) {
    initNodeTooltip(root);
  }
}

std::shared_ptr<LXTreeNode> NerinAction::addNodeByEle(const pugi::xml_node& item,
                                                      LXTreeNode& parNode) {
  auto entry = std::make_shared<MenuInfo>();
  entry->setTitleStr(attribute(item, "title"));
  entry->setType(decimalAttribute(item, "type"));
  entry->setFunctionID(hexAttribute(item, "functionID"));
  entry->setFunctionTableID(hexAttribute(item, "functionTableID"));
  entry->setNeedSepretor(decimalAttribute(item, "NeedSepretor") != 0);
  entry->setToolTipTag(attribute(item, "TooltipTag"));
  entry->setKeyBit1(hexAttribute(item, "KeyBit1"));
  entry->setKeyBit2(hexAttribute(item, "KeyBit2"));
  entry->setKeyBit3(hexAttribute(item, "KeyBit3"));
  entry->setKeyBit4(hexAttribute(item, "KeyBit4"));
  return parNode.addChild(std::move(entry));
}

void NerinAction::initNodeTooltip(LXTreeNode& root) {
  for (const auto& child : root.children()) {
    const auto entry = entryOf(*child);
    if (!entry || entry->toolTipTag().empty()) {
      continue;
    }
    if (std::string text = textOfKey(entry->toolTipTag()); !text.empty()) {
      entry->setTitleStr(std::move(text));
    }
  }
}

std::shared_ptr<MenuInfo> NerinAction::getMenuInfoByFunId(std::int32_t id,
                                                          const MenuRoot& parNode) {
  return firstEntry(parNode, [&](const MenuInfo& entry) { return entry.functionID() == id; });
}

std::optional<std::string> NerinAction::getMenuNameByFunId(std::int32_t id,
                                                           const MenuRoot& parNode) {
  return titleOf(getMenuInfoByFunId(id, parNode));
}

std::shared_ptr<MenuInfo> NerinAction::getMenuInfoByFunTableId(std::int32_t code,
                                                               const MenuRoot& parNode) {
  return firstEntry(parNode,
                    [&](const MenuInfo& entry) { return entry.functionTableID() == code; });
}

std::optional<std::string> NerinAction::getMenuNameByFunTableId(std::int32_t code,
                                                                const MenuRoot& parNode) {
  return titleOf(getMenuInfoByFunTableId(code, parNode));
}

std::shared_ptr<MenuInfo> NerinAction::getSingleById(std::int32_t id) {
  return getMenuInfoByFunId(id, functionMenus->singleMenuNode);
}

std::optional<std::string> NerinAction::getSingleNameById(std::int32_t id) {
  return getMenuNameByFunId(id, functionMenus->singleMenuNode);
}

std::shared_ptr<MenuInfo> NerinAction::getSingleByBtnInfo(const _BTN_INFO& btnInfo) {
  const auto isWord = [](std::int32_t number, std::uint32_t word) {
    return static_cast<std::uint32_t>(number) == word;
  };
  return firstEntry(functionMenus->singleMenuNode, [&](const MenuInfo& entry) {
    return isWord(entry.functionTableID(), btnInfo.FuncTableId) &&
           isWord(entry.KeyBit1(), btnInfo.KeyBit[0]) &&
           isWord(entry.KeyBit2(), btnInfo.KeyBit[1]) &&
           isWord(entry.KeyBit3(), btnInfo.KeyBit[2]) && isWord(entry.KeyBit4(), btnInfo.KeyBit[3]);
  });
}

std::optional<std::uint32_t> NerinAction::singleFunctionIdOf(const _BTN_INFO& btnInfo) {
  const auto entry = getSingleByBtnInfo(btnInfo);
  return entry ? std::optional(static_cast<std::uint32_t>(entry->functionID())) : std::nullopt;
}

void NerinAction::setFunIDAndBtnType(_BTN_INFO* btnInfo) {
  setFunIDAndBtnType(btnInfo, singleFunctionIdOf);
}

std::shared_ptr<MenuInfo> NerinAction::getMacroMenuByFunid(std::int32_t id) {
  return getMenuInfoByFunId(id, functionMenus->macroInsertMenuNode);
}

std::optional<std::string> NerinAction::getMacroMenuNameById(std::int32_t id) {
  return getMenuNameByFunId(id, functionMenus->macroInsertMenuNode);
}

std::string NerinAction::getBtnCaption(const _BTN_INFO& btnInfo, int getIndex) {
  switch (btnInfo.btnType) {
    case ButtonTypeMacro:
      return macroCaption(btnInfo);
    case ButtonTypeSingle:
      return singleCaption(btnInfo);
    case ButtonTypeSensitivity:
      return getMenuNameByFunId(static_cast<std::int32_t>(btnInfo.FuncID),
                                functionMenus->sensitivityMenuNode)
          .value_or("");
    case ButtonTypeLaunch:
      return launchCaption(btnInfo, getIndex);
    case ButtonTypeDisabled:
      return textOfKey("Disable");
    default:
      return {};
  }
}
