#include <filesystem>
#include <optional>
#include <string>

#include "Action/Library/LibraryHistory.h"
#include "Action/Library/ProfileNames.h"
#include "Action/Texts/TooltipManager.h"
#include "Fuzz/FuzzInput.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/Transliteration.h"
#include "Kit/Core/Utf8.h"
#include "VirtualMouse/VirtualMouse.h"

namespace fs = std::filesystem;

namespace {

// A folder of that name, as somebody could put it beside the earlier states of the library.
void readAsState(const std::string& name) {
  // A state begins with its year.
  const bool isName = !name.empty() && name.size() < 256 && name.front() < 'A' &&
                      name.front() != '.' &&
                      name.find_first_of(std::string_view("/\0", 2)) == std::string::npos;
  if (!isName) {
    return;
  }
  const fs::path library = fuzz::home() / "states" / "Profiles";
  const fs::path folder = library.parent_path() / "History" / name;
  std::error_code error;
  if (!fs::create_directories(folder, error)) {
    return;
  }
  for (const auto& state : LibraryHistory(library).states()) {
    fuzz::require(LibraryHistory::profilesIn(state).empty());
  }
  fs::remove(folder, error);
}

}  // namespace

// Any short text where one comes from outside: a name that a person types, the locale, the name of
// a folder beside the library, the scenario of a virtual mouse.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  fuzz::home();
  const std::string text(fuzz::textOf(data, size));
  const std::string repaired = utf8::repaired(text);
  fuzz::require(utf8::isValid(repaired) && (repaired == text) == utf8::isValid(text));
  fuzz::require(utf8::lengthInUtf16(repaired) <= repaired.size());
  fuzz::require(utf8::isValid(utf8::prefixOfBytes(repaired, 20)));
  for (const auto& language : {std::optional<std::string>(), std::optional<std::string>("de")}) {
    fuzz::require(utf8::isAscii(transliteration::toAscii(text, language)));
  }
  const std::string held = profilenames::forMouse(text);
  fuzz::require(held.empty() || profilenames::isHeldByMouse(held));
  LXPlatform platform = LXPlatform::current();
  platform.preferredLanguage = text;
  LXPlatform::install(std::move(platform));
  static_cast<void>(TooltipManager::getSysLanName());
  static_cast<void>(MouseScenario::parse(text));
  readAsState(text);
  return 0;
}
