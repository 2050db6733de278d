#include "Kit/Desktop/DesktopServices.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>

bool desktopservices::open(const std::string& address) {
  const QString text = QString::fromStdString(address);
  const QUrl url(text);
  if (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http")) {
    return QDesktopServices::openUrl(url);
  }
  return QFileInfo::exists(text) && QDesktopServices::openUrl(QUrl::fromLocalFile(text));
}

std::filesystem::path desktopservices::documentsFolder() {
  const QString home = QDir::homePath();
  const QString documents = home + QStringLiteral("/Documents");
  for (const QString& folder :
       {QStandardPaths::writableLocation(QStandardPaths::DocumentsLocation), documents}) {
    if (QFileInfo(folder).isDir()) {
      return folder.toStdString();
    }
  }
  return home.toStdString();
}
