// The application around the main window.

#include <QApplication>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QTimer>

#include <gmock/gmock.h>

#include "App/AboutConnortller.h"
#include "App/AppDelegate.h"
#include "Tests/Support/ViewTest.h"
#include "View/Windows/Termination.h"

using testing::IsEmpty;

namespace {

class App : public ViewTest {
 protected:
  void startApp() {
    m_delegate.start();
    m_delegate.window().move(0, 0);
    process();
  }
  MainView& content() { return *qobject_cast<MainView*>(m_delegate.window().contentView()); }
  LXButton& appButton(const char* name) {
    return *content().findChild<LXButton*>(QString::fromLatin1(name));
  }
  static LXNoTitleWindow& about() { return AboutConnortller::shareAboutController().window(); }
  static void whenAboutIsUp(std::function<void()> act) {
    QTimer::singleShot(0, qApp, [act = std::move(act)] {
      EXPECT_TRUE(about().isVisible());
      act();
      about().close();
    });
  }
  QAction& aboutItem() {
    return *content().applicationMenu().findChild<QAction*>(QStringLiteral("aboutMenu"));
  }

  AppDelegate m_delegate;
};

}  // namespace

TEST_F(App, ItsWindowHasNoFrameAndIsDraggedByItsHeader) {
  startApp();
  LXNoTitleWindow& window = m_delegate.window();
  EXPECT_TRUE(window.isVisible());
  EXPECT_TRUE(window.windowFlags() & Qt::FramelessWindowHint);
  EXPECT_EQ(window.size(), content().size());
  EXPECT_TRUE(window.isInDragStrip({300, 129}));
  EXPECT_FALSE(window.isInDragStrip({300, 130}));
}

TEST_F(App, IsSeenBeforeTheMouseIsAsked) {
  bool wasSeen = true;
  int pauses = 0;
  setOnPause([&] {
    ++pauses;
    for (const QWidget* widget : QApplication::topLevelWidgets()) {
      if (widget->objectName() == QStringLiteral("window")) {
        wasSeen = wasSeen && widget->isVisible() && widget->windowHandle()->isExposed();
      }
    }
  });
  startApp();
  EXPECT_GT(pauses, 0);
  EXPECT_TRUE(wasSeen);
  EXPECT_TRUE(appButton("profile1Btn").isChecked());
}

TEST_F(App, ClosingItsWindowEndsTheProgramWithoutAQuestion) {
  QTimer poll;
  QObject::connect(&poll, &QTimer::timeout, &poll, [this] {
    if (m_delegate.window().isCanDrag()) {
      editState->raiseNeedSave();
      m_delegate.window().close();
    }
  });
  poll.start(10);
  EXPECT_EQ(runApplication(m_delegate), 0);
  EXPECT_TRUE(termination::isTerminating());
  EXPECT_THAT(m_asked, IsEmpty());
  EXPECT_TRUE(AppDelegate::applicationShouldTerminateAfterLastWindowClosed());
}

TEST_F(App, TheRightButtonInTheHeaderOpensTheMenu) {
  startApp();
  ASSERT_EQ(content().childAt(2, 2), nullptr);
  QTest::mouseClick(m_delegate.window().windowHandle(), Qt::RightButton, {}, {2, 2});
  EXPECT_TRUE(content().applicationMenu().isVisible());
  content().applicationMenu().close();
}

TEST_F(App, AboutIsOneWindowHoweverOftenItIsOpened) {
  startApp();
  const AboutConnortller* controller = &AboutConnortller::shareAboutController();
  int opened = 0;
  for (int i = 0; i < 2; ++i) {
    whenAboutIsUp([&] { ++opened; });
    aboutItem().trigger();
    EXPECT_FALSE(about().isVisible());
  }
  EXPECT_EQ(opened, 2);
  EXPECT_EQ(controller, &AboutConnortller::shareAboutController());
}

