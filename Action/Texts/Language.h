#pragma once

#include <optional>
#include <span>
#include <string>

// The languages of the program, and the one that the user has chosen.
namespace language {

struct Language {
  const char* code;     // as the system names it, "pt-BR"
  const char* name;     // in the catalogue, "Portuguese(Brazil)"
  const char* ownName;  // as its speakers call it
  const char* english;  // as it is called in English
};

// All fifteen, in the order of their own names; English first.
std::span<const Language> all();
// Null for a code that is none of the program's.
const Language* ofCode(const std::string& code);

// The code that the user has chosen; none for the language of the system.
std::optional<std::string> chosen();
// Keeps the choice in the preferences and speaks that language from now on, even if the disk does
// not take it. False if it could not be kept.
[[nodiscard]] bool choose(const std::optional<std::string>& code);

}  // namespace language
