// NerinOption on a virtual mouse, with a panel beside it that plays the user's hands and the
// background service. Its library is separate from that of the real program.

#include <iostream>
#include <memory>

#include "Action/Library/SupportFolder.h"
#include "App/AppDelegate.h"
#include "App/DemoNotificationCenter.h"
#include "App/DemoPanel.h"
#include "App/FontList.h"
#include "App/RealPlatform.h"
#include "App/Relaunch.h"
#include "Kit/Bus/SingleInstance.h"
#include "Kit/Core/HostEnvironment.h"
#include "View/Windows/Termination.h"
#include "VirtualMouse/VirtualDeviceRequester.h"

namespace {

constexpr const char* bundle = "com.corvex.NerinOptionDemo";

int run(QApplication& application) {
  AppDelegate delegate;
  SingleInstance instance(bundle, hostenvironment::activationToken(),
                          [&](const std::string& token) { delegate.bringToFront(token); });
  prepareApplication(application);
  if (instance.isSecond()) {
    return 0;
  }
  auto center = std::make_shared<DemoNotificationCenter>();
  const std::weak_ptr<DemoNotificationCenter> service = center;
  LXPlatform platform = realPlatform(nullptr, std::move(center), bundle);
  LXPlatform::install(platform);
  NerinAction::getSysPath();
  const auto mouse = std::make_shared<VirtualMouse>(std::filesystem::path(*sysPath) / "mouse");
  platform.deviceRequester = std::make_shared<VirtualDeviceRequester>(mouse);
  platform.watchPresence = [mouse](std::function<void()> whenChanged) {
    // The mouse may go in the middle of a transfer, and the window looks for it between two.
    mouse->setPresenceObserver([whenChanged = std::move(whenChanged)] {
      QMetaObject::invokeMethod(qApp, whenChanged, Qt::QueuedConnection);
    });
    return std::shared_ptr<void>(mouse.get(), [mouse](void*) { mouse->setPresenceObserver({}); });
  };
  LXPlatform::install(platform);
  // A second owner would keep the notification center from flushing at the end.
  platform = {};

  DemoPanel panel(mouse, [service](const LXUserInfo& userInfo) {
    if (const auto receiver = service.lock()) {
      receiver->report("NerinDevStatus", userInfo);
    }
  });
  panel.showWhenProgramWaits();
  delegate.start();
  if (termination::isTerminating()) {
    return 0;
  }
  panel.standBeside(delegate.window());
  return QApplication::exec();
}

}  // namespace

int main(int argc, char** argv) {
  const FontList fonts;
  QApplication application(argc, argv);
  QCoreApplication::setApplicationName(QStringLiteral("NerinOptionDemo"));
  int code = 1;
  try {
    code = run(application);
  } catch (const std::exception& error) {
    std::cerr << "NerinOptionDemo: the virtual mouse cannot be used: " << error.what() << '\n';
  }
  LXPlatform::install({});
  relaunch::carryOut();
  return code;
}
