#include "Kit/Desktop/WaylandDisplay.h"

#ifdef NERIN_WAYLAND
#include <QGuiApplication>
#include <QWindow>

#include <qpa/qplatformnativeinterface.h>
#include <wayland-client-core.h>

namespace {

// Null on another desktop.
QPlatformNativeInterface* platform() {
  const bool isWayland = QGuiApplication::platformName().startsWith(u"wayland");
  return isWayland ? QGuiApplication::platformNativeInterface() : nullptr;
}

void* resource(const char* name) {
  QPlatformNativeInterface* found = platform();
  return found != nullptr ? found->nativeResourceForIntegration(name) : nullptr;
}

}  // namespace

wl_display* waylanddisplay::display() {
  return static_cast<wl_display*>(resource("wl_display"));
}

wl_seat* waylanddisplay::seat() {
  return static_cast<wl_seat*>(resource("wl_seat"));
}

wl_surface* waylanddisplay::surfaceOf(QWindow& window) {
  QPlatformNativeInterface* found = platform();
  return found != nullptr
             ? static_cast<wl_surface*>(found->nativeResourceForWindow("surface", &window))
             : nullptr;
}

void waylanddisplay::flush() {
  if (wl_display* found = display()) {
    // What the socket has no room for now goes with the next events.
    wl_display_flush(found);
  }
}
#else
wl_display* waylanddisplay::display() {
  return nullptr;
}

wl_seat* waylanddisplay::seat() {
  return nullptr;
}

wl_surface* waylanddisplay::surfaceOf(QWindow& /*window*/) {
  return nullptr;
}

void waylanddisplay::flush() {}
#endif
