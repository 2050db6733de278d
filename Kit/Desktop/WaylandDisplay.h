#pragma once

struct wl_display;
struct wl_seat;
struct wl_surface;
class QWindow;

// The program's connection to a Wayland compositor. Qt owns what these hand out.
namespace waylanddisplay {

// Null on another desktop, and in a build without Wayland.
wl_display* display();
wl_seat* seat();
// Null until the window is shown.
wl_surface* surfaceOf(QWindow& window);

// Sends what was painted to the compositor at once instead of when the event loop runs again. Does
// nothing on another desktop, where painting itself sends.
void flush();

}  // namespace waylanddisplay
