#pragma once

#include <cstdint>

#include "Kit/Core/LXCoding.h"

class MacroKeyInfo final : public LXCoding {
 public:
  // The kinds of events (keyFlag). The comments say what keyCode means for each.
  enum Flag : std::int32_t {
    KeyPress = 0,  // a Mac virtual key code
    KeyRelease = 1,
    Function = 2,    // the function id of an entry of the macro-insert menu
    MousePress = 3,  // 120 left, 121 right, 122 other
    MouseRelease = 4,
  };

  MacroKeyInfo() = default;
  MacroKeyInfo(std::int32_t keyCode, std::int32_t keyFlag, std::int32_t delay)
      : m_keyCode(keyCode), m_keyFlag(keyFlag), m_delay(delay) {}

  std::int32_t keyCode() const { return m_keyCode; }
  void setKeyCode(std::int32_t keyCode) { m_keyCode = keyCode; }
  std::int32_t keyFlag() const { return m_keyFlag; }
  void setKeyFlag(std::int32_t keyFlag) { m_keyFlag = keyFlag; }
  // The pause after this event in milliseconds; 0 or less means no pause.
  std::int32_t delay() const { return m_delay; }
  void setDelay(std::int32_t delay) { m_delay = delay; }

  std::string_view className() const override { return "MacroKeyInfo"; }
  void encodeWithCoder(LXKeyedArchiver& coder) const override;
  void initWithCoder(LXKeyedUnarchiver& coder) override;

 private:
  std::int32_t m_keyCode = 0;
  std::int32_t m_keyFlag = 0;
  std::int32_t m_delay = 0;
};
