#include "Action/Library/SupportFolder.h"

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

const std::string& NerinAction::getSysPath() {
  if (sysPath->empty()) {
    const UserFolders& folders = LXPlatform::current().userFolders;
    *sysPath = folders.support.string();
    if (!UserFolders::make(*sysPath)) {
      LXLogger::error("the folder cannot be made: " + *sysPath);
    }
    for (const auto& folder :
         {folders.support, folders.drafts, folders.preferences.parent_path()}) {
      durable::sweepTemporaries(folder);
    }
    LXLogger::debug("sysPath=" + *sysPath);
  }
  return *sysPath;
}

std::filesystem::path NerinAction::preferenceFilePath() {
  return LXPlatform::current().userFolders.preferences;
}
