#include "Kit/Widgets/LXNoTitleWindow.h"

#include <QApplication>
#include <QCloseEvent>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QScrollBar>
#include <QTimer>
#include <QWindow>

#include "Kit/Widgets/BGHUDScrollView.h"

namespace {

class Shade : public QWidget {
 public:
  explicit Shade(QWidget* window) : QWidget(window) {
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setGeometry(window->rect());
    hide();
  }

 protected:
  void paintEvent(QPaintEvent* event) override {
    constexpr QColor halfBlack(0, 0, 0, 128);
    QPainter(this).fillRect(event->rect(), halfBlack);
  }
};

}  // namespace

LXNoTitleWindow::LXNoTitleWindow(const QSize& contentSize, QWidget* parent)
    // Window managers keep a dialog in front of its parent, but not a plain window.
    : QWidget(parent, (parent != nullptr ? Qt::Dialog : Qt::Window) | Qt::FramelessWindowHint) {
  setFixedSize(contentSize);
  m_shade = new Shade(this);
}

bool LXNoTitleWindow::event(QEvent* event) {
  if (event->type() == QEvent::WindowBlocked) {
    m_shade->raise();
    m_shade->show();
  } else if (event->type() == QEvent::WindowUnblocked) {
    m_shade->hide();
  } else if (QWidget* blocker = QApplication::activeModalWidget();
             event->type() == QEvent::WindowActivate && m_shade->isVisible() &&
             blocker != nullptr && blocker != this) {
    // The user clicked a window that takes no input: the one to answer comes to the front. Later,
    // because Qt gives the focus to this window's own widget first, which on Wayland asks for this
    // window again.
    QTimer::singleShot(0, blocker, [blocker] {
      blocker->raise();
      blocker->activateWindow();
    });
  }
  return QWidget::event(event);
}

void LXNoTitleWindow::setContentView(QWidget* view) {
  m_content = view;
  view->setParent(this);
  view->setGeometry(rect());
  view->show();
}

void LXNoTitleWindow::fitInto(int height) {
  if (m_content == nullptr || this->height() <= height) {
    return;
  }
  auto* scroll = new BGHUDScrollView(this);
  scroll->setFocusPolicy(Qt::NoFocus);
  scroll->setWidget(m_content);
  setFixedSize(m_content->width() + scroll->verticalScrollBar()->sizeHint().width(), height);
  scroll->setGeometry(rect());
  scroll->show();
  m_shade->setGeometry(rect());
  // What has the keyboard is never out of sight.
  connect(qApp, &QApplication::focusChanged, scroll, [scroll](QWidget* /*old*/, QWidget* now) {
    if (now != nullptr && scroll->isAncestorOf(now)) {
      scroll->ensureWidgetVisible(now);
    }
  });
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

// The content passes on presses between the controls.
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
    // An Esc that is held has closed something inside this window.
    if (!event->isAutoRepeat()) {
      close();
    }
    return;
  }
  QWidget::keyPressEvent(event);
}
