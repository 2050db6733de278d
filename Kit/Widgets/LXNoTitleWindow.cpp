#include "Kit/Widgets/LXNoTitleWindow.h"

#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QScreen>
#include <QWindow>

LXNoTitleWindow::LXNoTitleWindow(const QSize& contentSize, QWidget* parent)
    : QWidget(parent, Qt::Window | Qt::FramelessWindowHint) {
  setFixedSize(contentSize);
}

void LXNoTitleWindow::setContentView(QWidget* view) {
  m_content = view;
  view->setParent(this);
  view->setGeometry(rect());
  view->show();
}

bool LXNoTitleWindow::isInDragStrip(const QPoint& position) const {
  return m_isCanDrag && rect().contains(position) && position.y() < m_dragHeight;
}

void LXNoTitleWindow::center(const QWidget* over) {
  const QRect room = over != nullptr ? over->frameGeometry()
                                     : QGuiApplication::primaryScreen()->availableGeometry();
  QRect place(QPoint(), size());
  place.moveCenter(room.center());
  move(place.topLeft());
}

void LXNoTitleWindow::closeEvent(QCloseEvent* event) {
  event->accept();
  if (m_delegate != nullptr) {
    m_delegate->windowWillClose(*this);
  }
  emit closed();
}

// Presses between the controls come here from the content.
void LXNoTitleWindow::mousePressEvent(QMouseEvent* event) {
  if (!isInDragStrip(event->position().toPoint())) {
    return;
  }
  if (event->button() == Qt::LeftButton && windowHandle() != nullptr) {
    windowHandle()->startSystemMove();
  } else if (event->button() == Qt::RightButton) {
    emit menuRequested(event->globalPosition().toPoint());
  }
}

void LXNoTitleWindow::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape && m_closesOnEscape) {
    close();
    return;
  }
  QWidget::keyPressEvent(event);
}
