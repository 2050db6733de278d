#pragma once

#include <string>

// The keys of the preference file that this program and the background service share.
namespace preferencekeys {

inline constexpr const char* osd = "OSDTag";
// The code of the chosen language, such as "pt-BR"; absent or empty for that of the system. The
// service needs no language.
inline constexpr const char* language = "Language";
// Whether the slot follows the linked programs; absent for yes.
inline constexpr const char* switchSlots = "SwitchSlots";
inline constexpr const char* linkApp = "LinkApp";
inline constexpr const char* learnedButtons = "LearnedButtons";

// The number is 1..10 for the link record of a slot and starts at 0 inside "LinkApp".
inline std::string profile(int number) {
  return "Profile_" + std::to_string(number);
}

inline std::string linkIsActive(int slot) {
  return "IsActive_" + profile(slot);
}

inline std::string launchPath(int slot, int button) {
  return profile(slot) + "_" + std::to_string(button);
}

// Inside "LearnedButtons"; starts at 0.
inline std::string button(int number) {
  return "Button_" + std::to_string(number);
}

}  // namespace preferencekeys
