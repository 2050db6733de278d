#include "Action/Catalogue/MenuInfo.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace {

constexpr std::int32_t unusedKey = 255;
constexpr const char* keyBitNames[] = {"KeyBit1", "KeyBit2", "KeyBit3", "KeyBit4"};

}  // namespace

std::shared_ptr<MenuInfo> MenuInfo::initWithMacroData(std::shared_ptr<MacroInfo> macro) {
  auto entry = std::make_shared<MenuInfo>();
  entry->setTitleStr(macro->nameStr().value_or(""));
  entry->setType(1);
  entry->setMacroInfo(std::move(macro));
  return entry;
}

std::vector<std::int32_t> MenuInfo::usedKeys() const {
  return {std::begin(m_keyBits), std::find(std::begin(m_keyBits), std::end(m_keyBits), unusedKey)};
}

void MenuInfo::encodeWithCoder(LXKeyedArchiver& coder) const {
  coder.encodeInt(m_functionID, "functionID");
  coder.encodeInt(m_functionTableID, "functionTableID");
  coder.encodeInt(m_typeTag, "typeTag");
  for (std::size_t i = 0; i < std::size(m_keyBits); ++i) {
    coder.encodeInt(m_keyBits[i], keyBitNames[i]);
  }
  coder.encodeBool(m_needSepretor, "needSepretor");
  coder.encodeBool(m_saveTag, "saveTag");
  coder.encodeObject(*m_macroInfo, "macroInfo");
}

void MenuInfo::initWithCoder(LXKeyedUnarchiver& coder) {
  m_functionID = coder.decodeInt("functionID");
  m_functionTableID = coder.decodeInt("functionTableID");
  m_typeTag = coder.decodeInt("typeTag");
  for (std::size_t i = 0; i < std::size(m_keyBits); ++i) {
    m_keyBits[i] = coder.decodeInt(keyBitNames[i]);
  }
  m_needSepretor = coder.decodeBool("needSepretor");
  m_saveTag = coder.decodeBool("saveTag");
  auto macro = std::make_shared<MacroInfo>();
  if (coder.decodeObject(*macro, "macroInfo")) {
    m_macroInfo = std::move(macro);
  }
}
