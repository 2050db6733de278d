#include "Action/Catalogue/AssignmentNotes.h"

#include <algorithm>
#include <array>

#include "Action/Catalogue/MacroCatalogue.h"
#include "Action/Wire/KeyCodes.h"
#include "Kit/Core/LXKey.h"
#include "Kit/Core/Utf8.h"

namespace {

using assignmentnotes::Note;

struct OtherName {
  std::int32_t keyCode;
  const char* name;
};

// What the mouse sends for them is what other keyboards have in their place.
constexpr std::array<OtherName, 4> otherNames{
    {{105, "Print Screen"}, {107, "Scroll Lock"}, {113, "Pause"}, {114, "Insert"}}};

struct Words {
  Note note;
  const char* text;    // beside the choice
  const char* effect;  // of an Apply
};

constexpr std::array<Words, 8> allWords{{
    {Note::None, "", ""},
    {Note::UnsendableKey, "The mouse cannot send this key", "The button will do nothing"},
    {Note::NoKey, "No key chosen: the button will do nothing",
     "No key chosen: the button will do nothing"},
    {Note::NoFunction, "No function chosen: nothing changes",
     "No function chosen: nothing changes"},
    {Note::NoMacro, "No macro chosen: the button will do nothing",
     "No macro chosen: the button will do nothing"},
    {Note::SharedMacroName, "Two macros have this name", ""},
    {Note::LongMacroName, "This name is longer than the mouse keeps (21 letters)", ""},
    {Note::NoProgram, "No program chosen", "No program chosen: nothing changes"},
}};

const Words& wordsOf(Note note) {
  return *std::find_if(allWords.begin(), allWords.end(),
                       [&](const Words& words) { return words.note == note; });
}

// Names that the program gives are not names of the user.
bool hasOwnName(const MacroInfo& macro) {
  return macro.nameStr() && !macro.nameStr()->starts_with(NerinAction::generatedMacroName);
}

bool isNameShared(const MacroInfo& macro) {
  const auto& macros = NerinAction::macroStore->macroListArrs;
  return std::any_of(macros.begin(), macros.end(), [&](const auto& other) {
    return other.get() != &macro && !other->isNoDisplay() && other->nameStr() == macro.nameStr();
  });
}

}  // namespace

bool assignmentnotes::canSend(std::int32_t keyCode) {
  const auto code = static_cast<std::uint32_t>(keyCode);
  return keyCode >= 0 &&
         (NerinAction::GetFWKeyCode(code) != 0 || NerinAction::getFWKeyCodeFlag(code) != 0);
}

// Without "Num +", for which the mouse has only the code of another key.
const std::vector<std::int32_t>& assignmentnotes::rareKeys() {
  static const std::vector<std::int32_t> keys{53,  105, 107, 113, 114, 117, 115, 119, 116,
                                              121, 110, 71,  75,  67,  78,  76,  65,  82,
                                              83,  84,  85,  86,  87,  88,  89,  91,  92};
  return keys;
}

std::string assignmentnotes::rareKeyTitle(std::int32_t keyCode) {
  const auto* other = std::find_if(otherNames.begin(), otherNames.end(),
                                   [&](const OtherName& one) { return one.keyCode == keyCode; });
  const std::string name = LXKey::getStrByKeycode(keyCode);
  return other == otherNames.end() ? name : name + " (" + other->name + ")";
}

Note assignmentnotes::ofKey(std::int32_t keyCode) {
  if (keyCode < 0) {
    return Note::NoKey;
  }
  return canSend(keyCode) ? Note::None : Note::UnsendableKey;
}

Note assignmentnotes::ofMacro(const MacroInfo* macro) {
  if (macro == nullptr) {
    return Note::NoMacro;
  }
  if (!hasOwnName(*macro)) {
    return Note::None;
  }
  if (isNameShared(*macro)) {
    return Note::SharedMacroName;
  }
  return utf8::lengthInUtf16(*macro->nameStr()) > keptMacroName ? Note::LongMacroName : Note::None;
}

Note assignmentnotes::ofProgram(const std::string& path) {
  return path.empty() ? Note::NoProgram : Note::None;
}

const char* assignmentnotes::textOf(Note note) {
  return wordsOf(note).text;
}

const char* assignmentnotes::effectOf(Note note) {
  return wordsOf(note).effect;
}
