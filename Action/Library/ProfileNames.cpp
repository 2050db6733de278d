#include "Action/Library/ProfileNames.h"

#include <algorithm>

#include "Action/Record/Limits.h"
#include "Kit/Core/Utf8.h"

bool profilenames::isStorable(const std::string& name) {
  return !name.empty() && name.size() <= limits::nameCharacters &&
         std::all_of(name.begin(), name.end(), [](char letter) {
           return letter >= ' ' && letter <= '~' && letter != '/' && letter != ':';
         });
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
