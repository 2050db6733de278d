#pragma once

#include <QObject>
#include <chrono>

class QCoreApplication;

// Lets no window go before its last frame is on the screen.
//
// A compositor on Wayland tells when that is, and Qt (6.4 at least) hears it on a thread of its
// own, where it forgets the frame without a lock. A window that is hidden or deleted at that very
// moment forgets it, too, and the program ends in libwayland: about once in two thousand windows on
// a busy machine. After a pause longer than a frame of the screen, there is none to be told of.
class LastFrame : public QObject {
 public:
  // Longer than a frame at 60 Hz.
  static constexpr std::chrono::milliseconds pause{20};

  // For all windows of the application, from now on, while this object lives. Does nothing on
  // another desktop than Wayland.
  static void waitFor(QCoreApplication& application);

  // For tests: on whatever desktop.
  explicit LastFrame(QCoreApplication& application);

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;
};
