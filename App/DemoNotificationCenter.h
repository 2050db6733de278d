#pragma once

#include <map>
#include <mutex>
#include <string>

#include "Kit/Bus/SessionBusNotificationCenter.h"

// The session bus, plus the demonstration's own panel, which plays the background service even
// where there is no bus.
class DemoNotificationCenter final : public LXNotificationCenter {
 public:
  void postNotificationName(const std::string& name, const std::string& object,
                            const std::optional<LXUserInfo>& userInfo) override;
  void addObserver(const std::string& name, Observer observer) override;
  void removeObserver(const std::string& name) override;

  // Reaches this program's observers only.
  void report(const std::string& name, const LXUserInfo& userInfo);

 private:
  SessionBusNotificationCenter m_bus;
  std::mutex m_mutex;
  std::map<std::string, Observer> m_observers;
};
