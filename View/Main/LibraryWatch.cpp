#include "View/Main/LibraryWatch.h"

#include <chrono>

#include "Action/Library/ProfieController.h"
#include "Action/Library/SupportFolder.h"
#include "View/Windows/NestedLoop.h"
#include "View/Windows/Termination.h"

namespace {

// A save of another program changes several files and folders.
constexpr std::chrono::milliseconds gatherTime(100);

ProfieController& library() {
  return ProfieController::getShareProCon();
}

}  // namespace

LibraryWatch::LibraryWatch(QObject* parent) : QObject(parent) {
  m_timer.setSingleShot(true);
  m_timer.setInterval(gatherTime);
  // Not begun anew by each change: a program that never stops must not keep this from its turn.
  connect(&m_watcher, &QFileSystemWatcher::directoryChanged, this, [this] {
    if (!m_timer.isActive()) {
      m_timer.start();
    }
  });
  connect(&m_timer, &QTimer::timeout, this, &LibraryWatch::takeIn);
  watch();
}

// A save puts another folder in the library's place, so that the folder above is watched too, and
// the library's own anew.
void LibraryWatch::watch() {
  const QString folder = QString::fromStdString(library().sysProPath().string());
  m_watcher.removePath(folder);
  m_watcher.addPath(folder);
  const QString above = QString::fromStdString(NerinAction::getSysPath());
  if (!m_watcher.directories().contains(above)) {
    m_watcher.addPath(above);
  }
}

void LibraryWatch::takeIn() {
  if (termination::isTerminating()) {
    return;
  }
  watch();
  // Whoever opened a dialog goes on with the library that it knows.
  const auto news =
      NestedLoop::isRunning() ? ProfieController::FolderNews::Busy : library().takeInFromDisk();
  if (news == ProfieController::FolderNews::Busy) {
    m_timer.start();
  } else if (news == ProfieController::FolderNews::Taken) {
    emit libraryChanged();
  }
}
