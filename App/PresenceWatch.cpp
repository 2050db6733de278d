#include "App/PresenceWatch.h"

#include <utility>

namespace {

constexpr int lookMilliseconds = 500;

}  // namespace

PresenceWatch::PresenceWatch(const std::function<void()>& whenChanged,
                             std::filesystem::path udevControl,
                             const std::filesystem::path& nodeFolder)
    : m_monitor(std::move(udevControl), nodeFolder) {
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
