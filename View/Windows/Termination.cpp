#include "View/Windows/Termination.h"

#include <QCoreApplication>

#include "Action/Device/DeviceLink.h"
#include "Kit/Core/LXPlatform.h"
#include "Kit/Core/ProcessWide.h"

namespace {

ProcessWide<bool> isEnding;

}  // namespace

void termination::terminate() {
  if (*isEnding) {
    return;
  }
  *isEnding = true;
  // Destroying the notification center flushes it.
  NerinAction::sysDeviceReq->reset();
  LXPlatform platform = LXPlatform::current();
  platform.deviceRequester.reset();
  platform.notificationCenter.reset();
  LXPlatform::install(std::move(platform));
  // quit() would ask the windows first.
  QCoreApplication::exit(0);
}

bool termination::isTerminating() {
  return *isEnding;
}
