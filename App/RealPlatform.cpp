#include "App/RealPlatform.h"

#include <thread>
#include <utility>

#include "App/Relaunch.h"
#include "Kit/Bus/BusQuestion.h"
#include "Kit/Core/HostEnvironment.h"
#include "Kit/Desktop/DesktopServices.h"
#include "Kit/Desktop/InstalledPrograms.h"
#include "View/Windows/PlainMessage.h"
#include "View/Windows/TransferProgress.h"

LXPlatform realPlatform(std::shared_ptr<LXDeviceRequester> requester,
                        std::shared_ptr<LXNotificationCenter> center, const std::string& bundle) {
  LXPlatform platform;
  platform.bundleIdentifier = bundle;
  platform.userFolders = hostenvironment::userFolders(bundle);
  platform.homeFolder = hostenvironment::homeFolder();
  platform.runtimeFolder = hostenvironment::runtimeFolder();
  platform.resourceFolder = hostenvironment::resourceFolder();
  platform.preferredLanguage = hostenvironment::preferredLanguage();
  platform.deviceRequester = std::move(requester);
  platform.notificationCenter = std::move(center);
  platform.sleep = [](std::chrono::microseconds time) {
    TransferProgress::reportDone();
    std::this_thread::sleep_for(time);
  };
  platform.documentsFolder = desktopservices::documentsFolder;
  platform.hasService = [] {
    return isOnTheSessionBus("com.corvex.NerinOption.Companion", std::chrono::milliseconds(300));
  };
  platform.relaunch = relaunch::request;
  platform.programName = installedprograms::nameOf;
  platform.showBusy = busycursor::show;
  platform.open = desktopservices::open;
  platform.showInfoMessage = plainmessage::show;
  platform.chooseInfoMessage = plainmessage::ask;
  return platform;
}
