// NerinOption for the USB mouse.

#include <memory>

#include "App/AppDelegate.h"
#include "App/FontList.h"
#include "App/RealPlatform.h"
#include "Kit/Bus/SessionBusNotificationCenter.h"
#include "Kit/Device/HidDeviceRequester.h"

int main(int argc, char** argv) {
  const FontList fonts;
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("NerinOption"));
  prepareApplication(application);
  LXPlatform::install(realPlatform(std::make_shared<HidDeviceRequester>(),
                                   std::make_shared<SessionBusNotificationCenter>()));
  int code = 0;
  {
    AppDelegate delegate;
    code = runApplication(delegate);
  }
  // The bus connection must be closed before Qt shuts down.
  LXPlatform::install({});
  return code;
}
