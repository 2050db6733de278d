#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <type_traits>

// The records of one profile, exactly as a profile file holds them. The library, the views and the
// device layer pass them by value. All numbers are unsigned 32-bit words; the texts are UTF-8 and
// NUL-terminated inside their array.

// The record format defines these names, including the underscore.
// NOLINTBEGIN(bugprone-reserved-identifier)

inline constexpr std::size_t buttonCount = 16;
inline constexpr std::size_t zoneCount = 4;
inline constexpr std::size_t levelCount = 5;
inline constexpr std::size_t textSize = 256;
inline constexpr std::size_t wordSize = 4;

struct _BTN_INFO {
  std::uint32_t FuncID;       // id of the function in its menu; 1..5 for DPI functions
  std::uint32_t FuncTableId;  // firmware function code, the first byte of the device's entry
  std::uint32_t btnType;      // a ButtonType
  std::uint32_t KeyBit[4];    // parameters; their low bytes are bytes 1..4 of the device's entry
  char app_path[textSize];    // the program that the button launches
  std::uint32_t MacroID;      // the macro's id; 1 for mouse functions, 2 for keys
};

// One LED color, 0..255 each.
struct _LightColorInfo {
  std::uint32_t cR;
  std::uint32_t cG;
  std::uint32_t cB;
};

// Everything that the mouse stores for one profile.
struct _Nerin_PROFILE {
  _BTN_INFO btnInfo[buttonCount];
  std::uint32_t modeType;                 // LED mode: 1 "Battle", 0 normal
  std::uint32_t islightOnArr[zoneCount];  // 0 off, 1 on; never sent to the mouse
  _LightColorInfo lightColorArr[zoneCount];
  std::uint32_t dpiLevel;              // levels in use, 1..5
  std::uint32_t currSelectDPI;         // the active one, 0..dpiLevel - 1
  std::uint32_t xSensArr[levelCount];  // in units of 50 DPI, 2..164
  std::uint32_t ySensArr[levelCount];
  std::uint32_t liftHeight;  // 0..31
  std::uint32_t poRate;      // 0 = 125 Hz, 1 = 250, 2 = 500, 3 = 1000
};

// One stored profile: the bytes of a profile file.
struct _Nerin_CONFIG {
  std::uint64_t profileId;
  signed char isDefault;
  char profileName[textSize];
  _Nerin_PROFILE profile;
  signed char isActiveApp;
  char activeAppPath[textSize];
};

// NOLINTEND(bugprone-reserved-identifier)

// The values of _BTN_INFO::btnType. A file may hold other values.
enum ButtonType : std::uint32_t {
  ButtonTypePlain = 1,
  ButtonTypeMacro = 2,
  ButtonTypeSingle = 3,  // a mouse button or a key
  ButtonTypeSensitivity = 4,
  ButtonTypeLaunch = 5,
  ButtonTypeDisabled = 6,
};

static_assert(sizeof(_BTN_INFO) == 288);
static_assert(offsetof(_BTN_INFO, app_path) == 7 * wordSize);
static_assert(offsetof(_BTN_INFO, MacroID) == 71 * wordSize);
static_assert(sizeof(_LightColorInfo) == 12);
static_assert(sizeof(_Nerin_PROFILE) == 4732);
static_assert(offsetof(_Nerin_PROFILE, modeType) == 1152 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, islightOnArr) == 1153 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, lightColorArr) == 1157 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, dpiLevel) == 1169 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, currSelectDPI) == 1170 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, xSensArr) == 1171 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, ySensArr) == 1176 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, liftHeight) == 1181 * wordSize);
static_assert(offsetof(_Nerin_PROFILE, poRate) == 1182 * wordSize);
static_assert(sizeof(_Nerin_CONFIG) == 5264);
static_assert(offsetof(_Nerin_CONFIG, isDefault) == 8);
static_assert(offsetof(_Nerin_CONFIG, profileName) == 9);
static_assert(offsetof(_Nerin_CONFIG, profile) == 268);
static_assert(offsetof(_Nerin_CONFIG, isActiveApp) == 5000);
static_assert(offsetof(_Nerin_CONFIG, activeAppPath) == 5001);
static_assert(std::is_trivially_copyable_v<_Nerin_CONFIG>);

// Whether two profiles hold the same bytes.
bool isSameRecord(const _Nerin_PROFILE& a, const _Nerin_PROFILE& b);

// The length in bytes up to the first NUL; the maximum is 255, even without a NUL.
std::size_t getlen(const char (&field)[textSize]);

// The text of the field; getlen gives its length.
std::string_view textOf(const char (&field)[textSize]);

// Copies a text and its NUL into the field. Cuts a longer text at a character boundary so that both
// fit. Leaves the bytes after the NUL unchanged.
void setText(char (&field)[textSize], std::string_view text);

// The bytes of a profile file: the record with all numbers little-endian on any host.
using ConfigBytes = std::array<char, sizeof(_Nerin_CONFIG)>;
ConfigBytes bytesOf(const _Nerin_CONFIG& config);
// Reads the record from a file's first bytes; missing bytes are zero.
_Nerin_CONFIG configOf(std::span<const char> bytes);
