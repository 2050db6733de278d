#pragma once

#include <QSocketNotifier>
#include <functional>

#include "Kit/Bus/BusNameWatch.h"

// Calls back in the main loop whenever the background service came (true) or went.
class ServiceWatch {
 public:
  explicit ServiceWatch(std::function<void(bool isThere)> changed);

 private:
  BusNameWatch m_name;
  std::unique_ptr<QSocketNotifier> m_notifier;
};
