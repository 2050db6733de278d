#include "View/Screen/QtTexts.h"

#include <QCoreApplication>
#include <QLibraryInfo>
#include <QLocale>

#include "Action/Texts/TooltipManager.h"
#include "Kit/Core/LXPlatform.h"

namespace {

// Leaves the translator empty if there are no words.
void loadWords(QTranslator& words, const std::string& code) {
  const QString resources = QString::fromStdString(LXPlatform::current().resourceFolder.string());
  const QLocale locale(QString::fromStdString(code));
  for (const QString& folder : {resources, QLibraryInfo::path(QLibraryInfo::TranslationsPath)}) {
    if (words.load(locale, QStringLiteral("qtbase"), QStringLiteral("_"), folder)) {
      return;
    }
  }
}

}  // namespace

QtTexts::QtTexts() {
  QCoreApplication::installTranslator(this);
}

QtTexts::~QtTexts() {
  QCoreApplication::removeTranslator(this);
}

const QTranslator* QtTexts::words() const {
  const std::string code = TooltipManager::shareTooltipManager().languageCode();
  auto& words = m_words[code];
  if (!words) {
    words = std::make_unique<QTranslator>();
    loadWords(*words, code);
  }
  return words.get();
}

QString QtTexts::translate(const char* context, const char* sourceText, const char* disambiguation,
                           int n) const {
  return words()->translate(context, sourceText, disambiguation, n);
}
