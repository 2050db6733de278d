#include <QElapsedTimer>
#include <QPlatformSurfaceEvent>
#include <QWidget>
#include <QWindow>
#include <algorithm>
#include <functional>
#include <memory>

#include <gtest/gtest.h>

#include "Kit/Desktop/LastFrame.h"

namespace {

class LastFrameTest : public testing::Test {
 public:
  static std::unique_ptr<QWidget> shownWindow() {
    auto window = std::make_unique<QWidget>();
    window->show();
    QCoreApplication::processEvents();
    return window;
  }
  // Milliseconds from the last frame until the window is gone from the screen.
  static qint64 timeOf(const std::function<void()>& end) {
    QElapsedTimer time;
    time.start();
    end();
    return time.elapsed();
  }

 protected:
  LastFrame lastFrame{*QCoreApplication::instance()};
};

TEST_F(LastFrameTest, AWindowThatIsHiddenWaitsForIt) {
  const auto window = shownWindow();
  EXPECT_GE(timeOf([&] { window->hide(); }), LastFrame::pause.count());
  window->show();
  EXPECT_GE(timeOf([&] { window->close(); }), LastFrame::pause.count());
}

TEST_F(LastFrameTest, AWindowThatIsDeletedWaitsForIt) {
  auto window = shownWindow();
  EXPECT_GE(timeOf([&] { window.reset(); }), LastFrame::pause.count());
}

TEST_F(LastFrameTest, ItWaitsBeforeTheDesktopIsTold) {
  const auto window = shownWindow();
  QElapsedTimer time;
  qint64 whenGone = -1;
  struct Watch : QObject {
    std::function<void()> gone;
    bool eventFilter(QObject* /*object*/, QEvent* event) override {
      if (event->type() == QEvent::Hide) {
        gone();
      }
      return false;
    }
  } watch;
  // The toolkit sends it right after it has told the desktop.
  watch.gone = [&] { whenGone = time.elapsed(); };
  window->windowHandle()->installEventFilter(&watch);
  time.start();
  window->hide();
  EXPECT_GE(whenGone, LastFrame::pause.count());
}

TEST_F(LastFrameTest, AWindowThatWasNotShownWaitsForNothing) {
  qint64 fastest = LastFrame::pause.count();
  for (int tries = 0; tries < 5; ++tries) {
    auto window = std::make_unique<QWidget>();
    window->winId();
    fastest = std::min(fastest, timeOf([&] { window.reset(); }));
  }
  EXPECT_LT(fastest, LastFrame::pause.count());
}

TEST(LastFrameElsewhere, WaitsOnlyWhereTheCompositorTellsOfFrames) {
  ASSERT_FALSE(QGuiApplication::platformName().startsWith(u"wayland"));
  LastFrame::waitFor(*QCoreApplication::instance());
  qint64 fastest = LastFrame::pause.count();
  for (int tries = 0; tries < 5; ++tries) {
    const auto window = LastFrameTest::shownWindow();
    fastest = std::min(fastest, LastFrameTest::timeOf([&] { window->hide(); }));
  }
  EXPECT_LT(fastest, LastFrame::pause.count());
}

}  // namespace
