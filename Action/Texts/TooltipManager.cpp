#include "Action/Texts/TooltipManager.h"

#include <algorithm>
#include <utility>

#include <pugixml.hpp>

#include "Action/Texts/Language.h"
#include "Action/Texts/UserCatalogue.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/ProcessWide.h"

namespace {

constexpr const char* catalogueFile = "Tooltip.xml";

ProcessWide<std::unique_ptr<TooltipManager>> sharedManager;

// Tooltips are shown without a closing period.
std::optional<std::string> withoutPeriod(std::optional<std::string> text) {
  if (text && text->ends_with('.')) {
    text->pop_back();
  }
  return text;
}

TooltipData tooltipOf(const pugi::xml_node& item) {
  return {LXAction::getNodeAtrValue(item, "name"),
          withoutPeriod(LXAction::getNodeAtrValue(item, "text")),
          LXAction::getIntValue(LXAction::getNonullStr(LXAction::getNodeAtrValue(item, "viewID"))),
          LXAction::getNodeAtrValue(item, "btnID")};
}

template <typename Matches>
const TooltipData* firstIn(const LanData* language, Matches matches) {
  if (language == nullptr) {
    return nullptr;
  }
  const auto found = std::find_if(language->tooltips.begin(), language->tooltips.end(), matches);
  return found != language->tooltips.end() ? &*found : nullptr;
}

// The document keeps these bytes and changes them.
pugi::xml_parse_result parse(pugi::xml_document& document, std::string& bytes) {
  return document.load_buffer_inplace(bytes.data(), bytes.size());
}

void readTexts(LanData& language, const pugi::xml_node& section) {
  language.isRead = true;
  for (const pugi::xml_node& item : section.children("Item")) {
    language.tooltips.push_back(tooltipOf(item));
  }
}

// The same for a language of the list, whose section is looked for.
void readTexts(LanData& language) {
  language.isRead = true;
  pugi::xml_document document;
  auto bytes = usercatalogue::bytesOf(catalogueFile);
  if (!bytes || !parse(document, *bytes)) {
    return;
  }
  for (const pugi::xml_node& section : document.document_element().children("Lan")) {
    if (LXAction::getNodeAtrValue(section, "name") == language.name) {
      readTexts(language, section);
      return;
    }
  }
}

}  // namespace

TooltipManager& TooltipManager::shareTooltipManager() {
  auto& manager = *sharedManager;
  if (!manager) {
    manager = std::make_unique<TooltipManager>();
  }
  return *manager;
}

void TooltipManager::releaseTooltipManager() {
  sharedManager->reset();
}

TooltipManager::TooltipManager() {
  initData();
  setLanByname(usersLanName());
}

void TooltipManager::initData() {
  m_infoList.clear();
  m_currLan = nullptr;
  m_engLan = nullptr;
  usercatalogue::provide(catalogueFile);
  auto bytes = usercatalogue::bytesOf(catalogueFile);
  if (!bytes) {
    return;
  }
  pugi::xml_document document;
  auto result = parse(document, *bytes);
  if (!result) {
    bytes =
        usercatalogue::repaired(catalogueFile, usercatalogue::bytesOf(catalogueFile).value_or(""));
    if (bytes) {
      result = parse(document, *bytes);
    }
  }
  if (!result) {
    LXLogger::error(std::string(catalogueFile) + " is damaged: " + result.description());
    return;
  }
  const auto users = usersLanName();
  for (const pugi::xml_node& section : document.document_element().children("Lan")) {
    auto& language = m_infoList.emplace_back(std::make_unique<LanData>());
    language->name = LXAction::getNodeAtrValue(section, "name");
    if (m_infoList.size() == 1 || language->name == users) {
      readTexts(*language, section);
    }
  }
  if (!m_infoList.empty()) {
    m_engLan = m_infoList.front().get();
  }
}

std::optional<std::string> TooltipManager::usersLanName() {
  const auto chosen = language::chosen();
  return chosen ? language::ofCode(*chosen)->name : getSysLanName();
}

std::optional<std::string> TooltipManager::getSysLanName() {
  const auto* found = language::ofCode(LXAction::getSysLanName().value_or("en"));
  return found != nullptr ? std::optional<std::string>(found->name) : std::nullopt;
}

std::string TooltipManager::languageCode() const {
  const auto languages = language::all();
  const auto found = std::find_if(languages.begin(), languages.end(), [&](const auto& language) {
    return m_currLan != nullptr && m_currLan->name == language.name;
  });
  return found != languages.end() ? found->code : languages.front().code;
}

void TooltipManager::setLanByname(const std::optional<std::string>& name) {
  const auto found = std::find_if(m_infoList.begin(), m_infoList.end(), [&](const auto& language) {
    return name && language->name == name;
  });
  m_currLan = found != m_infoList.end() ? found->get() : m_engLan;
  if (found != m_infoList.end() && !(*found)->isRead) {
    readTexts(**found);
  }
}

template <typename Matches>
std::optional<std::string> TooltipManager::find(Matches matches) {
  if (m_currLan == nullptr) {
    m_currLan = m_engLan;
  }
  const TooltipData* tooltip = firstIn(m_currLan, matches);
  if (tooltip == nullptr) {
    tooltip = firstIn(m_engLan, matches);
  }
  return tooltip != nullptr ? tooltip->text : std::nullopt;
}

std::optional<std::string> TooltipManager::getTooltip(const std::string& key) {
  return find([&](const TooltipData& tooltip) { return tooltip.name == key; });
}

std::optional<std::string> TooltipManager::getTooltip(std::int32_t viewId,
                                                      const std::string& btnTag) {
  return find([&](const TooltipData& tooltip) {
    return tooltip.viewId == viewId && tooltip.btnTag == btnTag;
  });
}

std::optional<std::string> TooltipManager::getBtnIdBy(const LanData& language,
                                                      const std::string& name,
                                                      const std::string& text, std::int32_t vid) {
  static_cast<void>(text);
  const TooltipData* tooltip = firstIn(&language, [&](const TooltipData& candidate) {
    return candidate.viewId == vid && candidate.name == name;
  });
  return tooltip != nullptr ? tooltip->btnTag : std::nullopt;
}
