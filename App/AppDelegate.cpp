#include "App/AppDelegate.h"

#include <QElapsedTimer>
#include <QPainter>
#include <QPalette>
#include <QProxyStyle>
#include <QScreen>
#include <QSessionManager>
#include <QStyleOption>
#include <QWindow>
#ifdef __GLIBC__
#include <malloc.h>
#endif

#include "Action/Texts/CatalogueUpdate.h"
#include "App/AboutConnortller.h"
#include "ArtworkFrames.h"
#include "Kit/Desktop/LastFrame.h"
#include "Kit/Widgets/ButtonAccessibility.h"
#include "View/Main/MainView.h"
#include "View/Screen/Pictures.h"
#include "View/Screen/QtTexts.h"
#include "View/Windows/Termination.h"

namespace {

constexpr int dragStrip = 130;
constexpr qreal typeSize = 12;
// The limit for a window that is not shown, for example on another desktop.
constexpr int maximumPaintMilliseconds = 500;
constexpr QRgb hairline = 0xFF343943;
constexpr int maximumHeapBlock = 128 * 1024;

QPalette darkColors() {
  const QColor graphite(0x15, 0x17, 0x1C);
  const QColor steel(0x22, 0x25, 0x2C);
  const QColor snow(0xF2, 0xF4, 0xF7);
  const QColor mist(0x9A, 0xA3, 0xB2);
  QPalette colors(steel, graphite);
  colors.setColor(QPalette::WindowText, snow);
  colors.setColor(QPalette::Text, snow);
  colors.setColor(QPalette::ButtonText, snow);
  colors.setColor(QPalette::Base, steel);
  colors.setColor(QPalette::AlternateBase, graphite);
  colors.setColor(QPalette::ToolTipBase, steel);
  colors.setColor(QPalette::ToolTipText, snow);
  colors.setColor(QPalette::PlaceholderText, mist);
  colors.setColor(QPalette::Highlight, QColor(0x7D, 0x06, 0x08));
  colors.setColor(QPalette::HighlightedText, snow);
  colors.setColor(QPalette::Link, QColor(0xE5, 0x26, 0x2F));
  for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
    colors.setColor(QPalette::Disabled, role, QColor(0x59, 0x60, 0x6C));
  }
  return colors;
}

// Fusion, except for the frame of a tooltip, which Fusion draws in the text color.
class HouseStyle : public QProxyStyle {
 public:
  HouseStyle() : QProxyStyle(QStringLiteral("Fusion")) {}

  void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
    if (element != PE_PanelTipLabel) {
      QProxyStyle::drawPrimitive(element, option, painter, widget);
      return;
    }
    painter->fillRect(option->rect, option->palette.toolTipBase());
    painter->setPen(QColor(hairline));
    painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
  }
};

QStringList startUpPictures() {
  QStringList names;
  for (const std::string_view name : Artwork::startUpPictures) {
    names += QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size())) +
             QStringLiteral(".png");
  }
  return names;
}

// Reading the fonts, the texts and the pictures took memory that nothing needs any more.
void returnMemory() {
#ifdef __GLIBC__
  malloc_trim(0);
#endif
}

// Lets the window appear with its picture before the first transfer.
void waitForFirstPicture(const QWidget& window) {
  QElapsedTimer time;
  time.start();
  while (!(window.windowHandle() != nullptr && window.windowHandle()->isExposed()) &&
         time.elapsed() < maximumPaintMilliseconds) {
    QCoreApplication::processEvents(
        QEventLoop::ExcludeUserInputEvents | QEventLoop::WaitForMoreEvents,
        maximumPaintMilliseconds);
  }
  QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

}  // namespace

AppDelegate::AppDelegate() = default;
AppDelegate::~AppDelegate() = default;

void AppDelegate::start() {
  pictures::prefetch(startUpPictures());
  m_mainView = new MainView;
  m_window = std::make_unique<LXNoTitleWindow>(m_mainView->size());
  m_window->setObjectName(QStringLiteral("window"));
  m_window->setWindowTitle(QCoreApplication::applicationName());
  m_window->setWindowDelegate(this);
  m_mainView->constructControls();
  m_window->setContentView(m_mainView);
  m_window->fitInto(m_window->screen()->availableSize().height());
  QObject::connect(m_mainView, &MainView::aboutRequested, m_window.get(),
                   [this] { showAboutPro(); });
  QObject::connect(
      m_window.get(), &LXNoTitleWindow::menuRequested, m_mainView,
      [this](const QPoint& position) { m_mainView->applicationMenu().popup(position); });
  m_window->center();
  m_window->show();
  waitForFirstPicture(*m_window);
  returnMemory();
  m_mainView->finishConstruction();
  applicationDidFinishLaunching();
}

void AppDelegate::applicationDidFinishLaunching() {
  m_window->setIsCanDrag(true);
  m_window->setDragHeight(dragStrip);
}

void AppDelegate::showAboutPro() {
  AboutConnortller::shareAboutController().runModal(m_window.get());
}

void AppDelegate::bringToFront(const std::string& token) {
  if (!m_window) {
    return;
  }
  if (!token.empty()) {
    // The Wayland part of Qt takes it from there.
    qputenv("XDG_ACTIVATION_TOKEN", QByteArray::fromStdString(token));
  }
  QWidget* modal = QApplication::activeModalWidget();
  for (QWidget* widget : {static_cast<QWidget*>(m_window.get()), modal}) {
    if (widget != nullptr) {
      widget->setWindowState(widget->windowState() & ~Qt::WindowMinimized);
      widget->show();
      widget->raise();
      widget->activateWindow();
    }
  }
}

void AppDelegate::windowWillClose(LXNoTitleWindow& /*window*/) {
  MainView::cancelPro();
}

void prepareApplication(QApplication& application) {
#ifdef __GLIBC__
  // Pictures take megabytes and are needed only briefly. Each returns to the system at once instead
  // of leaving a hole in the heap.
  mallopt(M_MMAP_THRESHOLD, maximumHeapBlock);
  // The few short-lived threads do not justify a heap each.
  mallopt(M_ARENA_MAX, 1);
#endif
  QCoreApplication::setOrganizationDomain(QStringLiteral("corvex.com"));
  // The id under which the desktop knows the program, and finds its entry.
  QGuiApplication::setDesktopFileName(QStringLiteral("com.corvex.") +
                                      QCoreApplication::applicationName());
  QCoreApplication::setApplicationVersion(QStringLiteral(NERIN_VERSION));
  QApplication::setStyle(new HouseStyle);
  QApplication::setPalette(darkColors());
  QApplication::setFont(pictures::font(typeSize, QFont::Normal));
  QApplication::setQuitOnLastWindowClosed(
      AppDelegate::applicationShouldTerminateAfterLastWindowClosed());
  // The program is not restarted at the next login.
  QObject::connect(
      &application, &QGuiApplication::saveStateRequest, &application,
      [](QSessionManager& manager) { manager.setRestartHint(QSessionManager::RestartNever); });
  buttonaccessibility::install();
  LastFrame::waitFor(application);
}

int runApplication(AppDelegate& delegate) {
  NerinAction::bringCataloguesUpToDate();
  const QtTexts words;
  delegate.start();
  return termination::isTerminating() ? 0 : QApplication::exec();
}
