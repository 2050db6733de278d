#include "Action/Catalogue/MacroCatalogue.h"

#include <algorithm>
#include <limits>
#include <sstream>

#include <pugixml.hpp>

#include "Action/Catalogue/CatalogueFile.h"
#include "Action/Catalogue/FunctionCatalogue.h"
#include "Action/Catalogue/MenuInfo.h"
#include "Action/Library/LibraryLock.h"
#include "Action/Record/Limits.h"
#include "Action/Wire/KeyCodes.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"

namespace {

std::int32_t decimalAttribute(const pugi::xml_node& node, const char* name) {
  return LXAction::getIntValue(LXAction::getNonullStr(LXAction::getNodeAtrValue(node, name)));
}

std::uint8_t deviceCodeOf(std::int32_t macKey) {
  return static_cast<std::uint8_t>(NerinAction::GetFWKeyCode(static_cast<std::uint32_t>(macKey)));
}

// The keys of a combination are pressed in order and released in reverse.
void appendCombination(std::vector<NerinAction::MacroStreamEvent>& events,
                       const MacroKeyInfo& event) {
  const auto entry = NerinAction::getMacroMenuByFunid(event.keyCode());
  if (!entry) {
    return;
  }
  const std::vector<std::int32_t> keys = entry->usedKeys();
  for (const std::int32_t key : keys) {
    events.push_back({deviceCodeOf(key), false, 0});
  }
  std::for_each(keys.rbegin(), keys.rend(), [&](std::int32_t key) {
    events.push_back({deviceCodeOf(key), true, 0});
  });
}

NerinAction::MacroStreamEvent streamEventOf(const MacroKeyInfo& event) {
  const std::int32_t kind = event.keyFlag();
  const bool isMouse = kind == MacroKeyInfo::MousePress || kind == MacroKeyInfo::MouseRelease;
  const bool isRelease = kind == MacroKeyInfo::KeyRelease || kind == MacroKeyInfo::MouseRelease;
  return {isMouse ? static_cast<std::uint8_t>(event.keyCode()) : deviceCodeOf(event.keyCode()),
          isRelease, event.delay()};
}

void appendEvents(std::vector<NerinAction::MacroStreamEvent>& events, const MacroKeyInfo& event) {
  if (event.keyFlag() == MacroKeyInfo::Function) {
    appendCombination(events, event);
  } else {
    events.push_back(streamEventOf(event));
  }
}

std::shared_ptr<MacroKeyInfo> keyInfoOf(const NerinAction::MacroStreamEvent& event) {
  const bool isMouse = event.isMouseButton();
  const std::int32_t press = isMouse ? MacroKeyInfo::MousePress : MacroKeyInfo::KeyPress;
  const std::int32_t release = isMouse ? MacroKeyInfo::MouseRelease : MacroKeyInfo::KeyRelease;
  return std::make_shared<MacroKeyInfo>(
      static_cast<std::int32_t>(NerinAction::GetKeyCodeByFW(event.code)),
      event.isRelease ? release : press, event.delay);
}

}  // namespace

void NerinAction::initMacroList(const pugi::xml_node& macroList) {
  for (const pugi::xml_node& item : macroList.children("Item")) {
    addMacroInfoByEle(item);
  }
}

void NerinAction::addMacroInfoByEle(const pugi::xml_node& item) {
  macroStore->macroListArrs.push_back(macroOf(item));
}

std::shared_ptr<MacroInfo> NerinAction::macroOf(const pugi::xml_node& item) {
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
  return macro;
}

std::shared_ptr<MacroInfo> NerinAction::getMacroById(std::int32_t id) {
  const auto found =
      std::find_if(macroStore->macroListArrs.begin(), macroStore->macroListArrs.end(),
                   [&](const auto& macro) { return macro->macroId() == id; });
  return found != macroStore->macroListArrs.end() ? *found : nullptr;
}

