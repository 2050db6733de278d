// What names a program: a desktop entry, the units of a process, and what a button sends.

#include <string>

#include "Action/Service/LearnedButtons.h"
#include "Companion/Policy/AppMatcher.h"
#include "Fuzz/FuzzInput.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string text(reinterpret_cast<const char*>(data), size);
  AppIdentity identity;
  identity.unit = unitOfCgroup(text);
  identity.appId = text;
  static_cast<void>(isSameProgram(linkedProgramOf("/a/b.desktop", text), identity));
  static_cast<void>(desktopIdOfUnit(text));
  const auto pattern = ButtonPattern::parse(text);
  // What was read is what is written.
  fuzz::require(!pattern || ButtonPattern::parse(pattern->text()) == pattern);
  return 0;
}
