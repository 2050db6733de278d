#include <fstream>
#include <limits>
#include <set>

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <nlohmann/json.hpp>

#include "Kit/Core/LXKey.h"
#include "Kit/Desktop/NativeKeys.h"
#include "Tests/Kit/Desktop/NativeEvent.h"

namespace {

nlohmann::json fixture(const std::string& name) {
  std::ifstream file(NERIN_FIXTURES "/" + name);
  return nlohmann::json::parse(file);
}

QKeyEvent scanned(std::uint32_t scanCode) {
  return scannedEvent(QEvent::KeyPress, scanCode);
}

// The evdev codes that Linux assigns to the usages of a USB keyboard, from 4 on and from 0xE0 on.
constexpr std::uint32_t keysOfUsages[] = {
    KEY_A,          KEY_B,          KEY_C,          KEY_D,          KEY_E,         KEY_F,
    KEY_G,          KEY_H,          KEY_I,          KEY_J,          KEY_K,         KEY_L,
    KEY_M,          KEY_N,          KEY_O,          KEY_P,          KEY_Q,         KEY_R,
    KEY_S,          KEY_T,          KEY_U,          KEY_V,          KEY_W,         KEY_X,
    KEY_Y,          KEY_Z,          KEY_1,          KEY_2,          KEY_3,         KEY_4,
    KEY_5,          KEY_6,          KEY_7,          KEY_8,          KEY_9,         KEY_0,
    KEY_ENTER,      KEY_ESC,        KEY_BACKSPACE,  KEY_TAB,        KEY_SPACE,     KEY_MINUS,
    KEY_EQUAL,      KEY_LEFTBRACE,  KEY_RIGHTBRACE, KEY_BACKSLASH,  KEY_BACKSLASH, KEY_SEMICOLON,
    KEY_APOSTROPHE, KEY_GRAVE,      KEY_COMMA,      KEY_DOT,        KEY_SLASH,     KEY_CAPSLOCK,
    KEY_F1,         KEY_F2,         KEY_F3,         KEY_F4,         KEY_F5,        KEY_F6,
    KEY_F7,         KEY_F8,         KEY_F9,         KEY_F10,        KEY_F11,       KEY_F12,
    KEY_SYSRQ,      KEY_SCROLLLOCK, KEY_PAUSE,      KEY_INSERT,     KEY_HOME,      KEY_PAGEUP,
    KEY_DELETE,     KEY_END,        KEY_PAGEDOWN,   KEY_RIGHT,      KEY_LEFT,      KEY_DOWN,
    KEY_UP,         KEY_NUMLOCK,    KEY_KPSLASH,    KEY_KPASTERISK, KEY_KPMINUS,   KEY_KPPLUS,
    KEY_KPENTER,    KEY_KP1,        KEY_KP2,        KEY_KP3,        KEY_KP4,       KEY_KP5,
    KEY_KP6,        KEY_KP7,        KEY_KP8,        KEY_KP9,        KEY_KP0,       KEY_KPDOT,
    KEY_102ND,      KEY_COMPOSE,
};
constexpr std::uint32_t keysOfModifierUsages[] = {
    KEY_LEFTCTRL,  KEY_LEFTSHIFT,  KEY_LEFTALT,  KEY_LEFTMETA,
    KEY_RIGHTCTRL, KEY_RIGHTSHIFT, KEY_RIGHTALT, KEY_RIGHTMETA,
};

std::uint32_t keyOfUsage(std::uint32_t usage) {
  return usage >= 0xE0 ? keysOfModifierUsages[usage - 0xE0] : keysOfUsages[usage - 4];
}

}  // namespace

TEST(NativeKeys, NamesEveryKeyOfTheKernelAndNoOther) {
  const auto names = fixture("native-keys.json");
  ASSERT_EQ(names.size(), 132U);
  for (std::uint32_t code = 0; code <= KEY_MAX + 100; ++code) {
    const auto macKey = nativekeys::macKeyCode(code);
    EXPECT_EQ(macKey ? LXKey::getStrByKeycode(*macKey) : "", names.value(std::to_string(code), ""))
        << code;
  }
}

