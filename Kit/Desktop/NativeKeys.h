#pragma once

#include <cstdint>
#include <optional>

class QKeyEvent;

// Physical keys, independent of the layout: the kernel's key code (evdev) and the Mac virtual key
// code that profiles and macros use.
namespace nativekeys {

// The evdev code of the key, 1..767, on X11 and Wayland. Nothing for an event that does not come
// from a keyboard, such as one from an input method or from a test without a scan code.
std::optional<std::uint32_t> evdevCode(const QKeyEvent& event);

// Evdev code -> Mac virtual key code, 0..126. Knows the keys of full-size ANSI, ISO, Japanese and
// Korean keyboards, separate left and right modifiers (Ctrl is Control, Super is Command, Alt is
// Option) and the volume keys. Nothing for a key without a Mac code: F21 to F24, the playback keys,
// any other number.
std::optional<std::uint16_t> macKeyCode(std::uint32_t evdevCode);
std::optional<std::uint16_t> macKeyCode(const QKeyEvent& event);

}  // namespace nativekeys
