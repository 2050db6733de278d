#include "Action/Catalogue/MacroKeyInfo.h"

void MacroKeyInfo::encodeWithCoder(LXKeyedArchiver& coder) const {
  coder.encodeInt(m_keyCode, "keyCode");
  coder.encodeInt(m_keyFlag, "keyFlag");
  coder.encodeInt(m_delay, "delay");
}

void MacroKeyInfo::initWithCoder(LXKeyedUnarchiver& coder) {
  m_keyCode = coder.decodeInt("keyCode");
  m_keyFlag = coder.decodeInt("keyFlag");
  m_delay = coder.decodeInt("delay");
}
