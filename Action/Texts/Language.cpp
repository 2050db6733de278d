#include "Action/Texts/Language.h"

#include <algorithm>
#include <array>

#include "Action/Library/PreferenceKeys.h"
#include "Action/Library/SupportFolder.h"
#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/PreferenceFile.h"

namespace {

using language::Language;

constexpr std::array<Language, 15> languages{{
    {"en", "US", "English", "English"},
    {"cs", "Czech", "Čeština", "Czech"},
    {"de", "German", "Deutsch", "German"},
    {"es", "Spanish", "Español", "Spanish"},
    {"fr", "French", "Français", "French"},
    {"it", "Italian", "Italiano", "Italian"},
    {"pl", "Polish", "Polski", "Polish"},
    {"pt-BR", "Portuguese(Brazil)", "Português (Brasil)", "Portuguese (Brazil)"},
    {"tr", "Turkish", "Türkçe", "Turkish"},
    {"el", "Greek", "Ελληνικά", "Greek"},
    {"ru", "Russian", "Русский", "Russian"},
    {"ja", "Japanese", "日本語", "Japanese"},
    {"ko", "Korean", "한국어", "Korean"},
    {"zh-Hans", "SC", "简体中文", "Chinese (simplified)"},
    {"zh-Hant", "TC", "繁體中文", "Chinese (traditional)"},
}};

}  // namespace

std::span<const Language> language::all() {
  return languages;
}

const Language* language::ofCode(const std::string& code) {
  const auto* found = std::find_if(languages.begin(), languages.end(),
                                   [&](const Language& one) { return one.code == code; });
  return found != languages.end() ? found : nullptr;
}

std::optional<std::string> language::chosen() {
  const auto code =
      PreferenceFile(NerinAction::preferenceFilePath()).stringFor(preferencekeys::language);
  return code && ofCode(*code) != nullptr ? code : std::nullopt;
}

bool language::choose(const std::optional<std::string>& code) {
  const bool isKept = PreferenceFile(NerinAction::preferenceFilePath())
                          .setValue(preferencekeys::language, code.value_or(""));
  const Language* wanted = code ? ofCode(*code) : nullptr;
  TooltipManager::shareTooltipManager().setLanByname(wanted != nullptr
                                                         ? std::optional<std::string>(wanted->name)
                                                         : TooltipManager::getSysLanName());
  return isKept;
}