std::shared_ptr<MacroInfo> NerinAction::getMacroByName(const std::string& name) {
  const auto found =
      std::find_if(macroStore->macroListArrs.begin(), macroStore->macroListArrs.end(),
                   [&](const auto& macro) { return macro->nameStr() == name; });
  return found != macroStore->macroListArrs.end() ? *found : nullptr;
}

std::optional<std::string> NerinAction::getMacroNameById(std::int32_t id) {
  const auto macro = getMacroById(id);
  return macro ? macro->nameStr() : std::nullopt;
}

std::int32_t NerinAction::getNewMacorId() {
  std::int32_t largest = 0;
  for (const auto& macro : macroStore->macroListArrs) {
    largest = std::max(largest, macro->macroId());
  }
  if (largest < std::numeric_limits<std::int32_t>::max()) {
    return largest + 1;
  }
  // Only a damaged file has the maximum id. Then the first free id serves.
  std::int32_t id = 1;
  while (getMacroById(id)) {
    ++id;
  }
  return id;
}

bool NerinAction::checkMacroName(const std::string& name) {
  return !macroStore->macroNode ||
         std::none_of(macroStore->macroNode->children().begin(),
                      macroStore->macroNode->children().end(),
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
  if (macroStore->macroNode && macroStore->macroNode->children().size() >= limits::macros) {
    return nullptr;
  }
  auto macro = std::make_shared<MacroInfo>();
  macro->setNameStr(name);
  macro->setMacroId(getNewMacorId());
  return macroStore->macroListArrs.emplace_back(std::move(macro));
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

std::string NerinAction::elementText(const MacroInfo& macro) {
  pugi::xml_document document;
  addElementByNode(macro, document);
  std::ostringstream text;
  document.save(text, "", pugi::format_raw);
  return text.str();
}

bool NerinAction::saveMenuList() {
  const auto lock = librarylock::acquire();
  if (!lock) {
    LXLogger::error("the macros were not saved: another program is using the library");
    return false;
  }
  CatalogueFile file;
  if (!file.load()) {
    return false;
  }
  pugi::xml_node section = file.section("MacroList");
  if (!section) {
    return false;
  }
  if (macromerge::takeIn(section) && macroStore->macroNode) {
    refreshMenuList();
  }
  section.remove_children();
  for (const auto& macro : macroStore->macroListArrs) {
    if (!macro->isNoDisplay()) {
      addElementByNode(*macro, section);
    }
  }
  if (!file.save()) {
    return false;
  }
  macromerge::remember();
  return true;
}

void NerinAction::refreshMenuList() {
  if (!macroStore->macroNode) {
    macroStore->macroNode = std::make_shared<LXTreeNode>();
  }
  macroStore->macroNode->removeAllChild();
  for (const auto& macro : macroStore->macroListArrs) {
    if (!macro->isNoDisplay()) {
      macroStore->macroNode->addChild(MenuInfo::initWithMacroData(macro));
    }
  }
  if (macroStore->macroMenuRebuilt) {
    macroStore->macroMenuRebuilt(macroStore->macroNode);
  }
}

NerinAction::MacroStream NerinAction::streamOf(const MacroInfo& macro, const _BTN_INFO& btnInfo) {
  MacroStream stream;
  getMacroRepeatType(stream.repeatType, stream.repeatCount, btnInfo);
  stream.name = macro.nameStr();
  stream.events.reserve(macro.keyInfoArr().size());
  for (const auto& event : macro.keyInfoArr()) {
    appendEvents(stream.events, *event);
  }
  return stream;
}

std::vector<NerinAction::MacroStreamEvent> NerinAction::streamEventsOf(const MacroKeyInfo& event) {
  std::vector<MacroStreamEvent> events;
  appendEvents(events, event);
  return events;
}

MacroInfo::Events NerinAction::eventsOf(const MacroStream& stream) {
  MacroInfo::Events events;
  events.reserve(stream.events.size());
  for (const MacroStreamEvent& event : stream.events) {
    events.push_back(keyInfoOf(event));
  }
  return events;
}
