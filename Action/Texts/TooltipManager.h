#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Texts/LanData.h"

// The texts of "Tooltip.xml" in the user's language, and in the file's first one where a text is
// missing there.
class TooltipManager {
 public:
  // The one manager of the process, made at the first call.
  static TooltipManager& shareTooltipManager();
  // Forgets it, so that the next call loads anew.
  static void releaseTooltipManager();

  // Loads the file and chooses the system's language.
  TooltipManager();
  TooltipManager(const TooltipManager&) = delete;
  TooltipManager& operator=(const TooltipManager&) = delete;

  // Loads the file. What is no XML, or has no languages, is an empty catalogue.
  void initData();
  // The catalogue's name for the system's language; nothing for one that it does not know.
  static std::optional<std::string> getSysLanName();
  // Chooses the first language of that exact name, or the fallback.
  void setLanByname(const std::optional<std::string>& name);

  // The text of the key, or of the control of a view; nothing when no language has it.
  std::optional<std::string> getTooltip(const std::string& key);
  std::optional<std::string> getTooltip(std::int32_t viewId, const std::string& btnTag);
  // The control's tag under which a language has the key for that view. The text plays no role.
  static std::optional<std::string> getBtnIdBy(const LanData& language, const std::string& name,
                                               const std::string& text, std::int32_t vid);

  const std::vector<std::unique_ptr<LanData>>& infoList() const { return m_infoList; }
  // The chosen language and the fallback; null in an empty catalogue.
  const LanData* currLan() const { return m_currLan; }
  const LanData* engLan() const { return m_engLan; }

 private:
  template <typename Matches>
  std::optional<std::string> find(Matches matches);

  std::vector<std::unique_ptr<LanData>> m_infoList;
  const LanData* m_currLan = nullptr;
  const LanData* m_engLan = nullptr;
};
