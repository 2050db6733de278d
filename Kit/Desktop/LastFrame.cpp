#include "Kit/Desktop/LastFrame.h"

#include <QGuiApplication>
#include <QPlatformSurfaceEvent>
#include <QWindow>
#include <thread>

void LastFrame::waitFor(QCoreApplication& application) {
  if (QGuiApplication::platformName().startsWith(u"wayland")) {
    new LastFrame(application);
  }
}

LastFrame::LastFrame(QCoreApplication& application) : QObject(&application) {
  application.installEventFilter(this);
}

bool LastFrame::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::PlatformSurface &&
      static_cast<QPlatformSurfaceEvent*>(event)->surfaceEventType() ==
          QPlatformSurfaceEvent::SurfaceCreated) {
    if (auto* window = qobject_cast<QWindow*>(object)) {
      // Is told before the compositor is.
      connect(window, &QWindow::visibleChanged, this, [](bool isVisible) {
        if (!isVisible) {
          std::this_thread::sleep_for(pause);
        }
      });
    }
  }
  return false;
}
