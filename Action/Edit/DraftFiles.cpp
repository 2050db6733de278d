#include "Action/Edit/DraftFiles.h"

#include <system_error>

#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

namespace fs = std::filesystem;

fs::path draftfiles::pathOf(const std::string& name) {
  return LXPlatform::current().userFolders.drafts / name;
}

bool draftfiles::write(const std::string& name, const std::string& document) {
  const fs::path file = pathOf(name);
  if (!UserFolders::make(file.parent_path())) {
    LXLogger::error("the folder cannot be made: " + file.parent_path().string());
    return false;
  }
  const auto error = durable::writeFile(file, document);
  if (error) {
    LXLogger::warning(file.string() + " was not written: " + error.message());
  }
  return !error;
}

void draftfiles::remove(const std::string& name) {
  std::error_code error;
  fs::remove(pathOf(name), error);
  if (error) {
    LXLogger::warning(pathOf(name).string() + " was not removed: " + error.message());
  }
}
