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
  // The centre flushes when it goes.
  NerinAction::sysDeviceReq->reset();
  LXPlatform platform = LXPlatform::current();
  platform.deviceRequester.reset();
  platform.notificationCenter.reset();
  LXPlatform::install(std::move(platform));
  // Not quit(), which would ask the windows first.
  QCoreApplication::exit(0);
}

bool termination::isTerminating() {
  return *isEnding;
}
