#include "Action/Edit/MacroDraft.h"

#include <algorithm>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <utility>

#include <pugixml.hpp>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Edit/DraftFiles.h"
#include "Action/Record/EditState.h"
#include "Action/Wire/KeyCodes.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/ProcessWide.h"

namespace {

struct Editing {
  bool isOpen = false;
  // The macros when the editor opened, by id, and their names.
  std::map<std::int32_t, std::string> before;
  std::set<std::string> names;
  std::string first;    // the document then
  std::string written;  // the document on disk
};
ProcessWide<Editing> editing;

constexpr const char* draftFile = "macros.xml";

// All macros that are shown, and the names that the catalogue's file knew.
std::string documentOfMacros() {
  pugi::xml_document document;
  pugi::xml_node root = document.append_child("MacroDraft");
  pugi::xml_node list = root.append_child("MacroList");
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    if (!macro->isNoDisplay()) {
      NerinAction::addElementByNode(*macro, list);
    }
  }
  pugi::xml_node known = root.append_child("Known");
  for (const std::string& name : editing->names) {
    known.append_child("Macro").append_attribute("title").set_value(name.c_str());
  }
  std::ostringstream text;
  document.save(text, "  ");
  return text.str();
}

bool isPlayedByEdit(const MacroInfo& macro) {
  const auto& buttons = editState->selProfile().btnInfo;
  return std::any_of(std::begin(buttons), std::end(buttons), [&](const _BTN_INFO& button) {
    return button.FuncTableId == NerinAction::FunctionMacro &&
           static_cast<std::int32_t>(button.MacroID) == macro.macroId();
  });
}

void markEdited() {
  for (const auto& macro : NerinAction::macroStore->macroListArrs) {
    const std::string now = NerinAction::elementText(*macro);
    std::string& before = editing->before[macro->macroId()];
    if (before == now) {
      continue;
    }
    before = now;
    macro->setIsEdited(true);
    if (isPlayedByEdit(*macro)) {
      editState->raiseNeedSave();
    }
  }
}

}  // namespace

void NerinAction::beginMacroEdit() {
  *editing = {};
  editing->isOpen = true;
  for (const auto& macro : macroStore->macroListArrs) {
    editing->before[macro->macroId()] = NerinAction::elementText(*macro);
    if (!macro->isNoDisplay()) {
      editing->names.insert(macro->nameStr().value_or(""));
    }
  }
  editing->first = documentOfMacros();
}

void NerinAction::keepMacroDraft() {
  if (!editing->isOpen) {
    return;
  }
  markEdited();
  const std::string document = documentOfMacros();
  if (document != editing->written && (document != editing->first || !editing->written.empty())) {
    if (draftfiles::write(draftFile, document)) {
      editing->written = document;
    }
  }
}

void NerinAction::discardMacroDraft() {
  draftfiles::remove(draftFile);
  editing->written.clear();
  if (editing->isOpen) {
    editing->first = documentOfMacros();
  }
}

bool NerinAction::restoreMacroDraft() {
  const auto bytes = durable::readFile(draftfiles::pathOf(draftFile));
  pugi::xml_document document;
  if (!bytes || !document.load_buffer(bytes->data(), bytes->size()) ||
      !document.child("MacroDraft")) {
    return false;
  }
  const pugi::xml_node root = document.child("MacroDraft");
  std::set<std::string> known;
  for (const pugi::xml_node& macro : root.child("Known").children("Macro")) {
    known.insert(macro.attribute("title").value());
  }
  auto& macros = macroStore->macroListArrs;
  const auto inFile = std::exchange(macros, {});
  for (const pugi::xml_node& item : root.child("MacroList").children("Item")) {
    auto macro = macroOf(item);
    macro->setIsEdited(true);
    macros.push_back(std::move(macro));
  }
  // What another program added meanwhile stays.
  for (const auto& macro : inFile) {
    const std::string name = macro->nameStr().value_or("");
    if (!known.contains(name) && !getMacroByName(name)) {
      macro->setMacroId(getNewMacorId());
      macros.push_back(macro);
    }
  }
  refreshMenuList();
  return true;
}
