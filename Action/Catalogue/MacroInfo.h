#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroKeyInfo.h"
#include "Kit/Core/LXCoding.h"

// A named sequence of input events. The catalogue, the menus and an open editor share the object,
// so that an edit shows everywhere at once.
class MacroInfo final : public LXCoding {
 public:
  using Events = std::vector<std::shared_ptr<MacroKeyInfo>>;

  std::int32_t loopTime() const { return m_loopTime; }
  void setLoopTime(std::int32_t loopTime) { m_loopTime = loopTime; }
  Events& keyInfoArr() { return m_keyInfoArr; }
  const Events& keyInfoArr() const { return m_keyInfoArr; }
  void setKeyInfoArr(Events keyInfoArr) { m_keyInfoArr = std::move(keyInfoArr); }
  const std::optional<std::string>& nameStr() const { return m_nameStr; }
  void setNameStr(std::optional<std::string> nameStr) { m_nameStr = std::move(nameStr); }
  // Unique in the catalogue, from 1; 0 for a macro from an exchange file.
  std::int32_t macroId() const { return m_macroId; }
  void setMacroId(std::int32_t macroId) { m_macroId = macroId; }
  // A hidden macro lasts for one run: it is neither shown nor saved.
  bool isNoDisplay() const { return m_isNoDisplay; }
  void setIsNoDisplay(bool isNoDisplay) { m_isNoDisplay = isNoDisplay; }

  // The user changed it in this run. Reading a slot does not replace it: the mouse may still hold
  // its old events.
  bool isEdited() const { return m_isEdited; }
  void setIsEdited(bool isEdited) { m_isEdited = isEdited; }

  // The bytes that the events take in the mouse: one per event, three more per delay.
  std::int32_t getMacroCount() const;
  // The bytes of one function event: a press and a release for each key of its combination.
  static std::int32_t getComMacroCount(const MacroKeyInfo& event);

  std::string_view className() const override { return "MacroInfo"; }
  void encodeWithCoder(LXKeyedArchiver& coder) const override;
  void initWithCoder(LXKeyedUnarchiver& coder) override;

 private:
  std::int32_t m_loopTime = 0;
  Events m_keyInfoArr;
  std::optional<std::string> m_nameStr;
  std::int32_t m_macroId = 0;
  bool m_isNoDisplay = false;
  bool m_isEdited = false;
};
