#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Texts/LanData.h"

// The texts of "Tooltip.xml" in the user's language. A missing text comes from the file's first
// language.
class TooltipManager {
 public:
  // Creates the manager of the process at the first call.
  static TooltipManager& shareTooltipManager();
  // Destroys the manager; the next call loads the file again.
  static void releaseTooltipManager();

  // Loads the file and chooses the user's language.
  TooltipManager();
  TooltipManager(const TooltipManager&) = delete;
  TooltipManager& operator=(const TooltipManager&) = delete;

  // A file that is not XML is repaired, see UserCatalogue.h. One without languages leaves the
  // catalogue empty.
  void initData();
  // The user's choice, see Language.h, or else the system's language.
  static std::optional<std::string> usersLanName();
  // The catalogue's name for the system's language; no value for an unknown language.
  static std::optional<std::string> getSysLanName();
  // The selected language as the system names it: "en", "pt-BR", "zh-Hant". English for a language
  // that only the user's file has.
  std::string languageCode() const;
  // Selects the first language of that exact name, or the fallback. Reads the file again for a
  // language that was never selected: most users have one language, and the file has fifteen.
  void setLanByname(const std::optional<std::string>& name);

  // The text of a key, or of a view's control; no value when no language has it.
  std::optional<std::string> getTooltip(const std::string& key);
  std::optional<std::string> getTooltip(std::int32_t viewId, const std::string& btnTag);
  // The tag of the control with that key in that view. `text` is ignored.
  static std::optional<std::string> getBtnIdBy(const LanData& language, const std::string& name,
                                               const std::string& text, std::int32_t vid);

  // All languages of the file.
  const std::vector<std::unique_ptr<LanData>>& infoList() const { return m_infoList; }
  // The selected language and the fallback; null in an empty catalogue.
  const LanData* currLan() const { return m_currLan; }
  const LanData* engLan() const { return m_engLan; }

 private:
  template <typename Matches>
  std::optional<std::string> find(Matches matches);

  std::vector<std::unique_ptr<LanData>> m_infoList;
  const LanData* m_currLan = nullptr;
  const LanData* m_engLan = nullptr;
};
