#include "Kit/Desktop/NativeKeys.h"

#include <QKeyEvent>
#include <array>
#include <cstddef>

#include <linux/input-event-codes.h>

namespace {

struct NativeKey {
  std::uint32_t evdevCode;
  std::uint8_t macKeyCode;
};

constexpr NativeKey keys[] = {
    // Letters.
    {KEY_A, 0},
    {KEY_B, 11},
    {KEY_C, 8},
    {KEY_D, 2},
    {KEY_E, 14},
    {KEY_F, 3},
    {KEY_G, 5},
    {KEY_H, 4},
    {KEY_I, 34},
    {KEY_J, 38},
    {KEY_K, 40},
    {KEY_L, 37},
    {KEY_M, 46},
    {KEY_N, 45},
    {KEY_O, 31},
    {KEY_P, 35},
    {KEY_Q, 12},
    {KEY_R, 15},
    {KEY_S, 1},
    {KEY_T, 17},
    {KEY_U, 32},
    {KEY_V, 9},
    {KEY_W, 13},
    {KEY_X, 7},
    {KEY_Y, 16},
    {KEY_Z, 6},

    // Digits and punctuation. The backslash key is also the one beside Return on ISO keyboards.
    {KEY_1, 18},
    {KEY_2, 19},
    {KEY_3, 20},
    {KEY_4, 21},
    {KEY_5, 23},
    {KEY_6, 22},
    {KEY_7, 26},
    {KEY_8, 28},
    {KEY_9, 25},
    {KEY_0, 29},
    {KEY_MINUS, 27},
    {KEY_EQUAL, 24},
    {KEY_LEFTBRACE, 33},
    {KEY_RIGHTBRACE, 30},
    {KEY_BACKSLASH, 42},
    {KEY_SEMICOLON, 41},
    {KEY_APOSTROPHE, 39},
    {KEY_GRAVE, 50},
    {KEY_COMMA, 43},
    {KEY_DOT, 47},
    {KEY_SLASH, 44},
    // The additional key of ISO keyboards. A Mac swaps it with the key left of 1 on its own ISO
    // keyboards. The mouse does not, and uses code 50 for the key left of 1.
    {KEY_102ND, 10},

    {KEY_ESC, 53},
    {KEY_ENTER, 36},
    {KEY_TAB, 48},
    {KEY_SPACE, 49},
    {KEY_BACKSPACE, 51},

    {KEY_LEFTCTRL, 59},
    {KEY_RIGHTCTRL, 62},
    {KEY_LEFTSHIFT, 56},
    {KEY_RIGHTSHIFT, 60},
    {KEY_LEFTALT, 58},
    {KEY_RIGHTALT, 61},
    {KEY_LEFTMETA, 55},
    {KEY_RIGHTMETA, 54},
    {KEY_CAPSLOCK, 57},
    {KEY_FN, 63},

    // Function keys. Where a PC has Print Screen, Scroll Lock and Pause, a Mac has F13 to F15.
    {KEY_F1, 122},
    {KEY_F2, 120},
    {KEY_F3, 99},
    {KEY_F4, 118},
    {KEY_F5, 96},
    {KEY_F6, 97},
    {KEY_F7, 98},
    {KEY_F8, 100},
    {KEY_F9, 101},
    {KEY_F10, 109},
    {KEY_F11, 103},
    {KEY_F12, 111},
    {KEY_F13, 105},
    {KEY_F14, 107},
    {KEY_F15, 113},
    {KEY_F16, 106},
    {KEY_F17, 64},
    {KEY_F18, 79},
    {KEY_F19, 80},
    {KEY_F20, 90},
    {KEY_SYSRQ, 105},
    {KEY_SCROLLLOCK, 107},
    {KEY_PAUSE, 113},

    // Navigation. Where a PC has Insert, a Mac has Help.
    {KEY_INSERT, 114},
    {KEY_HELP, 114},
    {KEY_HOME, 115},
    {KEY_PAGEUP, 116},
    {KEY_DELETE, 117},
    {KEY_END, 119},
    {KEY_PAGEDOWN, 121},
    {KEY_LEFT, 123},
    {KEY_RIGHT, 124},
    {KEY_DOWN, 125},
    {KEY_UP, 126},
    {KEY_COMPOSE, 110},
    {KEY_MENU, 110},

    // Keypad.
    {KEY_NUMLOCK, 71},
    {KEY_KPSLASH, 75},
    {KEY_KPASTERISK, 67},
    {KEY_KPMINUS, 78},
    {KEY_KPPLUS, 69},
    {KEY_KPENTER, 76},
    {KEY_KPEQUAL, 81},
    {KEY_KPDOT, 65},
    {KEY_KPCOMMA, 95},
    {KEY_KPJPCOMMA, 95},
    {KEY_KP0, 82},
    {KEY_KP1, 83},
    {KEY_KP2, 84},
    {KEY_KP3, 85},
    {KEY_KP4, 86},
    {KEY_KP5, 87},
    {KEY_KP6, 88},
    {KEY_KP7, 89},
    {KEY_KP8, 91},
    {KEY_KP9, 92},

    {KEY_VOLUMEUP, 72},
    {KEY_VOLUMEDOWN, 73},
    {KEY_MUTE, 74},

    // Japanese keyboards. A Mac has only Eisu to the left of the space bar and Kana to the right,
    // so the keys on each side map to one of them, and Zenkaku/Hankaku to the key in its position.
    {KEY_YEN, 93},
    {KEY_RO, 94},
    {KEY_MUHENKAN, 102},
    {KEY_HENKAN, 104},
    {KEY_KATAKANAHIRAGANA, 104},
    {KEY_KATAKANA, 104},
    {KEY_HIRAGANA, 104},
    {KEY_ZENKAKUHANKAKU, 50},

    // Korean keyboards send Hangul and Hanja from the keys that are Kana and Eisu on a Mac.
    {KEY_HANGEUL, 104},
    {KEY_HANJA, 102},
};

constexpr std::uint8_t noKey = 0xFF;
constexpr std::uint32_t maximumCode = KEY_FN;

// Looked up for every key event, so indexed instead of searched.
constexpr auto macKeyCodes = [] {
  std::array<std::uint8_t, maximumCode + 1> table{};
  table.fill(noKey);
  for (const NativeKey& key : keys) {
    table.at(key.evdevCode) = key.macKeyCode;
  }
  return table;
}();

static_assert(
    [] {
      std::size_t count = 0;
      for (const std::uint8_t code : macKeyCodes) {
        count += code != noKey ? 1U : 0U;
      }
      return count == std::size(keys);
    }(),
    "a key stands in the table once");

// X reserves the codes below 8; Wayland inherited this offset with X's keymaps.
constexpr std::uint32_t scanCodeOffset = 8;

}  // namespace

std::optional<std::uint32_t> nativekeys::evdevCode(const QKeyEvent& event) {
  const std::uint32_t scanCode = event.nativeScanCode();
  if (scanCode <= scanCodeOffset || scanCode - scanCodeOffset > KEY_MAX) {
    return std::nullopt;
  }
  return scanCode - scanCodeOffset;
}

std::optional<std::uint16_t> nativekeys::macKeyCode(std::uint32_t evdevCode) {
  if (evdevCode > maximumCode || macKeyCodes[evdevCode] == noKey) {
    return std::nullopt;
  }
  return macKeyCodes[evdevCode];
}

std::optional<std::uint16_t> nativekeys::macKeyCode(const QKeyEvent& event) {
  const auto code = evdevCode(event);
  return code ? macKeyCode(*code) : std::nullopt;
}
