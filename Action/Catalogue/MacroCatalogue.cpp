#include "Action/Catalogue/MacroCatalogue.h"

#include <algorithm>
#include <limits>

#include <pugixml.hpp>

#include "Action/Catalogue/CatalogueFile.h"
#include "Action/Catalogue/MenuInfo.h"
#include "Kit/Core/LXAction.h"

namespace {

std::int32_t decimalAttribute(const pugi::xml_node& node, const char* name) {
  return LXAction::getIntValue(LXAction::getNonullStr(LXAction::getNodeAtrValue(node, name)));
}

}  // namespace

void NerinAction::initMacroList(const pugi::xml_node& macroList) {
  for (const pugi::xml_node& item : macroList.children("Item")) {
    addMacroInfoByEle(item);
  }
}

void NerinAction::addMacroInfoByEle(const pugi::xml_node& item) {
  auto macro = std::make_shared<MacroInfo>();
  macro->setLoopTime(
      LXAction::getIntValue(LXAction::getNonullStr(LXAction::getNodeValue(item, "LoopTime"))));
  macro->setNameStr(LXAction::getNodeAtrValue(item, "title"));
  macro->setMacroId(decimalAttribute(item, "MacroID"));
  for (const pugi::xml_node& key : item.children("KeyItem")) {
    macro->keyInfoArr().push_back(std::make_shared<MacroKeyInfo>(decimalAttribute(key, "keyCode"),
                                                                 decimalAttribute(key, "keyFlag"),
                                                                 decimalAttribute(key, "delay")));
  }
  macroListArrs.push_back(std::move(macro));
}

std::shared_ptr<MacroInfo> NerinAction::getMacroById(std::int32_t id) {
  const auto found = std::find_if(macroListArrs.begin(), macroListArrs.end(),
                                  [&](const auto& macro) { return macro->macroId() == id; });
  return found != macroListArrs.end() ? *found : nullptr;
}

std::shared_ptr<MacroInfo> NerinAction::getMacroByName(const std::string& name) {
  const auto found = std::find_if(macroListArrs.begin(), macroListArrs.end(),
                                  [&](const auto& macro) { return macro->nameStr() == name; });
  return found != macroListArrs.end() ? *found : nullptr;
}

std::optional<std::string> NerinAction::getMacroNameById(std::int32_t id) {
  const auto macro = getMacroById(id);
  return macro ? macro->nameStr() : std::nullopt;
}

std::int32_t NerinAction::getNewMacorId() {
  std::int32_t largest = 0;
  for (const auto& macro : macroListArrs) {
    largest = std::max(largest, macro->macroId());
  }
  if (largest < std::numeric_limits<std::int32_t>::max()) {
    return largest + 1;
  }
  // Only a damaged file has such an id; a free one is found below it.
  std::int32_t id = 1;
  while (getMacroById(id)) {
    ++id;
  }
  return id;
}

bool NerinAction::checkMacroName(const std::string& name) {
  return !macroNode ||
         std::none_of(macroNode->children().begin(), macroNode->children().end(),
                      [&](const auto& child) { return child->nodeData()->titleStr() == name; });
}

std::string NerinAction::getNewMacroName() {
  for (int n = 1;; ++n) {
    if (std::string name = "NewMacro_" + std::to_string(n); checkMacroName(name)) {
      return name;
    }
  }
}

std::shared_ptr<MacroInfo> NerinAction::addMacorByName(const std::string& name) {
  if (macroNode && macroNode->children().size() >= maximumMacros) {
    return nullptr;
  }
  auto macro = std::make_shared<MacroInfo>();
  macro->setNameStr(name);
  macro->setMacroId(getNewMacorId());
  return macroListArrs.emplace_back(std::move(macro));
}

void NerinAction::SaveMacroInfoToEle(pugi::xml_node item, const MacroInfo& selData) {
  item.append_child("LoopTime").text().set(selData.loopTime());
  for (const auto& event : selData.keyInfoArr()) {
    pugi::xml_node key = item.append_child("KeyItem");
    key.append_attribute("keyCode").set_value(event->keyCode());
    key.append_attribute("keyFlag").set_value(event->keyFlag());
    key.append_attribute("delay").set_value(event->delay());
  }
}

pugi::xml_node NerinAction::addElementByNode(const MacroInfo& macro, pugi::xml_node parNode,
                                             const std::string& itemName) {
  pugi::xml_node item = parNode.append_child(itemName.empty() ? "Item" : itemName.c_str());
  item.append_attribute("title").set_value(macro.nameStr().value_or("").c_str());
  item.append_attribute("MacroID").set_value(macro.macroId());
  SaveMacroInfoToEle(item, macro);
  return item;
}

bool NerinAction::saveMenuList() {
  CatalogueFile file;
  if (!file.load()) {
    return false;
  }
  pugi::xml_node section = file.section("MacroList");
  if (!section) {
    return false;
  }
  section.remove_children();
  for (const auto& macro : macroListArrs) {
    if (!macro->isNoDisplay()) {
      addElementByNode(*macro, section);
    }
  }
  return file.save();
}

void NerinAction::refreshMenuList() {
  if (!macroNode) {
    macroNode = std::make_shared<LXTreeNode>();
  }
  macroNode->removeAllChild();
  for (const auto& macro : macroListArrs) {
    if (!macro->isNoDisplay()) {
      macroNode->addChild(MenuInfo::initWithMacroData(macro));
    }
  }
  if (macroMenuRebuilt) {
    macroMenuRebuilt(macroNode);
  }
}
