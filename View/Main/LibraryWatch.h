#pragma once

#include <QFileSystemWatcher>
#include <QObject>
#include <QTimer>

// Tells when another program, or the user, changed the library in its folder, after the change was
// taken in. Several changes in a row are one.
class LibraryWatch final : public QObject {
  Q_OBJECT

 public:
  explicit LibraryWatch(QObject* parent = nullptr);

 signals:
  void libraryChanged();

 private:
  void watch();
  void takeIn();

  QFileSystemWatcher m_watcher;
  QTimer m_timer;
};
