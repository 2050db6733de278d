#include "App/ServiceWatch.h"

#include <utility>

#include "Kit/Bus/CompanionAddress.h"

ServiceWatch::ServiceWatch(std::function<void(bool isThere)> changed)
    : m_name(companionaddress::service, std::move(changed)) {
  if (m_name.descriptor() < 0) {
    return;
  }
  m_notifier = std::make_unique<QSocketNotifier>(m_name.descriptor(), QSocketNotifier::Read);
  QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                   [this] { m_name.work(); });
  m_name.work();
}
