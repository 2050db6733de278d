#include "Kit/Device/HidPresenceMonitor.h"

#include <cerrno>
#include <optional>
#include <string_view>
#include <system_error>
#include <utility>

#include <libudev.h>
#include <poll.h>

#include "Kit/Device/HidNodeWatch.h"

namespace {

struct UdevUnref {
  void operator()(udev* context) const { udev_unref(context); }
  void operator()(udev_monitor* monitor) const { udev_monitor_unref(monitor); }
  void operator()(udev_device* device) const { udev_device_unref(device); }
};

std::string_view textOf(const char* text) {
  return text == nullptr ? std::string_view() : std::string_view(text);
}

std::unique_ptr<udev_monitor, UdevUnref> openMonitor(udev* context) {
  if (context == nullptr) {
    return nullptr;
  }
  // The "udev" group reports after the rules have run, so the node already has the permissions that
  // a rule grants.
  std::unique_ptr<udev_monitor, UdevUnref> monitor(udev_monitor_new_from_netlink(context, "udev"));
  if (!monitor ||
      udev_monitor_filter_add_match_subsystem_devtype(monitor.get(), "hidraw", nullptr) < 0 ||
      udev_monitor_enable_receiving(monitor.get()) < 0 || udev_monitor_get_fd(monitor.get()) < 0) {
    return nullptr;
  }
  return monitor;
}

}  // namespace

struct HidPresenceMonitor::State {
  bool isUdevRunning() const {
    std::error_code ignored;
    return std::filesystem::exists(udevControl, ignored);
  }

  std::filesystem::path udevControl;
  std::unique_ptr<udev, UdevUnref> context;
  // One of them, or none. Without udevd the monitor would open, but stay silent.
  std::unique_ptr<udev_monitor, UdevUnref> monitor;
  std::optional<HidNodeWatch> nodes;
};

HidPresenceMonitor::HidPresenceMonitor(std::filesystem::path udevControl,
                                       const std::filesystem::path& nodeFolder)
    : m_state(std::make_unique<State>()) {
  m_state->udevControl = std::move(udevControl);
  if (m_state->isUdevRunning()) {
    m_state->context.reset(udev_new());
    m_state->monitor = openMonitor(m_state->context.get());
  }
  if (!m_state->monitor) {
    m_state->nodes.emplace(nodeFolder);
  }
}

HidPresenceMonitor::~HidPresenceMonitor() = default;

bool HidPresenceMonitor::isReliable() const {
  return m_state->nodes ? m_state->nodes->descriptor() >= 0 : m_state->isUdevRunning();
}

int HidPresenceMonitor::descriptor() const {
  return m_state->nodes ? m_state->nodes->descriptor()
                        : udev_monitor_get_fd(m_state->monitor.get());
}

HidPresenceMonitor::News HidPresenceMonitor::takeNews() {
  News news;
  if (m_state->nodes) {
    news.isAny = m_state->nodes->takeNews();
    return news;
  }
  pollfd ready{.fd = udev_monitor_get_fd(m_state->monitor.get()), .events = POLLIN, .revents = 0};
  while (poll(&ready, 1, 0) > 0) {
    errno = 0;
    const std::unique_ptr<udev_device, UdevUnref> device(
        udev_monitor_receive_device(m_state->monitor.get()));
    if (!device) {
      // Lost messages count as news, because one of them may concern the mouse.
      news.isAny = news.isAny || errno == ENOBUFS;
      break;
    }
    news.isAny = true;
    if (textOf(udev_device_get_action(device.get())) == "remove") {
      news.goneSysPaths.emplace_back(textOf(udev_device_get_syspath(device.get())));
    }
  }
  return news;
}
