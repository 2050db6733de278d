#include "Action/Library/SupportFolder.h"

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

const std::string& NerinAction::getSysPath() {
  if (sysPath->empty()) {
    const LXPlatform& platform = LXPlatform::current();
    *sysPath = (platform.homeFolder / "Library" / "Application Support" / platform.bundleIdentifier)
                   .string();
    if (!LXAction::creatDirectoryPro(*sysPath)) {
      LXLogger::error("the folder cannot be made: " + *sysPath);
    }
    durable::sweepTemporaries(*sysPath);
    LXLogger::debug("sysPath=" + *sysPath);
  }
  return *sysPath;
}

std::filesystem::path NerinAction::preferenceFilePath() {
  const LXPlatform& platform = LXPlatform::current();
  return platform.homeFolder / "Library" / "Preferences" / (platform.bundleIdentifier + ".plist");
}
