#include "App/DemoNotificationCenter.h"

void DemoNotificationCenter::postNotificationName(const std::string& name,
                                                  const std::string& object,
                                                  const std::optional<LXUserInfo>& userInfo) {
  m_bus.postNotificationName(name, object, userInfo);
}

void DemoNotificationCenter::addObserver(const std::string& name, Observer observer) {
  {
    const std::lock_guard lock(m_mutex);
    m_observers[name] = observer;
  }
  m_bus.addObserver(name, std::move(observer));
}

void DemoNotificationCenter::removeObserver(const std::string& name) {
  {
    const std::lock_guard lock(m_mutex);
    m_observers.erase(name);
  }
  m_bus.removeObserver(name);
}

void DemoNotificationCenter::report(const std::string& name, const LXUserInfo& userInfo) {
  Observer observer;
  {
    const std::lock_guard lock(m_mutex);
    if (const auto found = m_observers.find(name); found != m_observers.end()) {
      observer = found->second;
    }
  }
  if (observer) {
    observer(std::string(), userInfo);
  }
}
