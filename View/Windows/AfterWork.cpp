#include "View/Windows/AfterWork.h"

#include <QAbstractEventDispatcher>
#include <utility>

AfterWork::AfterWork(int milliseconds, std::function<void()> act, QObject* parent)
    : QObject(parent) {
  m_timer.setSingleShot(true);
  m_timer.setInterval(milliseconds);
  connect(&m_timer, &QTimer::timeout, this, [this, act = std::move(act)] {
    m_isOwnWake = true;
    act();
  });
  // Whatever happens wakes the event loop: input, a screen reader, the mouse, another program. Some
  // event loops tell so before they work it off and some after it.
  const auto* loop = QAbstractEventDispatcher::instance();
  connect(loop, &QAbstractEventDispatcher::aboutToBlock, this, [this] { m_isOwnWake = false; });
  connect(loop, &QAbstractEventDispatcher::awake, this, [this] {
    if (!m_isOwnWake && !m_timer.isActive()) {
      m_timer.start();
    }
  });
  m_timer.start();
}
