#pragma once

// Where the companion is on the session bus, and what it says there. All properties are texts.
namespace companionaddress {

inline constexpr const char* service = "com.corvex.NerinOption.Companion";
inline constexpr const char* path = "/com/corvex/NerinOption/Companion";
inline constexpr const char* interface = service;

// Why the mouse has its slot, in one sentence.
inline constexpr const char* explanation = "Explanation";
// How this desktop tells which program is in front: "X11"; "none" if it does not, "not needed"
// while no program is linked.
inline constexpr const char* foreground = "Foreground";
// The file of the virtual mouse that it uses; empty for the USB mouse.
inline constexpr const char* mouse = "Mouse";

}  // namespace companionaddress
