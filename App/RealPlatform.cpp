#include "App/RealPlatform.h"

#include <QApplication>
#include <QMessageBox>
#include <thread>
#include <utility>

#include "Kit/Core/HostEnvironment.h"
#include "Kit/Desktop/DesktopServices.h"
#include "View/NestedLoop.h"
#include "View/TransferProgress.h"

namespace {

int ask(const std::string& text, QMessageBox::StandardButtons buttons) {
  const NestedLoop scope;
  QMessageBox box(QMessageBox::NoIcon, QCoreApplication::applicationName(),
                  QString::fromStdString(text), buttons, QApplication::activeWindow());
  box.setWindowModality(Qt::WindowModal);
  return box.exec();
}

}  // namespace

LXPlatform realPlatform(std::shared_ptr<LXDeviceRequester> requester,
                        std::shared_ptr<LXNotificationCenter> center) {
  LXPlatform platform;
  platform.homeFolder = hostenvironment::homeFolder();
  platform.resourceFolder = hostenvironment::resourceFolder();
  platform.preferredLanguage = hostenvironment::preferredLanguage();
  platform.deviceRequester = std::move(requester);
  platform.notificationCenter = std::move(center);
  platform.sleep = [](std::chrono::microseconds time) {
    TransferProgress::reportDone();
    std::this_thread::sleep_for(time);
  };
  platform.open = desktopservices::open;
  platform.showInfoMessage = [](const std::string& text) { ask(text, QMessageBox::Ok); };
  platform.chooseInfoMessage = [](const std::string& text) {
    return ask(text, QMessageBox::Ok | QMessageBox::Cancel) == QMessageBox::Ok;
  };
  return platform;
}
