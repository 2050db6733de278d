#include "View/ModalWindow.h"

#include <QEventLoop>

#include "View/ChildView.h"
#include "View/LocalNotifications.h"

ModalWindow::ModalWindow(ChildView* view, int dragHeight, const QString& title, QWidget* over)
    : LXNoTitleWindow(view->size(), over), m_view(view) {
  setWindowTitle(title);
  setWindowModality(Qt::WindowModal);
  setIsCanDrag(true);
  setDragHeight(dragHeight);
  setClosesOnEscape(true);
  setContentView(view);
  center(over);
}

int ModalWindow::run() {
  QEventLoop loop;
  connect(m_view, &ChildView::ended, &loop, &QEventLoop::quit);
  connect(this, &LXNoTitleWindow::closed, &loop, &QEventLoop::quit);
  // The window under this one goes with the mouse, and would take this one with it.
  connect(&LocalNotifications::shared(), &LocalNotifications::posted, &loop,
          [&loop](const QString& name) {
            if (name == NerinAction::notifyOutPlus) {
              loop.quit();
            }
          });
  show();
  loop.exec();
  hide();
  return m_view->endTag();
}

void ModalWindow::closeEvent(QCloseEvent* event) {
  m_view->windowCloses();
  LXNoTitleWindow::closeEvent(event);
}
