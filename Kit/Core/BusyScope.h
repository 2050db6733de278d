#pragma once

#include "Kit/Core/LXPlatform.h"

// Shows as long as it lives that the program does not answer. The same platform hears both ends,
// even if another one is installed meanwhile.
class BusyScope {
 public:
  BusyScope() : m_showBusy(LXPlatform::current().showBusy) { m_showBusy(true); }
  ~BusyScope() { m_showBusy(false); }
  BusyScope(const BusyScope&) = delete;
  BusyScope& operator=(const BusyScope&) = delete;

 private:
  std::function<void(bool)> m_showBusy;
};
