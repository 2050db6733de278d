#include "Action/Library/SupportFolder.h"

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

const std::string& NerinAction::getSysPath() {
  if (sysPath->empty()) {
    *sysPath = LXPlatform::current().userFolders.support.string();
    if (!UserFolders::make(*sysPath)) {
      LXLogger::error("the folder cannot be made: " + *sysPath);
    }
    durable::sweepTemporaries(*sysPath);
    LXLogger::debug("sysPath=" + *sysPath);
  }
  return *sysPath;
}

std::filesystem::path NerinAction::preferenceFilePath() {
  return LXPlatform::current().userFolders.preferences;
}
