#include "View/Windows/HelpDocument.h"

#include <QShortcut>
#include <QUrl>
#include <QWidget>
#include <system_error>
#include <utility>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/LXAction.h"
#include "Kit/Core/LXLogger.h"
#include "Kit/Core/LXPlatform.h"

namespace fs = std::filesystem;

namespace {

fs::path fileOf(const std::string& language) {
  return LXPlatform::current().resourceFolder / "Help" /
         ("UserInterfaceSetupGuide_" + language + ".html");
}

}  // namespace

// A language that is not translated completely has no file.
fs::path helpdocument::path() {
  const fs::path file = fileOf(TooltipManager::shareTooltipManager().languageCode());
  std::error_code error;
  return fs::exists(file, error) ? file : fileOf("en");
}

void helpdocument::open(const std::string& chapter) {
  QUrl address = QUrl::fromLocalFile(QString::fromStdString(path().string()));
  address.setFragment(QString::fromStdString(chapter));
  const std::string text = address.toString(QUrl::FullyEncoded).toStdString();
  if (!LXAction::openPage(text)) {
    LXLogger::warning("no program opens " + text);
  }
}

void helpdocument::serve(QWidget& window, const std::string& chapter) {
  serve(window, [chapter] { return chapter; });
}

void helpdocument::serve(QWidget& window, std::function<std::string()> chapter) {
  QObject::connect(new QShortcut(QKeySequence(Qt::Key_F1), &window), &QShortcut::activated, &window,
                   [chapter = std::move(chapter)] { open(chapter()); });
}
