#include "Kit/Device/HidNodeWatch.h"

#include <array>
#include <cstdint>
#include <cstring>
#include <string_view>

#include <sys/epoll.h>
#include <sys/inotify.h>
#include <sys/timerfd.h>
#include <unistd.h>

namespace {

constexpr std::string_view nodePrefix = "hidraw";
constexpr long momentNanoseconds = 300'000'000;

void closeIfOpen(int descriptor) {
  if (descriptor >= 0) {
    ::close(descriptor);
  }
}

// A descriptor that is readable if one of these is; -1 if there can be none.
int anyOf(std::array<int, 2> descriptors) {
  const int both = ::epoll_create1(EPOLL_CLOEXEC);
  for (const int descriptor : descriptors) {
    epoll_event event{.events = EPOLLIN, .data = {.fd = descriptor}};
    if (descriptor < 0 || ::epoll_ctl(both, EPOLL_CTL_ADD, descriptor, &event) < 0) {
      closeIfOpen(both);
      return -1;
    }
  }
  return both;
}

}  // namespace

HidNodeWatch::HidNodeWatch(const std::filesystem::path& folder)
    : m_folder(::inotify_init1(IN_NONBLOCK | IN_CLOEXEC)),
      m_moment(::timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC)) {
  constexpr std::uint32_t changes = IN_CREATE | IN_DELETE | IN_MOVE | IN_ATTRIB | IN_ONLYDIR;
  if (::inotify_add_watch(m_folder, folder.c_str(), changes) >= 0) {
    m_both = anyOf({m_folder, m_moment});
  }
}

HidNodeWatch::~HidNodeWatch() {
  for (const int descriptor : {m_both, m_folder, m_moment}) {
    closeIfOpen(descriptor);
  }
}

bool HidNodeWatch::takeNews() {
  if (m_both < 0) {
    return false;
  }
  std::uint64_t count = 0;
  const bool isMomentOver = ::read(m_moment, &count, sizeof(count)) > 0;
  if (!readEvents()) {
    return isMomentOver;
  }
  const itimerspec moment{.it_interval = {},
                          .it_value = {.tv_sec = 0, .tv_nsec = momentNanoseconds}};
  ::timerfd_settime(m_moment, 0, &moment, nullptr);
  return true;
}

// Whether one of them is about a node. Lost events count, because one of them may be.
bool HidNodeWatch::readEvents() {
  bool isAny = false;
  alignas(inotify_event) std::array<char, 4096> buffer;
  for (ssize_t size = 0; (size = ::read(m_folder, buffer.data(), buffer.size())) > 0;) {
    for (std::size_t at = 0; at + sizeof(inotify_event) <= static_cast<std::size_t>(size);) {
      inotify_event event;
      std::memcpy(&event, &buffer[at], sizeof(event));
      at += sizeof(event);
      const std::string_view name(&buffer[at], ::strnlen(&buffer[at], event.len));
      isAny = isAny || (event.mask & IN_Q_OVERFLOW) != 0 || name.starts_with(nodePrefix);
      at += event.len;
    }
  }
  return isAny;
}
