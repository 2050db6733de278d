#include "Action/Catalogue/MacroInfo.h"

#include "Action/Catalogue/FunctionCatalogue.h"

std::int32_t MacroInfo::getMacroCount() const {
  std::int32_t count = 0;
  for (const auto& event : m_keyInfoArr) {
    if (event->keyFlag() == MacroKeyInfo::Function) {
      count += getComMacroCount(*event);
    } else {
      count += event->delay() > 0 ? 4 : 1;
    }
  }
  return count;
}

std::int32_t MacroInfo::getComMacroCount(const MacroKeyInfo& event) {
  const auto entry = NerinAction::getMacroMenuByFunid(event.keyCode());
  return entry ? 2 * static_cast<std::int32_t>(entry->usedKeys().size()) : 0;
}

void MacroInfo::encodeWithCoder(LXKeyedArchiver& coder) const {
  coder.encodeInt(m_loopTime, "loopTime");
  std::vector<const LXCoding*> events;
  events.reserve(m_keyInfoArr.size());
  for (const auto& event : m_keyInfoArr) {
    events.push_back(event.get());
  }
  coder.encodeArray(events, "keyInfoArr");
  coder.encodeString(m_nameStr, "nameStr");
  coder.encodeBool(m_isNoDisplay, "isNoDisplay");
}

void MacroInfo::initWithCoder(LXKeyedUnarchiver& coder) {
  m_loopTime = coder.decodeInt("loopTime");
  m_keyInfoArr = coder.decodeArray<MacroKeyInfo>("keyInfoArr");
  m_nameStr = coder.decodeString("nameStr");
  m_isNoDisplay = coder.decodeBool("isNoDisplay");
}
