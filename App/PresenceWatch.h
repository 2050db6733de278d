#pragma once

#include <QSocketNotifier>
#include <QTimer>
#include <filesystem>
#include <functional>
#include <memory>

#include "Kit/Device/HidPresenceMonitor.h"

// Calls back in the main loop when a USB mouse may have come or gone. It has a monitor of its own:
// the requester's may have taken the news during a transfer, of which the window hears nothing.
class PresenceWatch {
 public:
  // udevd listens on `udevControl` while it runs; without it the nodes in `nodeFolder` are watched.
  explicit PresenceWatch(const std::function<void()>& whenChanged,
                         std::filesystem::path udevControl = "/run/udev/control",
                         const std::filesystem::path& nodeFolder = "/dev");

 private:
  HidPresenceMonitor m_monitor;
  std::unique_ptr<QSocketNotifier> m_notifier;
  // Looks now and then where nobody tells.
  QTimer m_timer;
};
