#include "App/PresenceWatch.h"

namespace {

constexpr const char* udevControl = "/run/udev/control";
constexpr int lookMilliseconds = 500;

}  // namespace

PresenceWatch::PresenceWatch(const std::function<void()>& whenChanged) : m_monitor(udevControl) {
  if (m_monitor.descriptor() >= 0) {
    m_notifier = std::make_unique<QSocketNotifier>(m_monitor.descriptor(), QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this, whenChanged] {
                       if (m_monitor.takeNews().isAny) {
                         whenChanged();
                       }
                     });
  }
  QObject::connect(&m_timer, &QTimer::timeout, &m_timer, whenChanged);
  if (!m_monitor.isReliable()) {
    m_timer.start(lookMilliseconds);
  }
}
