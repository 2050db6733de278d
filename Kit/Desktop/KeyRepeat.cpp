#include "Kit/Desktop/KeyRepeat.h"

#include <QGuiApplication>

// After Qt's headers, because those of X define many macros.
#if defined(NERIN_X11) && QT_CONFIG(xcb)
#include <X11/XKBlib.h>

void keyrepeat::withoutReleases() {
  auto* application = qobject_cast<QGuiApplication*>(QCoreApplication::instance());
  if (application == nullptr) {
    return;
  }
  const auto* x11 = application->nativeInterface<QNativeInterface::QX11Application>();
  if (x11 != nullptr && x11->display() != nullptr) {
    XkbSetDetectableAutoRepeat(x11->display(), True, nullptr);
  }
}
#else
void keyrepeat::withoutReleases() {}
#endif
