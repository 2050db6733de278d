#pragma once

#include <cstdint>
#include <string>
#include <vector>

class MacroInfo;

// What there is to say about an assignment that is being chosen. Nothing here forbids one: an
// assignment that lacks something can be applied, and then does what its note says.
namespace assignmentnotes {

enum class Note : std::uint8_t {
  None,
  UnsendableKey,
  NoKey,
  NoFunction,
  NoMacro,
  SharedMacroName,
  LongMacroName,
  NoProgram,
};

// The letters of a macro's name that the mouse keeps.
inline constexpr std::size_t keptMacroName = 21;

// Whether a button with that key makes the mouse send something. `keyCode` is a Mac virtual key
// code; negative for no key.
bool canSend(std::int32_t keyCode);
// The keys that the mouse can send and a keyboard may lack, and Esc, which ends the capture of a
// key. Mac virtual key codes, in the order in which a list shows them.
const std::vector<std::int32_t>& rareKeys();
// The name of such a key, with that of the key that another keyboard has in its place.
std::string rareKeyTitle(std::int32_t keyCode);

Note ofKey(std::int32_t keyCode);
// Null for no macro.
Note ofMacro(const MacroInfo* macro);
// The path of a program; empty for none.
Note ofProgram(const std::string& path);

// The key of the note's text in the catalogue of texts; empty for no note.
const char* textOf(Note note);
// The key of what an Apply then says that the button will do; empty if the assignment is complete.
const char* effectOf(Note note);

}  // namespace assignmentnotes
