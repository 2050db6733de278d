#include "Kit/Desktop/DesktopServices.h"

#include <QDesktopServices>
#include <QDir>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrl>
#include <memory>

// GLib uses the names of Qt's macros.
#undef signals
#undef slots
#undef emit
#include <gio/gio.h>

namespace {

struct Unref {
  void operator()(GAppInfo* info) const { g_object_unref(info); }
};

// The opener of a desktop may drop the place in the file. The application itself gets the whole
// address.
bool openWithPlace(const QUrl& url) {
  // Only web pages have places with names.
  const std::unique_ptr<GAppInfo, Unref> application(
      g_app_info_get_default_for_type("text/html", TRUE));
  if (!application) {
    return false;
  }
  QByteArray address = url.toEncoded();
  GList addresses{address.data(), nullptr, nullptr};
  return g_app_info_launch_uris(application.get(), &addresses, nullptr, nullptr) != FALSE;
}

}  // namespace

bool desktopservices::open(const std::string& address) {
  const QString text = QString::fromStdString(address);
  const QUrl url(text);
  if (url.scheme() == QStringLiteral("https") || url.scheme() == QStringLiteral("http")) {
    return QDesktopServices::openUrl(url);
  }
  if (url.isLocalFile() && url.hasFragment()) {
    return QFileInfo::exists(url.toLocalFile()) &&
           (openWithPlace(url) || QDesktopServices::openUrl(url));
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
