#include "Action/Edit/DraftFiles.h"

#include <system_error>

#include "Action/Library/SupportFolder.h"
#include "Kit/Core/DurableFile.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"

namespace fs = std::filesystem;

fs::path draftfiles::pathOf(const std::string& name) {
  return fs::path(NerinAction::getSysPath()) / "Drafts" / name;
}

bool draftfiles::write(const std::string& name, const std::string& document) {
  const fs::path file = pathOf(name);
  if (!LXAction::creatDirectoryPro(file.parent_path())) {
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
