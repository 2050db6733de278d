#include "Companion/Loop/EventLoop.h"

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <utility>

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <systemd/sd-event.h>
#include <time.h>
#include <unistd.h>

namespace {

using std::chrono::duration_cast;
using std::chrono::microseconds;
using std::chrono::milliseconds;

// How late a time may be called, so that the system can put wakeups together.
constexpr std::uint64_t accuracy = 1000;

std::uint64_t microsecondsOf(EventLoop::Time time) {
  // The steady clock is the monotonic clock of the kernel.
  const auto count = duration_cast<microseconds>(time.time_since_epoch()).count();
  return static_cast<std::uint64_t>(std::max<std::int64_t>(count, 1));
}

// Whether one of the waiting events is about a file of this name; with an empty name, about any.
// Reads all of them.
bool tellsOf(int descriptor, const std::string& name) {
  alignas(inotify_event) std::array<char, 4096> buffer;
  bool tells = false;
  for (ssize_t size = 0; (size = ::read(descriptor, buffer.data(), buffer.size())) > 0;) {
    const char* const end = buffer.data() + size;
    for (const char* place = buffer.data(); place < end;) {
      const auto* event = reinterpret_cast<const inotify_event*>(place);
      // Where events were lost, it may have been among them.
      const bool wereLost = (event->mask & IN_Q_OVERFLOW) != 0;
      tells = tells || wereLost || name.empty() || (event->len > 0 && name == event->name);
      place += sizeof(inotify_event) + event->len;
    }
  }
  return tells;
}

}  // namespace

EventLoop::Watch::Watch(std::function<void()> act) : m_act(std::move(act)) {}

EventLoop::Watch::~Watch() {
  sd_event_source_disable_unref(m_source);
  if (m_ownDescriptor >= 0) {
    ::close(m_ownDescriptor);
  }
}

EventLoop::EventLoop() {
  if (sd_event_new(&m_event) < 0) {
    throw std::runtime_error("no event loop");
  }
}

EventLoop::~EventLoop() {
  sd_event_unref(m_event);
}

int EventLoop::run() {
  return sd_event_loop(m_event);
}

void EventLoop::exit(int code) {
  sd_event_exit(m_event, code);
}

bool EventLoop::runUntil(const std::function<bool()>& isDone, milliseconds limit) {
  const auto end = std::chrono::steady_clock::now() + limit;
  while (!isDone()) {
    const auto left = duration_cast<microseconds>(end - std::chrono::steady_clock::now()).count();
    if (left <= 0 || sd_event_run(m_event, static_cast<std::uint64_t>(left)) < 0) {
      return false;
    }
  }
  return true;
}

void EventLoop::exitOnSignals() {
  // Without a callback, a signal ends the loop.
  for (const int signal : {SIGTERM, SIGINT}) {
    sd_event_add_signal(m_event, nullptr, signal | SD_EVENT_SIGNAL_PROCMASK, nullptr, nullptr);
  }
}

std::unique_ptr<EventLoop::Watch> EventLoop::watch(int descriptor,
                                                   std::function<void()> whenReadable) {
  auto watch = std::make_unique<Watch>(std::move(whenReadable));
  const auto called = [](sd_event_source*, int, std::uint32_t, void* data) {
    // The callback may destroy the watch.
    const std::function<void()> act = static_cast<Watch*>(data)->m_act;
    act();
    return 0;
  };
  if (sd_event_add_io(m_event, &watch->m_source, descriptor, EPOLLIN, called, watch.get()) < 0) {
    return nullptr;
  }
  return watch;
}

std::unique_ptr<EventLoop::Watch> EventLoop::watchFolder(const std::filesystem::path& folder,
                                                         std::function<void()> whenChanged) {
  return watchNames(folder, {}, std::move(whenChanged));
}

std::unique_ptr<EventLoop::Watch> EventLoop::watchFile(const std::filesystem::path& file,
                                                       std::function<void()> whenChanged) {
  return watchNames(file.parent_path(), file.filename().string(), std::move(whenChanged));
}

std::unique_ptr<EventLoop::Watch> EventLoop::watchNames(const std::filesystem::path& folder,
                                                        const std::string& name,
                                                        std::function<void()> whenChanged) {
  const int descriptor = ::inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
  if (descriptor < 0) {
    return nullptr;
  }
  auto result = watch(descriptor, [descriptor, name, changed = std::move(whenChanged)] {
    if (tellsOf(descriptor, name)) {
      changed();
    }
  });
  constexpr std::uint32_t events = IN_CLOSE_WRITE | IN_MOVED_TO | IN_MOVED_FROM | IN_DELETE;
  if (!result || ::inotify_add_watch(descriptor, folder.c_str(), events) < 0) {
    result.reset();
    ::close(descriptor);
    return nullptr;
  }
  result->m_ownDescriptor = descriptor;
  return result;
}

EventLoop::Timer::Timer(EventLoop& loop, std::function<void()> whenDue)
    : m_watch(std::make_unique<Watch>(std::move(whenDue))) {
  const auto called = [](sd_event_source*, std::uint64_t, void* data) {
    const std::function<void()> act = static_cast<Watch*>(data)->m_act;
    act();
    return 0;
  };
  if (sd_event_add_time(loop.handle(), &m_watch->m_source, CLOCK_MONOTONIC, UINT64_MAX, accuracy,
                        called, m_watch.get()) < 0) {
    throw std::runtime_error("no timer");
  }
  stop();
}

EventLoop::Timer::~Timer() = default;

void EventLoop::Timer::startAt(Time time) {
  sd_event_source_set_time(m_watch->m_source, microsecondsOf(time));
  sd_event_source_set_enabled(m_watch->m_source, SD_EVENT_ONESHOT);
}

void EventLoop::Timer::startIn(milliseconds time) {
  startAt(std::chrono::steady_clock::now() + time);
}

void EventLoop::Timer::stop() {
  sd_event_source_set_enabled(m_watch->m_source, SD_EVENT_OFF);
}
