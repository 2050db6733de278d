#include "Action/Library/ProfileNames.h"

#include <algorithm>

#include "Action/Record/Limits.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/Transliteration.h"
#include "Kit/Core/Utf8.h"

bool profilenames::isStorable(const std::string& name) {
  return !name.empty() && name.size() <= limits::nameCharacters &&
         std::all_of(name.begin(), name.end(), [](char letter) {
           return letter >= ' ' && letter <= '~' && letter != '/' && letter != ':';
         });
}

bool profilenames::isHeldByMouse(const std::string& name) {
  return !name.empty() && name.size() <= limits::nameCharacters &&
         std::all_of(name.begin(), name.end(),
                     [](char letter) { return letter >= ' ' && letter <= '~'; });
}

std::string profilenames::forMouse(const std::string& name) {
  if (isHeldByMouse(name)) {
    return name;
  }
  std::string spelled = transliteration::toAscii(name, LXAction::getSysLanName());
  spelled = spelled.substr(0, limits::nameCharacters);
  // Left-out characters leave their blanks behind.
  const auto first = spelled.find_first_not_of(' ');
  const auto last = spelled.find_last_not_of(' ');
  return first == std::string::npos ? std::string() : spelled.substr(first, last - first + 1);
}

bool profilenames::isFactoryName(const std::string& name) {
  const std::string lower = utf8::lowercased(name);
  for (int number = 1; number <= limits::slotCount; ++number) {
    if (lower == "profile#" + std::to_string(number)) {
      return true;
    }
  }
  return false;
}
