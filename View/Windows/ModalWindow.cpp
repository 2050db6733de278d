#include "View/Windows/ModalWindow.h"

#include <QCloseEvent>
#include <QEventLoop>
#include <QPointer>
#include <QScreen>

#include "View/Windows/ChildView.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/LocalNotifications.h"
#include "View/Windows/Termination.h"

ModalWindow::ModalWindow(ChildView* view, int dragHeight, const QString& title, QWidget* over)
    : LXNoTitleWindow(view->size(), over), m_view(view) {
  setWindowTitle(title);
  setWindowModality(Qt::WindowModal);
  setIsCanDrag(dragHeight > 0);
  setDragHeight(dragHeight);
  setClosesOnEscape(true);
  setContentView(view);
  helpdocument::serve(*this, [view] { return view->helpChapter(); });
  fitInto(screen()->availableSize().height());
  center(over);
}

int ModalWindow::run() {
  QEventLoop loop;
  connect(m_view, &ChildView::ended, &loop, &QEventLoop::quit);
  connect(this, &LXNoTitleWindow::closed, &loop, &QEventLoop::quit);
  // Removing the mouse closes the window below, which would destroy this one.
  LocalNotifications::shared().observe(NerinAction::notifyOutPlus, &loop, [&loop] { loop.quit(); });
  const QPointer<ModalWindow> self = this;
  show();
  loop.exec();
  if (!self) {
    return 0;
  }
  hide();
  return m_view->endTag();
}

void ModalWindow::closeEvent(QCloseEvent* event) {
  if (!termination::isTerminating() && m_view->staysOpen()) {
    event->ignore();
    return;
  }
  m_view->windowCloses();
  LXNoTitleWindow::closeEvent(event);
}
