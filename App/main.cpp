// NerinOption for the USB mouse.

#include <memory>
#include <utility>

#include "App/AppDelegate.h"
#include "App/FontList.h"
#include "App/PresenceWatch.h"
#include "App/RealPlatform.h"
#include "App/Relaunch.h"
#include "App/ServiceWatch.h"
#include "Kit/Bus/SessionBusNotificationCenter.h"
#include "Kit/Bus/SingleInstance.h"
#include "Kit/Core/HostEnvironment.h"
#include "Kit/Device/HidDeviceRequester.h"

int main(int argc, char** argv) {
  const FontList fonts;
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("NerinOption"));
  int code = 0;
  {
    AppDelegate delegate;
    // Asks the bus while the program prepares itself.
    SingleInstance instance("com.corvex.NerinOption", hostenvironment::activationToken(),
                            [&](const std::string& token) { delegate.bringToFront(token); });
    prepareApplication(application);
    if (instance.isSecond()) {
      return 0;
    }
    LXPlatform platform = realPlatform(std::make_shared<HidDeviceRequester>(),
                                       std::make_shared<SessionBusNotificationCenter>());
    platform.watchPresence = [](const std::function<void()>& whenChanged) {
      return std::make_shared<PresenceWatch>(whenChanged);
    };
    platform.watchService = [](std::function<void(bool)> changed) {
      return std::make_shared<ServiceWatch>(std::move(changed));
    };
    LXPlatform::install(std::move(platform));
    code = runApplication(delegate);
  }
  // Sends what is still to be sent.
  LXPlatform::install({});
  relaunch::carryOut();
  return code;
}