TEST_F(App, AboutSaysWhatTheProgramIs) {
  startApp();
  QStringList texts;
  for (const auto* label : about().findChildren<QLabel*>()) {
    texts << label->text();
  }
  EXPECT_TRUE(texts.contains(QStringLiteral("NerinOption")));
  EXPECT_TRUE(texts.contains(QStringLiteral("Configures the Corvex NERIN gaming mouse.")) ||
              texts.contains(QStringLiteral("Configures the Corvex NERIN gaming mouse")));
}

TEST_F(App, TheMainWindowRestsWhileAboutIsOpen) {
  startApp();
  clearTrace();
  whenAboutIsUp([this] {
    clickThroughWindow(appButton("profileNewBtn"));
    clickThroughWindow(appButton("profile3Btn"));
    clickThroughWindow(appButton("closeBtn"));
    // A second call only brings it to the front.
    m_delegate.showAboutPro();
    EXPECT_TRUE(about().isVisible());
  });
  m_delegate.showAboutPro();
  EXPECT_FALSE(editState->isNeedSave());
  EXPECT_FALSE(termination::isTerminating());
  EXPECT_THAT(trace(), IsEmpty());
  clickThroughWindow(appButton("profileNewBtn"));
  EXPECT_TRUE(editState->isNeedSave());
}

TEST_F(App, AboutIsClosedByItsButtonAndByEscape) {
  startApp();
  QTimer::singleShot(0, qApp,
                     [] { about().findChild<QPushButton*>(QStringLiteral("closeBtn"))->click(); });
  m_delegate.showAboutPro();
  EXPECT_FALSE(about().isVisible());
  QTimer::singleShot(0, qApp, [] { QTest::keyClick(&about(), Qt::Key_Escape); });
  m_delegate.showAboutPro();
  EXPECT_FALSE(about().isVisible());
}

TEST_F(App, TheEndClosesAbout) {
  startApp();
  QTimer::singleShot(0, qApp, [] { termination::terminate(); });
  m_delegate.showAboutPro();
  EXPECT_FALSE(about().isVisible());
  EXPECT_TRUE(termination::isTerminating());
}

TEST_F(App, AReportWaitsUntilAboutIsClosed) {
  startApp();
  whenAboutIsUp([this] {
    content().devReportPro({{"type", 1}, {"value", 4}});
    process();
    EXPECT_EQ(library().currFWProfileIndex(), 0);
  });
  m_delegate.showAboutPro();
  process();
  EXPECT_EQ(library().currFWProfileIndex(), 4);
}

TEST_F(App, ItsDarkColorsCanBeRead) {
  const QPalette before = QApplication::palette();
  const QFont font = QApplication::font();
  prepareApplication(*qApp);
  EXPECT_TRUE(QApplication::quitOnLastWindowClosed());
  EXPECT_FALSE(QCoreApplication::applicationVersion().isEmpty());
  const auto luminance = [](const QColor& color) {
    const auto linear = [](double part) {
      return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
  };
  const auto contrast = [&](QPalette::ColorRole text, QPalette::ColorRole ground) {
    const QPalette colors = QApplication::palette();
    const double a = luminance(colors.color(text)) + 0.05;
    const double b = luminance(colors.color(ground)) + 0.05;
    return std::max(a, b) / std::min(a, b);
  };
  EXPECT_GE(contrast(QPalette::WindowText, QPalette::Window), 4.5);
  EXPECT_GE(contrast(QPalette::Text, QPalette::Base), 4.5);
  EXPECT_GE(contrast(QPalette::ButtonText, QPalette::Button), 4.5);
  EXPECT_GE(contrast(QPalette::HighlightedText, QPalette::Highlight), 4.5);
  EXPECT_GE(contrast(QPalette::ToolTipText, QPalette::ToolTipBase), 4.5);
  QApplication::setQuitOnLastWindowClosed(false);
  QApplication::setPalette(before);
  QApplication::setFont(font);
}
