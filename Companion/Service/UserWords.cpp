#include "Companion/Service/UserWords.h"

#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "Action/Texts/TooltipManager.h"

std::string UserWords::operator()(const std::string& name) {
  if (!m_isLoaded) {
    load();
  }
  const auto known = m_texts.find(name);
  return known != m_texts.end() ? known->second : name;
}

void UserWords::forget() {
  m_texts.clear();
  m_isLoaded = false;
}

void UserWords::load() {
  m_isLoaded = true;
  const TooltipManager& catalogue = TooltipManager::shareTooltipManager();
  for (const LanData* language : {catalogue.currLan(), catalogue.engLan()}) {
    if (language == nullptr) {
      continue;
    }
    for (const TooltipData& one : language->tooltips) {
      if (one.name && one.text) {
        m_texts.try_emplace(*one.name, *one.text);
      }
    }
  }
  TooltipManager::releaseTooltipManager();
#ifdef __GLIBC__
  // This program runs for days, and needed the memory for a moment.
  malloc_trim(0);
#endif
}
