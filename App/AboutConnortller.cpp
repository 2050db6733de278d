#include "App/AboutConnortller.h"

#include <QApplication>
#include <QEventLoop>
#include <QLabel>
#include <QPainter>
#include <QPushButton>
#include <QVBoxLayout>
#include <QWindow>

#include "View/Screen/ControlFactory.h"
#include "View/Screen/Pictures.h"
#include "View/Windows/HelpDocument.h"
#include "View/Windows/NestedLoop.h"

namespace {

constexpr QSize aboutSize(384, 216);
constexpr int dragStrip = 64;
constexpr int margin = 24;
constexpr qreal titleSize = 15;
constexpr qreal textSize = 12;

QLabel* label(const QString& text, qreal size, int weight, const char* color) {
  auto* made = new QLabel(text);
  made->setFont(pictures::font(size, weight));
  made->setStyleSheet(QStringLiteral("color: %1").arg(QString::fromLatin1(color)));
  made->setWordWrap(true);
  return made;
}

}  // namespace

// A dark panel with a thin border.
class AboutConnortller::Content : public QWidget {
 protected:
  void paintEvent(QPaintEvent* /*event*/) override {
    QPainter painter(this);
    painter.fillRect(rect(), QColor(0x15, 0x17, 0x1C));
    painter.setPen(QColor(0x34, 0x39, 0x43));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
};

AboutConnortller& AboutConnortller::shareAboutController() {
  static AboutConnortller* const controller = new AboutConnortller;
  return *controller;
}

AboutConnortller::AboutConnortller() : m_window(aboutSize) {
  auto* content = new Content;
  auto* rows = new QVBoxLayout(content);
  rows->setContentsMargins(margin, margin, margin, margin);
  rows->setSpacing(margin / 3);
  rows->addWidget(label(QStringLiteral("NerinOption"), titleSize, QFont::DemiBold, "#F2F4F7"));
  m_version = label({}, textSize, QFont::Normal, "#9AA3B2");
  m_line = label({}, textSize, QFont::Normal, "#9AA3B2");
  rows->addWidget(m_version);
  rows->addWidget(m_line);
  rows->addStretch();
  m_close = new QPushButton;
  m_close->setObjectName(QStringLiteral("closeBtn"));
  m_close->setDefault(true);
  m_close->setAutoDefault(true);
  m_close->setMinimumSize(112, 40);
  QObject::connect(m_close, &QPushButton::clicked, &m_window, &QWidget::close);
  rows->addWidget(m_close, 0, Qt::AlignRight);
  m_window.setObjectName(QStringLiteral("About"));
  m_window.setContentView(content);
  helpdocument::serve(m_window, "start");
  m_window.setIsCanDrag(true);
  m_window.setDragHeight(dragStrip);
  m_window.setClosesOnEscape(true);
  m_window.setWindowModality(Qt::ApplicationModal);
  m_window.setWindowDelegate(this);
}

void AboutConnortller::showTexts() {
  m_version->setText(NerinAction::tooltipText("Version") + u' ' +
                     QCoreApplication::applicationVersion());
  m_line->setText(NerinAction::tooltipText("Configures the Corvex NERIN gaming mouse."));
  m_close->setText(NerinAction::tooltipText("Close"));
  m_window.setWindowTitle(NerinAction::tooltipText("About NerinOption"));
}

void AboutConnortller::runModal(const QWidget* over) {
  if (m_loop != nullptr) {
    m_window.raise();
    return;
  }
  const NestedLoop scope;
  QEventLoop loop;
  m_loop = &loop;
  showTexts();
  if (over != nullptr) {
    // Window managers keep it in front of the window that it belongs to.
    m_window.winId();
    m_window.windowHandle()->setTransientParent(over->window()->windowHandle());
  }
  m_window.center(over);
  m_window.show();
  loop.exec();
  m_loop = nullptr;
  // The end of the program also ends the loop.
  m_window.hide();
}

void AboutConnortller::windowWillClose(LXNoTitleWindow& /*window*/) {
  if (m_loop != nullptr) {
    m_loop->quit();
  }
}
