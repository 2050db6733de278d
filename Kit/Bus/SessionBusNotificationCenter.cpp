#include "Kit/Bus/SessionBusNotificationCenter.h"

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

#include "Kit/Bus/BusConnection.h"

struct SessionBusNotificationCenter::State {
  std::mutex mutex;
  std::condition_variable changed;
  std::uint64_t given = 0;    // all posts and subscriptions so far
  std::uint64_t settled = 0;  // how many of them the bus has confirmed
  bool isLost = false;        // there is no bus, or it went away

  // Recursive, because an observer may add and remove observers.
  std::recursive_mutex observerMutex;
  std::map<std::string, Observer> observers;

  void lose() {
    const std::lock_guard lock(mutex);
    isLost = true;
    changed.notify_all();
  }

  void settle(std::uint64_t count) {
    const std::lock_guard lock(mutex);
    settled = std::max(settled, count);
    changed.notify_all();
  }

  void notify(const std::string& name, const std::string& object, const LXUserInfo& userInfo) {
    const std::lock_guard lock(observerMutex);
    const auto found = observers.find(name);
    if (found != observers.end()) {
      const Observer observer = found->second;
      observer(object, userInfo);
    }
  }
};

SessionBusNotificationCenter::SessionBusNotificationCenter()
    : m_state(std::make_shared<State>()), m_thread([state = m_state] { state->lose(); }) {}

SessionBusNotificationCenter::~SessionBusNotificationCenter() {
  flush();
  const std::lock_guard lock(m_state->observerMutex);
  m_state->observers.clear();
}

void SessionBusNotificationCenter::give(BusThread::Work work) {
  {
    const std::lock_guard lock(m_state->mutex);
    ++m_state->given;
  }
  m_thread.give(std::move(work));
}

void SessionBusNotificationCenter::postNotificationName(const std::string& name,
                                                        const std::string& object,
                                                        const std::optional<LXUserInfo>& userInfo) {
  give([=](BusConnection& bus) { bus.postNotificationName(name, object, userInfo); });
}

void SessionBusNotificationCenter::addObserver(const std::string& name, Observer observer) {
  {
    const std::lock_guard lock(m_state->observerMutex);
    m_state->observers[name] = std::move(observer);
  }
  give([state = m_state, name](BusConnection& bus) {
    bus.addObserver(name, [state, name](const std::string& object, const LXUserInfo& userInfo) {
      state->notify(name, object, userInfo);
    });
  });
}

void SessionBusNotificationCenter::removeObserver(const std::string& name) {
  const std::lock_guard lock(m_state->observerMutex);
  m_state->observers.erase(name);
}

bool SessionBusNotificationCenter::flush(std::chrono::milliseconds limit) {
  std::unique_lock lock(m_state->mutex);
  const std::uint64_t wanted = m_state->given;
  const auto isSettled = [&] { return m_state->settled >= wanted; };
  if (isSettled() || m_state->isLost) {
    return isSettled();
  }
  m_thread.give([state = m_state, wanted](BusConnection& bus) {
    // The bus answers in order, so it has received everything sent before this call.
    bus.call({"org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "GetId"},
             nullptr, [state, wanted](sd_bus_message* answer) {
               if (answer != nullptr) {
                 state->settle(wanted);
               }
             });
  });
  m_state->changed.wait_for(lock, limit, [&] { return isSettled() || m_state->isLost; });
  return isSettled();
}
