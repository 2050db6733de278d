#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "Action/Catalogue/MacroInfo.h"
#include "Kit/Core/LXCoding.h"
#include "Kit/Core/LXMenuData.h"

// One entry of the function catalogue.
class MenuInfo final : public LXMenuData, public LXCoding {
 public:
  MenuInfo() = default;
  // The entry of a macro in the macro menu.
  static std::shared_ptr<MenuInfo> initWithMacroData(std::shared_ptr<MacroInfo> macro);

  // The id of the function within its menu.
  std::int32_t functionID() const { return m_functionID; }
  void setFunctionID(std::int32_t functionID) { m_functionID = functionID; }
  // The firmware's function code.
  std::int32_t functionTableID() const { return m_functionTableID; }
  void setFunctionTableID(std::int32_t id) { m_functionTableID = id; }
  // A line follows the entry.
  bool needSepretor() const { return m_needSepretor; }
  void setNeedSepretor(bool needSepretor) { m_needSepretor = needSepretor; }
  bool isLineAfter() const override { return m_needSepretor; }
  std::int32_t typeTag() const { return m_typeTag; }
  void setTypeTag(std::int32_t typeTag) { m_typeTag = typeTag; }
  std::int32_t KeyBit1() const { return m_keyBits[0]; }
  void setKeyBit1(std::int32_t bit) { m_keyBits[0] = bit; }
  std::int32_t KeyBit2() const { return m_keyBits[1]; }
  void setKeyBit2(std::int32_t bit) { m_keyBits[1] = bit; }
  std::int32_t KeyBit3() const { return m_keyBits[2]; }
  void setKeyBit3(std::int32_t bit) { m_keyBits[2] = bit; }
  std::int32_t KeyBit4() const { return m_keyBits[3]; }
  void setKeyBit4(std::int32_t bit) { m_keyBits[3] = bit; }
  bool saveTag() const { return m_saveTag; }
  void setSaveTag(bool saveTag) { m_saveTag = saveTag; }
  // The key of the entry's title in the text catalogue; empty when it has none.
  const std::string& toolTipTag() const { return m_toolTipTag; }
  void setToolTipTag(std::string tag) { m_toolTipTag = std::move(tag); }
  // Never null: an entry of another menu has an empty macro.
  const std::shared_ptr<MacroInfo>& macroInfo() const { return m_macroInfo; }
  void setMacroInfo(std::shared_ptr<MacroInfo> macro) {
    if (macro) {
      m_macroInfo = std::move(macro);
    }
  }

  // The Mac key codes of the combination: the key bits before the first unused one (255).
  std::vector<std::int32_t> usedKeys() const;

  std::string_view className() const override { return "MenuInfo"; }
  void encodeWithCoder(LXKeyedArchiver& coder) const override;
  void initWithCoder(LXKeyedUnarchiver& coder) override;

 private:
  std::int32_t m_functionID = 0;
  std::int32_t m_functionTableID = 0;
  bool m_needSepretor = false;
  std::int32_t m_typeTag = 0;
  std::int32_t m_keyBits[4] = {};
  bool m_saveTag = true;
  std::string m_toolTipTag;
  std::shared_ptr<MacroInfo> m_macroInfo = std::make_shared<MacroInfo>();
};
