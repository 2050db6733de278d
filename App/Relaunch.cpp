#include "App/Relaunch.h"

#include <QCoreApplication>
#include <QProcess>

#include "Kit/Core/ProcessWide.h"

namespace {

ProcessWide<bool> isRequested;

}  // namespace

void relaunch::request() {
  *isRequested = true;
}

void relaunch::carryOut() {
  if (*isRequested) {
    QProcess::startDetached(QCoreApplication::applicationFilePath(),
                            QCoreApplication::arguments().mid(1));
  }
}
