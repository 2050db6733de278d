#include "Action/Catalogue/MacroMerge.h"

#include <algorithm>

#include <pugixml.hpp>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Kit/Core/LXLogger.h"

namespace {

using Macro = std::shared_ptr<MacroInfo>;
using Macros = std::vector<Macro>;

Macros& catalogue() {
  return NerinAction::macroStore->macroListArrs;
}

macromerge::KnownMacros& knownMacros() {
  return NerinAction::macroStore->known;
}

bool isInCatalogue(const Macro& macro) {
  return std::find(catalogue().begin(), catalogue().end(), macro) != catalogue().end();
}

bool isNameFree(const std::optional<std::string>& name) {
  return std::none_of(catalogue().begin(), catalogue().end(), [&](const Macro& macro) {
    return !macro->isNoDisplay() && macro->nameStr() == name;
  });
}

void addUnderAFreeName(const Macro& theirs) {
  const std::string stem = theirs->nameStr().value_or("");
  for (int n = 1; !isNameFree(theirs->nameStr()); ++n) {
    theirs->setNameStr(stem + "_" + std::to_string(n));
  }
  if (theirs->macroId() <= 0 || NerinAction::getMacroById(theirs->macroId())) {
    theirs->setMacroId(NerinAction::getNewMacorId());
  }
  LXLogger::warning("another program added the macro " + theirs->nameStr().value_or(""));
  catalogue().push_back(theirs);
}

// The macros of the section, read as the catalogue reads them.
Macros macrosIn(const pugi::xml_node& section) {
  Macros ours;
  ours.swap(catalogue());
  NerinAction::initMacroList(section);
  ours.swap(catalogue());
  return ours;
}

bool takeInOne(const Macro& theirs, const macromerge::KnownMacro* known) {
  const std::string text = NerinAction::elementText(*theirs);
  if (known != nullptr && known->text == text) {
    return false;
  }
  const bool isOurs = known != nullptr && isInCatalogue(known->macro);
  if (isOurs && NerinAction::elementText(*known->macro) == known->text &&
      (theirs->nameStr() == known->macro->nameStr() || isNameFree(theirs->nameStr()))) {
    known->macro->setNameStr(theirs->nameStr());
    known->macro->setLoopTime(theirs->loopTime());
    known->macro->setKeyInfoArr(theirs->keyInfoArr());
    return true;
  }
  const bool isThere = std::any_of(catalogue().begin(), catalogue().end(), [&](const Macro& macro) {
    return NerinAction::elementText(*macro) == text;
  });
  if (!isThere) {
    addUnderAFreeName(theirs);
  }
  return !isThere;
}

// A section without any of several macros is rather one that was made anew than one in which each
// of them was deleted.
bool isMadeAnew(const Macros& theirs, const macromerge::KnownMacros& known) {
  return known.size() > 1 && std::none_of(known.begin(), known.end(), [&](const auto& one) {
           return std::any_of(theirs.begin(), theirs.end(),
                              [&](const Macro& macro) { return macro->macroId() == one.id; });
         });
}

}  // namespace

void macromerge::remember() {
  knownMacros().clear();
  knownMacros().reserve(catalogue().size());
  for (const Macro& macro : catalogue()) {
    if (!macro->isNoDisplay()) {
      knownMacros().push_back({macro, macro->macroId(), NerinAction::elementText(*macro)});
    }
  }
}

bool macromerge::takeIn(const pugi::xml_node& section) {
  const Macros theirs = macrosIn(section);
  const KnownMacros known = knownMacros();
  if (isMadeAnew(theirs, known)) {
    return false;
  }
  bool isChanged = false;
  std::vector<const KnownMacro*> gone;
  gone.reserve(known.size());
  for (const KnownMacro& one : known) {
    gone.push_back(&one);
  }
  for (const Macro& macro : theirs) {
    const auto found = std::find_if(gone.begin(), gone.end(), [&](const KnownMacro* one) {
      return one->id == macro->macroId();
    });
    isChanged = takeInOne(macro, found != gone.end() ? *found : nullptr) || isChanged;
    if (found != gone.end()) {
      gone.erase(found);
    }
  }
  for (const KnownMacro* one : gone) {
    if (isInCatalogue(one->macro) && NerinAction::elementText(*one->macro) == one->text) {
      LXLogger::warning("deleted by another program: macro " + one->macro->nameStr().value_or(""));
      std::erase(catalogue(), one->macro);
      isChanged = true;
    }
  }
  return isChanged;
}