TEST(NativeKeys, ReachesEveryKeyThatHasAName) {
  std::set<std::string> reached;
  for (std::uint32_t code = 0; code <= KEY_MAX; ++code) {
    if (const auto macKey = nativekeys::macKeyCode(code)) {
      EXPECT_NE(LXKey::getStrByKeycode(*macKey), "") << "code " << code << ", key " << *macKey;
      reached.insert(std::to_string(*macKey));
    }
  }
  std::set<std::string> named;
  const auto names = fixture("mac-key-names.json");
  for (const auto& [code, name] : names.items()) {
    named.insert(code);
  }
  EXPECT_EQ(reached, named);
}

TEST(NativeKeys, ReadsTheScanCodesOfXAndOfWayland) {
  // Both start at 8; X ends at 255, Wayland does not.
  const auto names = fixture("native-keys.json");
  for (const auto& [code, name] : names.items()) {
    const auto evdevCode = static_cast<std::uint32_t>(std::stoul(code));
    const QKeyEvent event = scanned(evdevCode + 8);
    EXPECT_EQ(nativekeys::evdevCode(event), evdevCode);
    ASSERT_TRUE(nativekeys::macKeyCode(event)) << code;
    EXPECT_EQ(LXKey::getStrByKeycode(*nativekeys::macKeyCode(event)), name) << code;
  }
}

TEST(NativeKeys, KnowsNothingOfEventsThatNoKeyMade) {
  for (std::uint32_t scanCode = 0; scanCode <= 8; ++scanCode) {
    EXPECT_EQ(nativekeys::evdevCode(scanned(scanCode)), std::nullopt) << scanCode;
    EXPECT_EQ(nativekeys::macKeyCode(scanned(scanCode)), std::nullopt) << scanCode;
  }
  EXPECT_EQ(nativekeys::evdevCode(scanned(KEY_MAX + 8)), KEY_MAX);
  EXPECT_EQ(nativekeys::evdevCode(scanned(KEY_MAX + 9)), std::nullopt);
  constexpr auto maximum = std::numeric_limits<std::uint32_t>::max();
  EXPECT_EQ(nativekeys::evdevCode(scanned(maximum)), std::nullopt);
  EXPECT_EQ(nativekeys::macKeyCode(maximum), std::nullopt);
}

TEST(NativeKeys, HasNoCodeForKeysThatAMacDoesNotKnow) {
  for (const std::uint32_t code : {KEY_F21, KEY_F22, KEY_F23, KEY_F24, KEY_PLAYPAUSE, KEY_NEXTSONG,
                                   KEY_PREVIOUSSONG, KEY_STOPCD, KEY_POWER, KEY_SLEEP, KEY_MAIL,
                                   KEY_CALC, KEY_BRIGHTNESSUP, KEY_LINEFEED, KEY_RESERVED}) {
    EXPECT_EQ(nativekeys::macKeyCode(code), std::nullopt) << code;
  }
}

TEST(NativeKeys, KeepsLeftAndRightApartAndControlFromCommand) {
  EXPECT_EQ(nativekeys::macKeyCode(KEY_LEFTMETA), 55);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_RIGHTMETA), 54);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_LEFTSHIFT), 56);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_RIGHTSHIFT), 60);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_LEFTALT), 58);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_RIGHTALT), 61);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_LEFTCTRL), 59);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_RIGHTCTRL), 62);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_CAPSLOCK), 57);
  EXPECT_EQ(nativekeys::macKeyCode(KEY_FN), 63);
}

TEST(NativeKeys, MeansTheKeyThatTheMouseWillPress) {
  // A key is stored by its Mac code and sent as the usage of that code, which must give the key
  // that was pressed.
  std::size_t compared = 0;
  const auto tables = fixture("protocol-tables.json");
  for (const auto& pair : tables.at("UsageID_MacVk").at("pairs")) {
    const auto usage = pair.at(0).get<std::uint32_t>();
    const auto macKey = pair.at(1).get<std::uint32_t>();
    // Errors of the firmware: = sends the keypad's +, the ISO key an A.
    if (usage == 0x2E || usage == 0x64) {
      EXPECT_NE(nativekeys::macKeyCode(keyOfUsage(usage)), macKey);
      continue;
    }
    EXPECT_EQ(nativekeys::macKeyCode(keyOfUsage(usage)), macKey) << "usage " << usage;
    ++compared;
  }
  EXPECT_EQ(compared, 103U);
}
