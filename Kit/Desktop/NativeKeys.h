#pragma once

#include <cstdint>
#include <optional>

class QKeyEvent;

// Keys by what they are, whatever the layout makes of them: the kernel's code of a key (evdev) and
// the Mac virtual key code by which profiles and macros name it.
namespace nativekeys {

// The evdev code of the key, 1..767, on X11 and Wayland; nothing for an event that no keyboard
// made, such as one of an input method or of a test that gave no scan code.
std::optional<std::uint32_t> evdevCode(const QKeyEvent& event);

// Evdev code -> Mac virtual key code, 0..126. Knows the keys of full-size ANSI, ISO, Japanese and
// Korean keyboards, left and right modifiers apart (Ctrl is Control, Super is Command, Alt is
// Option) and the volume keys. Nothing for a key that a Mac has no code for: F21 to F24, the
// playback keys, any other number.
std::optional<std::uint16_t> macKeyCode(std::uint32_t evdevCode);
std::optional<std::uint16_t> macKeyCode(const QKeyEvent& event);

}  // namespace nativekeys
