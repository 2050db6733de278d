#include "Kit/Desktop/DesktopServices.h"

#include <QDesktopServices>
#include <QFileInfo>
#include <QUrl>

bool desktopservices::open(const std::string& address) {
  const QString text = QString::fromStdString(address);
  const QUrl url(text);
  if (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http")) {
    return QDesktopServices::openUrl(url);
  }
  return QFileInfo::exists(text) && QDesktopServices::openUrl(QUrl::fromLocalFile(text));
}
