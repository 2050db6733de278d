#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <functional>
#include <memory>

#include "Kit/Device/HidPresenceMonitor.h"

// Calls back in the main loop when a USB mouse may have come or gone. It has a monitor of its own:
// the requester's may have taken the news during a transfer, of which the window hears nothing.
class PresenceWatch {
 public:
  explicit PresenceWatch(const std::function<void()>& whenChanged);

 private:
  HidPresenceMonitor m_monitor;
  std::unique_ptr<QSocketNotifier> m_notifier;
  // Looks now and then where udevd does not run.
  QTimer m_timer;
};
